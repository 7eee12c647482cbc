// Digamma and polygamma functions.
//
// psi: on [1, 2] the Taylor series about the positive zero x0 = 1.4616321449683622 (d = x - x0 formed in two
// parts, so psi keeps its relative accuracy at the zero); (0, 1) adds -1/x to that; (2, 10) steps down to
// (1, 2] adding 1/(x - k) (all positive); x >= 10 uses the asymptotic series; x < 0 the reflection
// psi(x) = psi(1 - x) - pi cot(pi x) with an exact reduction of pi x.
//
// psi', x > 0: the recurrence to x >= 10 and the asymptotic series, in double with double-double leading
// parts (trigamma_positive).
//
// psi^(n), n >= 1 otherwise: (-1)^(n+1) n! zeta(n + 1, x), the Hurwitz zeta function by Euler-Maclaurin summation:
// the terms (x + k)^-s up to x + N >= 10 + 1.1 (n + 1), the integral and end-point terms, and ten Bernoulli
// terms, with the power of a large x scaled so that nothing underflows early. Negative x by reflection, with the n-th derivative
// of pi cot(pi x) as a polynomial in cot (exact reduction of x, long double); x >= kPolygammaMinArg (NaN below).
#include <cmath>
#include <iterator>
#include <limits>
#include <numbers>

#include "specfun/specfun.h"

