// The vectorised quicksort for AVX2: four 64-bit lanes, compares into vector masks whose sign bits are the
// mask bits. Only this file's code is generated for the instruction set; the library calls it only on
// machines that have it.
#include <immintrin.h>

#include <array>
#include <bit>
#include <cstdint>
#include <type_traits>

#include "util/vector_sort_variants.h"

#if defined(__clang__)
#pragma clang attribute push(__attribute__((target("avx2,popcnt"))), apply_to = function)
#else
#pragma GCC push_options
#pragma GCC target("avx2,popcnt")
#endif

#include "util/vector_sort_impl.h"

namespace vek::util::vector_sort_detail {
namespace {

// The eight 32-bit halves of the lanes of a compaction, for the 32-bit permutation AVX2 has.
constexpr std::array<std::array<int32_t, 8>, 16> make_halves_table() {
  constexpr auto lanes = make_compaction_table<4>();
  std::array<std::array<int32_t, 8>, 16> table{};
  for (size_t bits = 0; bits < 16; ++bits)
    for (size_t l = 0; l < 4; ++l) {
      table[bits][2 * l] = 2 * lanes[bits][l];
      table[bits][2 * l + 1] = 2 * lanes[bits][l] + 1;
    }
  return table;
}

// Lane l all ones where bit l is set.
constexpr std::array<std::array<int64_t, 4>, 16> make_mask_table() {
  std::array<std::array<int64_t, 4>, 16> table{};
  for (size_t bits = 0; bits < 16; ++bits)
    for (size_t l = 0; l < 4; ++l) table[bits][l] = (bits >> l & 1u) ? -1 : 0;
  return table;
}

struct Avx2 {
  static constexpr int N = 4;
  static constexpr int kNetworkRegisters = 16;
  static constexpr int kUnroll = 8;
  using Reg = __m256i;
  using Mask = __m256i;
  using Index = __m256i;

  static Reg load(const void* p) { return _mm256_loadu_si256(static_cast<const __m256i*>(p)); }
  static void store(void* p, Reg v) { _mm256_storeu_si256(static_cast<__m256i*>(p), v); }
  // The first `count` lanes from p, the others from fill; and their store.
  static Reg load_partial(const void* p, int count, Reg fill) {
    const Mask m = mask_from_bits((1u << count) - 1);
    return select(m, fill, _mm256_maskload_epi64(static_cast<const long long*>(p), m));
  }
  static void store_partial(void* p, int count, Reg v) {
    _mm256_maskstore_epi64(static_cast<long long*>(p), mask_from_bits((1u << count) - 1), v);
  }
  static Reg broadcast(int64_t x) { return _mm256_set1_epi64x(x); }

  static Mask less_int(Reg a, Reg b) { return _mm256_cmpgt_epi64(b, a); }
  static Mask equal_int(Reg a, Reg b) { return _mm256_cmpeq_epi64(a, b); }
  static void min_max(Reg a, Reg b, Reg& low, Reg& high) {
    const Mask a_above = _mm256_cmpgt_epi64(a, b);
    low = select(a_above, a, b);
    high = select(a_above, b, a);
  }
  // The larger of a and b in the lanes of `larger`, the smaller in the others.
  static Reg min_or_max(Reg a, Reg b, Mask larger) { return select(_mm256_xor_si256(_mm256_cmpgt_epi64(a, b), larger), a, b); }
  // Flips the bits below the sign of the negative lanes.
  static Reg flip_negative(Reg x) {
    return _mm256_xor_si256(x, _mm256_srli_epi64(_mm256_cmpgt_epi64(_mm256_setzero_si256(), x), 1));
  }
  static Mask mask_and(Mask a, Mask b) { return _mm256_and_si256(a, b); }
  static Mask mask_or(Mask a, Mask b) { return _mm256_or_si256(a, b); }
  static Mask mask_not(Mask a) { return _mm256_xor_si256(a, _mm256_set1_epi64x(-1)); }
  static Mask mask_from_bits(unsigned bits) {
    static constexpr auto table = make_mask_table();
    return load(table[bits].data());
  }
  static unsigned bits(Mask m) { return static_cast<unsigned>(_mm256_movemask_pd(_mm256_castsi256_pd(m))); }

  // m ? b : a, lane by lane.
  static Reg select(Mask m, Reg a, Reg b) {
    return _mm256_castpd_si256(
        _mm256_blendv_pd(_mm256_castsi256_pd(a), _mm256_castsi256_pd(b), _mm256_castsi256_pd(m)));
  }

  template <int J>
  static Reg exchange_lanes(Reg v) {
    if constexpr (J == 1) return _mm256_castpd_si256(_mm256_permute_pd(_mm256_castsi256_pd(v), 0x5));
    else return _mm256_permute4x64_epi64(v, 0x4E);
  }

  static Index compaction_index(unsigned bits) {
    static constexpr auto table = make_halves_table();
    return load(table[bits].data());
  }
  static Reg permute(Reg v, Index idx) { return _mm256_permutevar8x32_epi32(v, idx); }
};

}  // namespace

void sort_avx2(double* a, int64_t n) { sort_reals<Avx2>(a, n); }
void sort_avx2(int64_t* a, int64_t n) { sort_integers<Avx2>(a, n); }
void sort_pairs_avx2(int64_t* keys, int64_t* items, int64_t n) { sort_pairs<Avx2>(keys, items, n); }

}  // namespace vek::util::vector_sort_detail

#if defined(__clang__)
#pragma clang attribute pop
#else
#pragma GCC pop_options
#endif
