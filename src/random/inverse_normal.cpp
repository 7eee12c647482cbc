#include "random/inverse_normal.h"

#include <immintrin.h>

#include <algorithm>
#include <cmath>

#include "frame/constants.h"
#include "frame/threads.h"

namespace vek::random {
namespace {

// Coefficients of AS 241, highest power first: central region |p - 1/2| <= 0.425 (A/B), intermediate tail
// r <= 5 (C/D), far tail (E/F).
constexpr double kA[] = {2509.0809287301227,  33430.57558358813,  67265.7709270087,  45921.95393154987,
                         13731.69376550946,   1971.5909503065513, 133.14166789178438, 3.3871328727963665};
constexpr double kB[] = {5226.495278852854, 28729.085735721943, 39307.89580009271, 21213.794301586597,
                         5394.196021424751, 687.1870074920579,  42.31333070160091, 1.0};
constexpr double kC[] = {0.0007745450142783414, 0.022723844989269184, 0.2417807251774506, 1.2704582524523684,
                         3.6478483247632045,    5.769497221460691,    4.630337846156546,  1.4234371107496835};
constexpr double kD[] = {1.0507500716444169e-9, 0.0005475938084995345, 0.015198666563616457,
                         0.14810397642748008,   0.6897673349851,       1.6763848301838038,
                         2.053191626637759,     1.0};
constexpr double kE[] = {2.0103343992922881e-7, 2.7115555687434876e-5, 0.0012426609473880784,
                         0.026532189526576124,  0.29656057182850487,   1.7848265399172913,
                         5.463784911164114,     6.657904643501103};
constexpr double kF[] = {2.0442631033899397e-15, 1.421511758316446e-7, 1.8463183175100548e-5,
                         0.0007868691311456133,  0.014875361290850615, 0.1369298809227358,
                         0.599832206555888,      1.0};

template <size_t N>
double horner(const double (&c)[N], double x) {
  double s = c[0];
  for (size_t i = 1; i < N; ++i) s = s * x + c[i];
  return s;
}

constexpr int64_t kMinPerThread = 16384;

double central(double q) {
  const double r = 0.180625 - q * q;
  return q * horner(kA, r) / horner(kB, r);
}

double tail(double p, double q) {
  double r = q < 0.0 ? p : 1.0 - p;
  if (!(r > 0.0)) r = constants::safe_range();
  r = std::sqrt(-std::log(r));
  double z;
  if (r <= 5.0) {
    r -= 1.6;
    z = horner(kC, r) / horner(kD, r);
  } else {
    r -= 5.0;
    z = horner(kE, r) / horner(kF, r);
  }
  return q < 0.0 ? -z : z;
}

// One chunk: the central formula for every element (AVX2, four at a time, when the machine has it; each
// operation rounds as the scalar one does, contraction being off), then the tails, about 15% of uniforms, one
// by one.
constexpr size_t kChunk = 256;

void central_generic(const double* v, double* out, size_t n, double mu, double sigma) {
  for (size_t i = 0; i < n; ++i) {
    const double q = v[i] - 0.5;
    out[i] = mu + sigma * central(std::fabs(q) <= 0.425 ? q : 0.0);
  }
}

template <size_t N>
[[gnu::target("avx2")]] __m256d horner4(const double (&c)[N], __m256d x) {
  __m256d s = _mm256_set1_pd(c[0]);
  for (size_t i = 1; i < N; ++i) s = _mm256_add_pd(_mm256_mul_pd(s, x), _mm256_set1_pd(c[i]));
  return s;
}

[[gnu::target("avx2")]] void central_avx2(const double* v, double* out, size_t n, double mu, double sigma) {
  const __m256d half = _mm256_set1_pd(0.5), bound = _mm256_set1_pd(0.425), c0 = _mm256_set1_pd(0.180625);
  const __m256d abs_mask = _mm256_castsi256_pd(_mm256_set1_epi64x(0x7fffffffffffffffLL));
  const __m256d muv = _mm256_set1_pd(mu), sigmav = _mm256_set1_pd(sigma);
  size_t i = 0;
  for (; i + 4 <= n; i += 4) {
    __m256d q = _mm256_sub_pd(_mm256_loadu_pd(v + i), half);
    q = _mm256_and_pd(q, _mm256_cmp_pd(_mm256_and_pd(q, abs_mask), bound, _CMP_LE_OQ));
    const __m256d r = _mm256_sub_pd(c0, _mm256_mul_pd(q, q));
    const __m256d z = _mm256_div_pd(_mm256_mul_pd(q, horner4(kA, r)), horner4(kB, r));
    _mm256_storeu_pd(out + i, _mm256_add_pd(muv, _mm256_mul_pd(sigmav, z)));
  }
  central_generic(v + i, out + i, n - i, mu, sigma);
}

void normal_chunk(double* v, size_t n, double mu, double sigma) {
  static const bool avx2 = __builtin_cpu_supports("avx2");
  double central_value[kChunk];
  (avx2 ? central_avx2 : central_generic)(v, central_value, n, mu, sigma);
  for (size_t i = 0; i < n; ++i) {
    const double q = v[i] - 0.5;
    v[i] = std::fabs(q) <= 0.425 ? central_value[i] : mu + sigma * tail(v[i], q);
  }
}

}  // namespace

double inverse_normal(double p) {
  const double q = p - 0.5;
  return std::fabs(q) <= 0.425 ? central(q) : tail(p, q);
}

void normal_from_uniforms(std::span<double> x, double mu, double sigma) {
  const auto n = static_cast<int64_t>(x.size());
  const int64_t chunks = (n + static_cast<int64_t>(kChunk) - 1) / static_cast<int64_t>(kChunk);
  double* v = x.data();
  const int threads = static_cast<int>(std::clamp<int64_t>(n / kMinPerThread, 1, threads::max_threads()));
#pragma omp parallel for schedule(static) num_threads(threads) if (threads > 1)
  for (int64_t c = 0; c < chunks; ++c) {
    const int64_t first = c * static_cast<int64_t>(kChunk);
    normal_chunk(v + first, static_cast<size_t>(std::min<int64_t>(kChunk, n - first)), mu, sigma);
  }
}

}  // namespace vek::random
