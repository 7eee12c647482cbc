// Gauss rules by the method of Golub and Welsch (1969): the abscissae are the eigenvalues of the symmetric
// tridiagonal Jacobi matrix of the three-term recurrence of the orthonormal polynomials, found by the root-free
// QL/QR kernel of the linear-algebra chapter (dsterf). Each is then refined by Newton's method on p_N evaluated
// by the recurrence itself, and its weight is the Christoffel number mu0 / sum_{k<N} p_k(x)^2 summed along the
// same recurrence (no eigenvectors: O(N^2) work, and the weights keep their relative accuracy where the first
// eigenvector components would only have absolute accuracy). The polynomials are rescaled by powers of two as
// they grow and the weights kept as a mantissa and a power of two, so that rules of hundreds of points for
// the unbounded weights lose nothing to overflow: weights below the range of doubles become 0.
//
// Recurrence coefficients of the monic polynomials p_{k+1} = (t - alpha_k) p_k - beta_k p_{k-1} on the
// standard range, mu0 the integral of the weight (Gautschi, "Orthogonal Polynomials: Computation and
// Approximation", 2004, Table 1.1):
//   Legendre, 1 on (-1, 1):            alpha_k = 0,         beta_k = k^2 / (4k^2 - 1),   mu0 = 2
//   Jacobi, (1-t)^a (1+t)^b on (-1, 1): alpha_k = (b^2 - a^2) / ((2k+a+b)(2k+a+b+2)),
//                                       beta_k = 4k(k+a)(k+b)(k+a+b) / ((2k+a+b)^2 (2k+a+b+1)(2k+a+b-1)),
//                                       with alpha_0 = (b-a)/(a+b+2), beta_1 = 4(a+1)(b+1)/((a+b+2)^2 (a+b+3)),
//                                       mu0 = 2^(a+b+1) B(a+1, b+1)
//   Laguerre, t^c exp(-t) on (0, inf):  alpha_k = 2k + c + 1, beta_k = k (k + c),       mu0 = Gamma(c + 1)
//   Hermite, exp(-t^2) on the line:    alpha_k = 0,         beta_k = k / 2,             mu0 = sqrt(pi)
// The rational family is Jacobi with a = 0, b = c - 2 after the change of variable u = (a + b)/(x + b) = (1+t)/2.
#include "zeros_quad/gauss_rules.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

#include "forwarded.h"
#include "specfun/specfun.h"

