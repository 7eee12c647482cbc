// A C++ client: the C header serves C++ as it is. Sorts a vector in descending order, computes erfc and
// the machine precision, and shows how a failure comes back through IFAIL when it is to be silent.
#include <cstdio>
#include <vector>

#include "vek.h"

int main() {
  std::vector<double> v = {3.5, -1.0, 2.25, 8.0, 0.0};
  const int64_t m1 = 1, m2 = static_cast<int64_t>(v.size());
  int64_t ifail = 0;
  m01caf_(v.data(), &m1, &m2, "D", &ifail, 1);
  std::printf("sorted descending:");
  for (double x : v) std::printf(" %g", x);
  std::printf("\n");

  const double x = 1.5;
  ifail = 0;
  std::printf("erfc(%g) = %.17g, IFAIL = %lld\n", x, s15adf_(&x, &ifail), static_cast<long long>(ifail));
  std::printf("relative machine precision x02ajf = %g\n", x02ajf_());

  const int64_t bad_m1 = 0;
  ifail = 1;  // silent: inspect IFAIL instead of reading a report
  m01caf_(v.data(), &bad_m1, &m2, "A", &ifail, 1);
  std::printf("m01caf with M1 = 0 returned IFAIL = %lld\n", static_cast<long long>(ifail));
  return ifail == 1 ? 0 : 1;
}
