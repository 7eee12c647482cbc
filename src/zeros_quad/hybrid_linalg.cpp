// The dense kernels of the hybrid method (hybrid_linalg.h).
#include "zeros_quad/hybrid_linalg.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace vek::zeros_quad {

namespace {

constexpr double kEps = std::numeric_limits<double>::epsilon();

// Squares are formed before they are scaled, in the order of the published routines, so that iterates can be
// compared with theirs to the bit.
constexpr double square(double t) { return t * t; }

struct Rotation {
  double cos, sin, tau;  // tau: the one number from which apply_rotations rebuilds cos and sin
};

// The rotation that zeroes `b` against `a`: cos a + sin b in the first place, 0 in the second.
Rotation rotation_against(double a, double b) {
  if (std::abs(a) < std::abs(b)) {
    const double cotan = a / b;
    const double sin = 0.5 / std::sqrt(0.25 + 0.25 * square(cotan));
    const double cos = sin * cotan;
    const double tau = std::abs(cos) * std::numeric_limits<double>::max() > 1.0 ? 1.0 / cos : 1.0;
    return {cos, sin, tau};
  }
  const double tan = b / a;
  const double cos = 0.5 / std::sqrt(0.25 + 0.25 * square(tan));
  const double sin = cos * tan;
  return {cos, sin, sin};
}

// cos and sin back from tau: |tau| > 1 stores 1/cos, otherwise sin.
Rotation rotation_from(double tau) {
  if (std::abs(tau) > 1.0) {
    const double cos = 1.0 / tau;
    return {cos, std::sqrt(1.0 - square(cos)), tau};
  }
  return {std::sqrt(1.0 - square(tau)), tau, tau};
}

}  // namespace

double euclidean_norm(int64_t n, const double* v, int64_t stride) {
  // MINPACK's enorm: squares of intermediate components summed directly, small and large ones each scaled
  // by the largest of their kind, so nothing overflows or underflows harmfully and the sum of intermediate
  // components is the plain one.
  constexpr double kDwarf = 3.834e-20, kGiant = 1.304e19;
  const double giant = kGiant / static_cast<double>(n);
  double large = 0.0, middle = 0.0, small = 0.0, large_max = 0.0, small_max = 0.0;
  for (int64_t i = 0; i < n; ++i) {
    const double a = std::abs(v[i * stride]);
    if (a > kDwarf && a < giant) {
      middle += a * a;
    } else if (a > kDwarf) {
      if (a > large_max) {
        large = 1.0 + large * square(large_max / a);
        large_max = a;
      } else {
        large += square(a / large_max);
      }
    } else if (a > small_max) {
      small = 1.0 + small * square(small_max / a);
      small_max = a;
    } else if (a != 0.0) {
      small += square(a / small_max);
    }
  }
  if (large != 0.0) return large_max * std::sqrt(large + (middle / large_max) / large_max);
  if (middle == 0.0) return small_max * std::sqrt(small);
  if (middle >= small_max) return std::sqrt(middle * (1.0 + (small_max / middle) * (small_max * small)));
  return std::sqrt(small_max * ((middle / small_max) + (small_max * small)));
}

void householder_qr(int64_t n, double* a, double* rdiag, double* column_norms) {
  for (int64_t j = 0; j < n; ++j) column_norms[j] = euclidean_norm(n, a + j * n);
  for (int64_t j = 0; j < n; ++j) {
    double* aj = a + j * n;
    double norm = euclidean_norm(n - j, aj + j);
    if (norm != 0.0) {
      if (aj[j] < 0.0) norm = -norm;
      for (int64_t i = j; i < n; ++i) aj[i] /= norm;
      aj[j] += 1.0;
      for (int64_t k = j + 1; k < n; ++k) {
        double* ak = a + k * n;
        double sum = 0.0;
        for (int64_t i = j; i < n; ++i) sum += aj[i] * ak[i];
        const double t = sum / aj[j];
        for (int64_t i = j; i < n; ++i) ak[i] -= t * aj[i];
      }
    }
    rdiag[j] = -norm;
  }
}

void form_q(int64_t n, double* a, double* work) {
  for (int64_t j = 1; j < n; ++j) std::fill(a + j * n, a + j * n + j, 0.0);
  for (int64_t k = n - 1; k >= 0; --k) {
    double* ak = a + k * n;
    for (int64_t i = k; i < n; ++i) {
      work[i] = ak[i];
      ak[i] = 0.0;
    }
    ak[k] = 1.0;
    if (work[k] == 0.0) continue;
    for (int64_t j = k; j < n; ++j) {
      double* aj = a + j * n;
      double sum = 0.0;
      for (int64_t i = k; i < n; ++i) sum += aj[i] * work[i];
      const double t = sum / work[k];
      for (int64_t i = k; i < n; ++i) aj[i] -= t * work[i];
    }
  }
}