namespace vek::zeros_quad {
namespace {

// The recurrence, the Newton steps and the sums run in the 64-bit-mantissa extended precision of x86-64
// (11 bits beyond double), so that the abscissae and weights rounded to double are within an ulp or two of
// the exact ones even near the ends of the range, where the sum varies like N^2 with the abscissa.
using Real = long double;

// The orthonormal recurrence sqrt(beta_{k+1}) q_{k+1} = (t - alpha_k) q_k - sqrt(beta_k) q_{k-1}, q_0 = 1.
struct Recurrence {
  std::vector<Real> alpha;      // alpha_0 .. alpha_{n-1}
  std::vector<Real> sqrt_beta;  // sqrt(beta_0 = 0), sqrt(beta_1) .. sqrt(beta_n)
  double log_mu0 = 0.0;
  bool symmetric = false;       // the weight is even: abscissae come in pairs -t, t
};

Recurrence jacobi(int64_t n, double a_in, double b_in) {
  Recurrence r;
  r.alpha.resize(static_cast<size_t>(n));
  r.sqrt_beta.resize(static_cast<size_t>(n) + 1);
  const Real a = a_in, b = b_in, ab = a + b;
  r.alpha[0] = (b - a) / (ab + 2);
  for (int64_t k = 1; k < n; ++k) {
    const Real m = 2 * static_cast<Real>(k) + ab;
    r.alpha[static_cast<size_t>(k)] = (b - a) * ab / (m * (m + 2));
  }
  if (n >= 1) r.sqrt_beta[1] = std::sqrt(4 * (a + 1) * (b + 1) / ((ab + 2) * (ab + 2) * (ab + 3)));
  for (int64_t k = 2; k <= n; ++k) {
    const Real kd = static_cast<Real>(k), m = 2 * kd + ab;
    r.sqrt_beta[static_cast<size_t>(k)] = std::sqrt(4 * kd * (kd + a) * (kd + b) * (kd + ab) / (m * m * (m + 1) * (m - 1)));
  }
  r.log_mu0 = (a_in + b_in + 1.0) * std::numbers::ln2 + specfun::lbeta(a_in + 1.0, b_in + 1.0);
  r.symmetric = a_in == b_in;
  return r;
}

Recurrence legendre(int64_t n) {
  Recurrence r;
  r.alpha.assign(static_cast<size_t>(n), 0);
  r.sqrt_beta.resize(static_cast<size_t>(n) + 1);
  for (int64_t k = 1; k <= n; ++k) {
    const Real kd = static_cast<Real>(k);
    r.sqrt_beta[static_cast<size_t>(k)] = kd / std::sqrt((2 * kd - 1) * (2 * kd + 1));
  }
  r.log_mu0 = std::numbers::ln2;
  r.symmetric = true;
  return r;
}

Recurrence laguerre(int64_t n, double c) {
  Recurrence r;
  r.alpha.resize(static_cast<size_t>(n));
  r.sqrt_beta.resize(static_cast<size_t>(n) + 1);
  for (int64_t k = 0; k < n; ++k) r.alpha[static_cast<size_t>(k)] = 2 * static_cast<Real>(k) + c + 1;
  for (int64_t k = 1; k <= n; ++k) {
    const Real kd = static_cast<Real>(k);
    r.sqrt_beta[static_cast<size_t>(k)] = std::sqrt(kd * (kd + c));
  }
  r.log_mu0 = specfun::lgamma(c + 1.0);
  return r;
}

Recurrence hermite(int64_t n) {
  Recurrence r;
  r.alpha.assign(static_cast<size_t>(n), 0);
  r.sqrt_beta.resize(static_cast<size_t>(n) + 1);
  for (int64_t k = 1; k <= n; ++k) r.sqrt_beta[static_cast<size_t>(k)] = std::sqrt(static_cast<Real>(k) / 2);
  r.log_mu0 = 0.5 * std::log(std::numbers::pi);
  r.symmetric = true;
  return r;
}

// q_n(t) and q_n'(t) up to a common factor 2^(300 scalings), and sum_{k<n} q_k(t)^2 = sum 2^(600 scalings).
struct AtPoint {
  Real q, dq, sum;
  int scalings;
};

AtPoint evaluate(const Recurrence& r, Real t) {
  constexpr Real big = 0x1p300L, shrink = 0x1p-300L;
  const size_t n = r.alpha.size();
  Real q0 = 0, q1 = 1, d0 = 0, d1 = 0, sum = 0;
  int scalings = 0;
  for (size_t k = 0; k < n; ++k) {
    sum += q1 * q1;
    const Real s = t - r.alpha[k];
    const Real q2 = (s * q1 - r.sqrt_beta[k] * q0) / r.sqrt_beta[k + 1];
    const Real d2 = (q1 + s * d1 - r.sqrt_beta[k] * d0) / r.sqrt_beta[k + 1];
    q0 = q1, q1 = q2, d0 = d1, d1 = d2;
    if (std::abs(q1) > big || std::abs(d1) > big) {
      q0 *= shrink, q1 *= shrink, d0 *= shrink, d1 *= shrink;
      sum *= shrink * shrink;
      ++scalings;
    }
  }
  return {q1, d1, sum, scalings};
}

// The abscissae t (ascending) and their weights on the standard range without the factor mu0, each weight
// as weight[i] * 2^exponent[i].
void standard_rule(const Recurrence& r, std::vector<Real>& t, std::vector<Real>& weight, std::vector<int>& exponent) {
  const int64_t n = static_cast<int64_t>(r.alpha.size());
  std::vector<double> d(r.alpha.begin(), r.alpha.end()), e(r.sqrt_beta.begin() + 1, r.sqrt_beta.end());
  int64_t info = 0;
  vekob_dsterf_(&n, d.data(), e.data(), &info);  // a failure leaves d unsorted: Newton still refines each
  std::sort(d.begin(), d.end());
  t.assign(d.begin(), d.end());
  Real norm = 0;
  for (size_t k = 0; k < r.alpha.size(); ++k) norm = std::max(norm, std::abs(r.alpha[k]) + 2 * r.sqrt_beta[k + 1]);
  // An even weight: the lower half is refined and mirrored (the middle abscissa of an odd rule is 0).
  const size_t count = r.symmetric ? (t.size() + 1) / 2 : t.size();
  weight.resize(t.size());
  exponent.resize(t.size());
  for (size_t i = 0; i < count; ++i) {
    // The eigenvalue is within a few eps * norm; a step beyond 1e-8 norm means the value was not informative
    // and is not taken. Convergence is quadratic: two or three evaluations, the last (whose step no longer
    // changes t) giving the weight.
    AtPoint at = evaluate(r, t[i]);
    for (int step = 0; step < 8; ++step) {
      if (at.dq == 0 || !std::isfinite(at.q / at.dq)) break;
      const Real delta = at.q / at.dq;
      if (std::abs(delta) > 1e-8L * norm || std::abs(delta) <= 0x1p-66L * std::abs(t[i])) break;
      t[i] -= delta;
      at = evaluate(r, t[i]);
    }
    weight[i] = 1 / at.sum;
    exponent[i] = -600 * at.scalings;
  }
  if (!r.symmetric) return;
  if (t.size() % 2 == 1) t[t.size() / 2] = 0;
  for (size_t i = 0, j = t.size() - 1; i < j; ++i, --j) {
    t[j] = -t[i];
    weight[j] = weight[i];
    exponent[j] = exponent[i];
  }
}

}  // namespace

void gauss_rule(const GaussWeight& wt, int64_t n, bool adjusted, double* weights, double* abscissae) {
  const GaussFamily family = wt.family;
  Recurrence r;
  switch (family) {
    case GaussFamily::legendre: r = legendre(n); break;
    case GaussFamily::rational: r = jacobi(n, 0.0, wt.c - 2.0); break;
    case GaussFamily::laguerre: r = laguerre(n, wt.c); break;
    case GaussFamily::hermite: r = hermite(n); break;
    case GaussFamily::jacobi: r = jacobi(n, wt.c, wt.d); break;
  }
  std::vector<Real> t, w;
  std::vector<int> exponent;
  standard_rule(r, t, w, exponent);

// The factor common to all weights (mu0 and dx/dt), as a logarithm; per abscissa x(t) and the logarithm of
  // the weight function at x (for the adjusted weights), from t so that distances to the ends stay exact.
  const double half = 0.5 * wt.b - 0.5 * wt.a;
  double log_factor = r.log_mu0;
  switch (family) {
    case GaussFamily::legendre: log_factor += std::log(half); break;
    case GaussFamily::jacobi: log_factor += (wt.c + wt.d + 1.0) * std::log(half); break;
    case GaussFamily::laguerre: log_factor -= (wt.c + 1.0) * std::log(wt.b); break;
    case GaussFamily::hermite: log_factor -= 0.5 * std::log(wt.b); break;
    // The integral over x is (a+b)^(1-c) 2^(1-c) times the integral of (1+t)^(c-2) over t.
    case GaussFamily::rational: log_factor += (1.0 - wt.c) * (std::log(wt.a + wt.b) + std::numbers::ln2); break;
  }
  const Real half_x = static_cast<Real>(wt.b) / 2 - static_cast<Real>(wt.a) / 2;
  const Real mid_x = static_cast<Real>(wt.a) / 2 + static_cast<Real>(wt.b) / 2;
  for (size_t i = 0; i < t.size(); ++i) {
    const Real ti = t[i];
    Real x = 0, log_w_x = 0;
    size_t at = i;
    switch (family) {
      case GaussFamily::legendre: x = mid_x + half_x * ti; break;
      case GaussFamily::jacobi:
        x = mid_x + half_x * ti;
        log_w_x = wt.c * std::log(half_x * (1 - ti)) + wt.d * std::log(half_x * (1 + ti));
        break;
      case GaussFamily::laguerre: {
        const Real s = ti / wt.b;
        x = wt.a + s;
        log_w_x = (wt.c == 0.0 ? 0 : wt.c * std::log(s)) - ti;
        break;
      }
      case GaussFamily::hermite:
        x = wt.a + ti / std::sqrt(static_cast<Real>(wt.b));
        log_w_x = -ti * ti;
        break;
      case GaussFamily::rational: {
        // u = (1 + t)/2 = (a + b)/(x + b) in (0, 1): the largest x comes from the smallest t.
        const Real u = (1 + ti) / 2, scale = static_cast<Real>(wt.a) + wt.b;
        x = scale / u - wt.b;
        log_w_x = -wt.c * (std::log(scale) - std::log(u));
        at = t.size() - 1 - i;
        break;
      }
    }
    abscissae[at] = static_cast<double>(x);
    // w * exp(g) * 2^exponent, with exp(g) formed directly while it is a normal number.
    const Real g = adjusted ? log_factor - log_w_x : log_factor;
    const Real factor = std::exp(g);
    weights[at] = static_cast<double>(std::isnormal(factor) ? std::ldexp(w[i] * factor, exponent[i])
                                                            : std::exp(std::log(w[i]) + g + exponent[i] * std::numbers::ln2_v<Real>));
  }
}

}  // namespace vek::zeros_quad