namespace vek::specfun {
namespace {

constexpr double kRootHi = 1.4616321449683622;
constexpr double kRootLo = 9.549995429965697e-17;

// psi(x0 + d) = sum psi^(k)(x0)/k! d^k, k = 1..39 (mpmath, 40 digits; make_tables.py --coefficients).
constexpr double kPsiRoot[] = {
    0.96767224544762117,     -0.44276316898359211,    0.25849976095565101,     -0.16394270544240653,
    0.10782405069126237,     -0.072199561256454711,   0.048804288164143107,    -0.033161126474847359,
    0.022597648232218105,    -0.015424765904948959,   0.010538791616612175,    -0.0072045343863568682,
    0.0049267813957298534,   -0.0033698016554393281,  0.0023051263267349278,   -0.0015769367714301973,
    0.0010788252019162966,   -0.00073807093899600513, 0.00050495326583460204,  -0.0003454680251063077,
    0.00023635601564027053,  -0.00016170622091974803, 0.00011063372768747411,  -7.5691795821950659e-5,
    5.1785757952220809e-5,   -3.5430070947659606e-5,  2.4240066118601318e-5,   -1.6584242271854133e-5,
    1.134638458466385e-5,    -7.7628176684620944e-6,  5.3110609208898634e-6,   -3.6336507898010457e-6,
    2.4860227331295379e-6,   -1.7008538854332607e-6,  1.1636675363548843e-6,   -7.9614254312419704e-7,
    5.4469419306694453e-7,   -3.726616128343823e-7,   2.5496265520215543e-7};

// psi(x0 + d), |d| <= 0.54.
double psi_near_root(double d) {
  double s = 0.0;
  for (size_t i = std::size(kPsiRoot); i-- > 0;) s = s * d + kPsiRoot[i];
  return s * d;
}

// psi(x) = ln x - 1/(2x) - sum B_2k / (2k x^2k), k = 1..8: below 3e-17 relative at x = 10, 1e-23 at x = 20.
template <class T>
T psi_asymptotic(T x) {
  const T c[] = {T(1) / 12,  T(-1) / 120,     T(1) / 252, T(-1) / 240,
                 T(1) / 132, T(-691) / 32760, T(1) / 12,  T(-3617) / 8160};
  const T w = 1 / (x * x);
  T s = 0;
  for (size_t i = std::size(c); i-- > 0;) s = s * w + c[i];
  return std::log(x) - T(0.5) / x - s * w;
}

// psi(x) for x >= 1 in long double (1 - x exact there), for the reflection, whose two terms cancel near the
// negative zeros: the recurrence up to 20 and the asymptotic series there.
long double psi_positive_extended(long double x) {
  long double lx = x, sum = 0.0L;
  for (; lx < 20.0L; lx += 1.0L) sum += 1.0L / lx;
  return psi_asymptotic(lx) - sum;
}

double psi_positive(double x) {
  if (x >= 10.0) return psi_asymptotic(x);
  if (x < 1.0) return psi_near_root((x - (kRootHi - 1.0)) - kRootLo) - 1.0 / x;
  double sum = 0.0;
  while (x > 2.0) {
    x -= 1.0;
    sum += 1.0 / x;
  }
  return psi_near_root((x - kRootHi) - kRootLo) + sum;
}

// cot(pi x) in long double, x reduced exactly to r in [-1/2, 1/2]; beyond |r| = 1/4 as -tan(pi (r -+ 1/2)),
// whose argument is exact too, so that cot is exactly 0 at the half-integers.
long double cot_pi(double x) {
  const double r = x - std::nearbyint(x);
  constexpr long double pi = std::numbers::pi_v<long double>;
  if (std::fabs(r) <= 0.25) return 1.0L / std::tan(pi * r);
  return -std::tan(pi * (r - std::copysign(0.5, r)));
}

// d^n/dt^n cot(t) = P_n(cot t), P_0(c) = c, P_(n+1)(c) = -(1 + c^2) P_n'(c): kCotDerivatives[n][k] is the
// coefficient of c^k, n = 0..kMaxCotOrder, computed once in long double. The nonzero coefficients of P_n all
// have the sign (-1)^n and the parity of n + 1, so P_n(c) is a sum without cancellation.
constexpr int kMaxCotOrder = 50;
struct CotDerivatives {
  long double c[kMaxCotOrder + 1][kMaxCotOrder + 2] = {};
  CotDerivatives() {
    c[0][1] = 1.0L;
    for (int n = 0; n < kMaxCotOrder; ++n)
      for (int k = 1; k <= n + 1; ++k) {  // -(1 + c^2) k a_k c^(k-1)
        c[n + 1][k - 1] -= k * c[n][k];
        c[n + 1][k + 1] -= k * c[n][k];
      }
  }
};

// pi^(n+1) P_n(cot(pi x)) = pi d^n/dx^n cot(pi x), in long double.
long double pi_cot_pi_derivative(int n, double x) {
  static const CotDerivatives table;
  const long double t = cot_pi(x);
  long double sum = 0.0L;
  for (int k = n + 1; k >= 0; --k) sum = sum * t + table.c[n][k];
  constexpr long double pi = std::numbers::pi_v<long double>;
  return sum * std::pow(pi, n + 1);
}

bool is_pole(double x) { return x <= 0.0 && x == std::floor(x); }

// t^n for n >= 1 by binary powering (at most 2 log2(n) long double roundings, well below a double's).
long double integer_power(long double t, int n) {
  long double result = 1.0L;
  for (; n > 0; n >>= 1, t *= t)
    if (n & 1) result *= t;
  return result;
}

// zeta(s, x) = m 2^scale.
struct ScaledValue {
  long double m;
  int scale;
};

// Hurwitz zeta(s, x) for integer s >= 2, x > 0: the terms (x + k)^-s below x + k = 10 + 1.1 s in long double (x + k
// exact, so the powers of the larger terms are not spoiled by a rounded base), then the Euler-Maclaurin tail
// x^(1-s) [1/(s-1) + 1/(2x) + sum_j B_2j/(2j)! s (s+1)...(s+2j-2) x^(-2j)]. When no term is summed, x^(1-s) is
// taken of the mantissa f of x = f 2^e and the scale (1-s) e kept apart, so the result does not underflow
// before the caller's factor n! is applied (psi^(n)(x) ~ (n-1)!/x^n down to the subnormals).
ScaledValue hurwitz_zeta(int s, long double x) {
  // B_2j / (2j)!, j = 1..10.
  constexpr double b[] = {1.0 / 6.0 / 2.0,
                          -1.0 / 30.0 / 24.0,
                          1.0 / 42.0 / 720.0,
                          -1.0 / 30.0 / 40320.0,
                          5.0 / 66.0 / 3628800.0,
                          -691.0 / 2730.0 / 479001600.0,
                          7.0 / 6.0 / 87178291200.0,
                          -3617.0 / 510.0 / 20922789888000.0,
                          43867.0 / 798.0 / 6402373705728000.0,
                          -174611.0 / 330.0 / 2432902008176640000.0};
  // The first neglected Bernoulli term is about 6e-18 (s)_21 x^(-s-21), below 1e-17 of zeta ~ x^(1-s)/(s-1)
  // from x = 10 + 1.1 s on (x > 9.1 for s = 2, 38 for s = 30, 49 for s = 51).
  const double start = 10.0 + 1.1 * s;
  long double sum = 0.0L, lx = x;
  for (; lx < start; lx += 1.0L) sum += 1.0L / integer_power(lx, s);
  const long double inv2 = 1.0L / (lx * lx);
  long double bracket = 0.0L;
  long double rising = s;     // s (s + 1) ... (s + 2j - 2)
  long double power = inv2;   // x^(-2j)
  for (size_t j = 0; j < std::size(b); ++j) {
    bracket += b[j] * rising * power;
    rising *= (s + 2.0L * j + 1.0L) * (s + 2.0L * j + 2.0L);
    power *= inv2;
  }
  bracket += 1.0L / (s - 1) + 0.5L / lx;
  if (sum == 0.0L) {
    int e = 0;
    const long double f = std::frexp(lx, &e);
    return {bracket / integer_power(f, s - 1), (1 - s) * e};
  }
  return {sum + bracket / integer_power(lx, s - 1), 0};
}

// psi^(n)(x) = (-1)^(n+1) n! zeta(n + 1, x) for x > 0, n >= 1.
long double polygamma_positive(int n, long double x) {
  long double factorial = 1.0L;
  for (int k = 2; k <= n; ++k) factorial *= k;
  const ScaledValue z = hurwitz_zeta(n + 1, x);
  return std::ldexp((n % 2 == 1 ? factorial : -factorial) * z.m, z.scale);
}

// The sum hi + lo of a number of terms in double-double: each added by Knuth's two-sum, the rounding errors
// gathered in lo.
struct CompensatedSum {
  double hi = 0.0;
  double lo = 0.0;
  void add(double t, double t_lo) {
    const double s = hi + t;
    const double tv = s - hi;
    lo += ((hi - (s - tv)) + (t - tv)) + t_lo;
    hi = s;
  }
};

// psi'(x) = sum_{k<N} 1/(x + k)^2 + psi'(x + N) with x + N >= 10, and psi'(z) = 1/z + 1/(2z^2) +
// sum_{k=1..9} B_2k / z^(2k+1) (first neglected term 5e-18 relative at z = 10), in double with the leading
// parts carried as double-double: z = x + k exactly as zh + zl, 1/z^2 and 1/z with their rounding errors from
// fma, summed with compensation: within 0.55 ulp (2000 points against mpmath), several times faster than the
// long double zeta series. For x >= kTrigammaFastMin (1/x^2 far from overflow, its error term from underflow).
constexpr double kTrigammaFastMin = 1e-100;
double trigamma_positive(double x) {
  // B_2k, k = 1..9.
  constexpr double bernoulli[] = {1.0 / 6.0,   -1.0 / 30.0,  1.0 / 42.0,     -1.0 / 30.0,     5.0 / 66.0,
                                  -691.0 / 2730.0, 7.0 / 6.0, -3617.0 / 510.0, 43867.0 / 798.0};
  CompensatedSum sum;
  double zh = x, zl = 0.0;
  for (double k = 1.0; zh < 10.0; k += 1.0) {
    // 1/z^2 for z = zh + zl: q + ql = zh^2 exactly, r = 1/q, and the correction r (1 - r q - r ql - 2 zl/zh).
    const double q = zh * zh;
    const double ql = std::fma(zh, zh, -q);
    const double r = 1.0 / q;
    sum.add(r, r * (std::fma(-r, q, 1.0) - r * ql - 2.0 * zl / zh));
    // x + k as zh + zl.
    zh = x + k;
    const double kv = zh - x;
    zl = (x - (zh - kv)) + (k - kv);
  }
  const double r = 1.0 / zh;
  const double w = r * r;
  double series = 0.0;
  for (size_t i = std::size(bernoulli); i-- > 0;) series = series * w + bernoulli[i];
  sum.add(0.5 * w + series * w * r, 0.0);
  sum.add(r, r * (std::fma(-r, zh, 1.0) - r * zl));
  return sum.hi + sum.lo;
}

}  // namespace

double digamma(double x) {
  if (std::isnan(x) || x == -HUGE_VAL || is_pole(x)) return std::numeric_limits<double>::quiet_NaN();
  if (x > 0.0) return psi_positive(x);
  return static_cast<double>(psi_positive_extended(1.0L - x) - pi_cot_pi_derivative(0, x));
}

double polygamma(int n, double x) {
  if (n == 0) return digamma(x);
  if (n < 0 || std::isnan(x) || x < kPolygammaMinArg || is_pole(x))
    return std::numeric_limits<double>::quiet_NaN();
  if (x == HUGE_VAL) return 0.0;
  if (n == 1 && x >= kTrigammaFastMin) return trigamma_positive(x);
  if (x > 0.0) return static_cast<double>(polygamma_positive(n, x));
  // Reflection: psi^(n)(x) = (-1)^n psi^(n)(1 - x) - pi d^n/dx^n cot(pi x), the cotangent's derivative from x
  // reduced exactly (zero at the half-integers for even n, where the result is the first term alone).
  const long double reflected = polygamma_positive(n, 1.0L - x);
  return static_cast<double>((n % 2 == 0 ? reflected : -reflected) - pi_cot_pi_derivative(n, x));
}

}  // namespace vek::specfun