void rank1_update(int64_t n, double* s, const double* u, double* v, double* w) {
  const int64_t last = n - 1;
  // Rotate v into a multiple of the last unit vector, which turns R's last row into a spike held in w.
  w[last] = s[packed_diagonal(n, last)];
  for (int64_t j = last - 1; j >= 0; --j) {
    w[j] = 0.0;
    if (v[j] == 0.0) continue;
    const Rotation g = rotation_against(v[last], v[j]);
    v[last] = g.sin * v[j] + g.cos * v[last];
    v[j] = g.tau;
    for (int64_t i = j, l = packed_diagonal(n, j); i < n; ++i, ++l) {
      const double t = g.cos * s[l] - g.sin * w[i];
      w[i] = g.sin * s[l] + g.cos * w[i];
      s[l] = t;
    }
  }
  // The rank-one term joins the spike; rotations from the top remove it again.
  for (int64_t i = 0; i < n; ++i) w[i] += v[last] * u[i];
  for (int64_t j = 0; j < last; ++j) {
    if (w[j] == 0.0) continue;
    const int64_t jj = packed_diagonal(n, j);
    const Rotation g = rotation_against(s[jj], w[j]);
    for (int64_t i = j, l = jj; i < n; ++i, ++l) {
      const double t = g.cos * s[l] + g.sin * w[i];
      w[i] = -g.sin * s[l] + g.cos * w[i];
      s[l] = t;
    }
    w[j] = g.tau;
  }
  s[packed_diagonal(n, last)] = w[last];
}

void apply_rotations(int64_t m, int64_t n, double* a, int64_t lda, const double* v, const double* w) {
  double* an = a + (n - 1) * lda;
  for (int64_t j = n - 2; j >= 0; --j) {
    const Rotation g = rotation_from(v[j]);
    double* aj = a + j * lda;
    for (int64_t i = 0; i < m; ++i) {
      const double t = g.cos * aj[i] - g.sin * an[i];
      an[i] = g.sin * aj[i] + g.cos * an[i];
      aj[i] = t;
    }
  }
  for (int64_t j = 0; j + 1 < n; ++j) {
    const Rotation g = rotation_from(w[j]);
    double* aj = a + j * lda;
    for (int64_t i = 0; i < m; ++i) {
      const double t = g.cos * aj[i] + g.sin * an[i];
      an[i] = -g.sin * aj[i] + g.cos * an[i];
      aj[i] = t;
    }
  }
}

void dogleg(int64_t n, const double* r, const double* diag, const double* qtb, double delta, double* x,
            double* wa1, double* wa2) {
  // The Gauss-Newton step by back substitution; a zero pivot is replaced by a tiny multiple of its column.
  for (int64_t j = n - 1; j >= 0; --j) {
    const int64_t jj = packed_diagonal(n, j);
    double sum = 0.0;
    for (int64_t i = j + 1; i < n; ++i) sum += r[jj + (i - j)] * x[i];
    double pivot = r[jj];
    if (pivot == 0.0) {
      for (int64_t i = 0; i <= j; ++i) pivot = std::max(pivot, std::abs(r[packed_diagonal(n, i) + (j - i)]));
      pivot *= kEps;
      if (pivot == 0.0) pivot = kEps;
    }
    x[j] = (qtb[j] - sum) / pivot;
  }
  for (int64_t j = 0; j < n; ++j) {
    wa1[j] = 0.0;
    wa2[j] = diag[j] * x[j];
  }
  const double qnorm = euclidean_norm(n, wa2);
  if (qnorm <= delta) return;

  // The scaled gradient direction (R^T qtb) / diag.
  for (int64_t j = 0, l = 0; j < n; ++j) {
    const double t = qtb[j];
    for (int64_t i = j; i < n; ++i, ++l) wa1[i] += r[l] * t;
    wa1[j] /= diag[j];
  }
  const double gnorm = euclidean_norm(n, wa1);
  double sgnorm = 0.0;
  double alpha = delta / qnorm;
  if (gnorm != 0.0) {
    // The minimiser of the model along the scaled gradient, at distance sgnorm.
    for (int64_t j = 0; j < n; ++j) wa1[j] = (wa1[j] / gnorm) / diag[j];
    for (int64_t j = 0, l = 0; j < n; ++j) {
      double sum = 0.0;
      for (int64_t i = j; i < n; ++i, ++l) sum += r[l] * wa1[i];
      wa2[j] = sum;
    }
    const double t = euclidean_norm(n, wa2);
    sgnorm = (gnorm / t) / t;
    alpha = 0.0;
    if (sgnorm < delta) {
      // The point of the dogleg path at scaled distance delta.
      const double bnorm = euclidean_norm(n, qtb);
      const double dq = delta / qnorm, sd = sgnorm / delta;
      double u = (bnorm / gnorm) * (bnorm / qnorm) * sd;
      u = u - dq * square(sd) + std::sqrt(square(u - dq) + (1.0 - square(dq)) * (1.0 - square(sd)));
      alpha = dq * (1.0 - square(sd)) / u;
    }
  }
  const double t = (1.0 - alpha) * std::min(sgnorm, delta);
  for (int64_t j = 0; j < n; ++j) x[j] = t * wa1[j] + alpha * x[j];
}

}  // namespace vek::zeros_quad
