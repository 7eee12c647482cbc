// Temme's uniform asymptotic expansion of I_x(a, b) for large a and b near the mean, in the form of DiDonato
// and Morris's BASYM (ACM TOMS 18 (1992) 360-373, algorithm 708).
//
// With lambda = a - (a + b) x >= 0 (x at or below the mean), f = a phi(-lambda/a) + b phi(lambda/b), phi(u) =
// u - ln(1 + u), and z0 = sqrt(f):
//   I_x(a, b) = (2/sqrt(pi)) e^(-f) e^(-bcorr) [J0 + sum_n d_n w0^n J_n],
// where J0 = erfcx(z0) sqrt(pi)/4, the J_n follow from J0 by a two-term recurrence in n, w0 = 1/sqrt(min(a, b)
// (1 + h)) with h = min/max, and the d_n are the coefficients of Temme's expansion, built from the power
// series of the saddle-point map (a0, b0, c, d below, as in the paper); bcorr = del(a) + del(b) - del(a + b)
// with del the Stirling remainder. Everything runs in long double; lambda, on which I_x depends with a
// condition number of up to 1e6 ulps per ulp of x here, is formed in double-double from the exact one of x, y.
#include "specfun/incomplete_beta_asymptotic.h"

#include <cmath>
#include <limits>
#include <numbers>

#include "specfun/log1pmx.h"
#include "specfun/specfun.h"

namespace vek::specfun {
namespace {

// Terms of the expansion: the n-th is about (1/min(a, b))^(n/2); 20 reach 1e-23 at min(a, b) = 100.
constexpr int kTerms = 20;

// x1 + x2 and x1 x2 split into the rounded value and its rounding error.
struct DoubleDouble {
  double hi;
  double lo;
};
DoubleDouble two_sum(double p, double q) {
  const double s = p + q;
  const double qv = s - p;
  return {s, (p - (s - qv)) + (q - qv)};
}

}  // namespace

long double beta_inc_lambda(double a, double b, double x, double y) {
  // a - (a + b) x = (a + b) y - b; t is the exact one of x, y. With c = a + b = ch + cl, c t = ph + pl + cl t,
  // and a - ph (or ph - b) is exact by Sterbenz's lemma where it matters (near the mean).
  // Parameters whose sum would overflow are halved (exactly) and lambda doubled.
  const double scale = a > 0x1p1020 || b > 0x1p1020 ? 0.5 : 1.0;
  a *= scale;
  b *= scale;
  const bool use_x = x <= 0.5;
  const double t = use_x ? x : y;
  const DoubleDouble c = two_sum(a, b);
  const double ph = c.hi * t;
  const double pl = std::fma(c.hi, t, -ph);
  const long double rest = static_cast<long double>(pl) + static_cast<long double>(c.lo) * t;
  const long double lambda = use_x ? static_cast<long double>(a - ph) - rest : static_cast<long double>(ph - b) + rest;
  return lambda / scale;
}

namespace {

// I_x(a, b) = scale e^-f, kept apart so that its logarithm is finite where e^-f underflows.
struct Asymptotic {
  long double f;
  long double scale;
};

Asymptotic asymptotic_parts(double a, double b, long double lambda) {
  const long double la = a, lb = b;
  // 2/sqrt(pi) and 2^(-3/2).
  constexpr long double e0 = 2.0L / 1.772453850905516027298167483341145182798L;
  constexpr long double e1 = 0.3535533905932737622004221810524245196424L;
  const long double f = la * log1pmx_neg(-lambda / la) + lb * log1pmx_neg(lambda / lb);
  const long double z0 = std::sqrt(f);
  const long double z = 0.5L * (z0 / e1);
  const long double z2 = f + f;

  long double h, r0, r1, w0;
  if (a < b) {
    h = la / lb;
    r0 = 1.0L / (1.0L + h);
    r1 = (lb - la) / lb;
    w0 = 1.0L / std::sqrt(la * (1.0L + h));
  } else {
    h = lb / la;
    r0 = 1.0L / (1.0L + h);
    r1 = (lb - la) / la;
    w0 = 1.0L / std::sqrt(lb * (1.0L + h));
  }

  // Index k of the paper's 1-based arrays is held at k - 1.
  long double a0[kTerms + 1], b0[kTerms + 1], c[kTerms + 1], d[kTerms + 1];
  a0[0] = 2.0L / 3.0L * r1;
  c[0] = -0.5L * a0[0];
  d[0] = -c[0];
  long double j0 = 0.5L / e0 * static_cast<long double>(erfcx(static_cast<double>(z0)));
  long double j1 = e1;
  long double sum = j0 + d[0] * w0 * j1;

  long double s = 1.0L, hn = 1.0L, w = w0, znm1 = z, zn = z2;
  const long double h2 = h * h;
  for (int n = 2; n <= kTerms; n += 2) {
    hn *= h2;
    a0[n - 1] = 2.0L * r0 * (1.0L + h * hn) / (n + 2.0L);
    s += hn;
    a0[n] = 2.0L * r1 * s / (n + 3.0L);
    for (int i = n; i <= n + 1; ++i) {
      const long double r = -0.5L * (i + 1.0L);
      b0[0] = r * a0[0];
      for (int m = 2; m <= i; ++m) {
        long double bsum = 0.0L;
        for (int j = 1; j < m; ++j) bsum += (j * r - (m - j)) * a0[j - 1] * b0[m - j - 1];
        b0[m - 1] = r * a0[m - 1] + bsum / m;
      }
      c[i - 1] = b0[i - 1] / (i + 1.0L);
      long double dsum = 0.0L;
      for (int j = 1; j < i; ++j) dsum += d[i - j - 1] * c[j - 1];
      d[i - 1] = -(dsum + c[i - 1]);
    }
    j0 = e1 * znm1 + (n - 1.0L) * j0;
    j1 = e1 * zn + n * j1;
    znm1 *= z2;
    zn *= z2;
    w *= w0;
    const long double t0 = d[n - 1] * w * j0;
    w *= w0;
    const long double t1 = d[n] * w * j1;
    sum += t0 + t1;
    if (std::fabs(t0) + std::fabs(t1) <= std::numeric_limits<long double>::epsilon() * sum) break;
  }
  const long double bcorr = static_cast<long double>(stirling_remainder(a)) + stirling_remainder(b) -
                            stirling_remainder(a + b);
  return {f, e0 * std::exp(-bcorr) * sum};
}

}  // namespace

double beta_inc_asymptotic(double a, double b, long double lambda) {
  const Asymptotic r = asymptotic_parts(a, b, lambda);
  return static_cast<double>(std::exp(-r.f) * r.scale);
}

long double beta_inc_asymptotic_log(double a, double b, long double lambda) {
  const Asymptotic r = asymptotic_parts(a, b, lambda);
  return std::log(r.scale) - r.f;
}

}  // namespace vek::specfun
