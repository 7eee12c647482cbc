// The Studentized range: the range of k independent standard normals divided by an independent
// sqrt(chi-square_nu / nu), its distribution and quantiles.
#pragma once

namespace vek::stats {

struct RangeTails {
  double lower, upper;  // P(Q <= q) and P(Q > q), each computed directly
};

// For q >= 0 (infinite allowed), nu >= 1 degrees of freedom (+inf: the range of k normals itself), k >= 2.
RangeTails studentized_range(double q, double nu, int k);

// The q with P(Q <= q) = p, 0 < p < 1, to about 1e-13 relative.
double studentized_range_deviate(double p, double nu, int k);

}  // namespace vek::stats
