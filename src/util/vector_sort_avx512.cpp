// The vectorised quicksort for AVX-512 (F and DQ): eight 64-bit lanes, compares into mask registers. Only
// this file's code is generated for the instruction set; the library calls it only on machines that have it.
#include <immintrin.h>

#include <array>
#include <bit>
#include <cstdint>
#include <type_traits>

#include "util/vector_sort_variants.h"

#if defined(__clang__)
#pragma clang attribute push(__attribute__((target("avx512f,avx512dq,popcnt"))), apply_to = function)
#else
#pragma GCC push_options
#pragma GCC target("avx512f,avx512dq,popcnt")
// GCC 12's AVX-512 intrinsics start from a deliberately undefined register, which it then reports as
// uninitialised once they are inlined under a target pragma.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wuninitialized"
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif

#include "util/vector_sort_impl.h"

namespace vek::util::vector_sort_detail {
namespace {

struct Avx512 {
  static constexpr int N = 8;
  static constexpr int kNetworkRegisters = 8;
  static constexpr int kUnroll = 4;
  using Reg = __m512i;
  using Mask = __mmask8;
  using Index = __m512i;

  static Reg load(const void* p) { return _mm512_loadu_si512(p); }
  static void store(void* p, Reg v) { _mm512_storeu_si512(p, v); }
  // The first `count` lanes from p, the others from fill; and their store.
  static Reg load_partial(const void* p, int count, Reg fill) {
    return _mm512_mask_loadu_epi64(fill, static_cast<Mask>((1u << count) - 1), p);
  }
  static void store_partial(void* p, int count, Reg v) {
    _mm512_mask_storeu_epi64(p, static_cast<Mask>((1u << count) - 1), v);
  }
  static Reg broadcast(int64_t x) { return _mm512_set1_epi64(x); }

  static Mask less_int(Reg a, Reg b) { return _mm512_cmplt_epi64_mask(a, b); }
  static Mask equal_int(Reg a, Reg b) { return _mm512_cmpeq_epi64_mask(a, b); }
  static void min_max(Reg a, Reg b, Reg& low, Reg& high) {
    low = _mm512_min_epi64(a, b);
    high = _mm512_max_epi64(a, b);
  }
  // The larger of a and b in the lanes of `larger`, the smaller in the others.
  static Reg min_or_max(Reg a, Reg b, Mask larger) { return _mm512_mask_max_epi64(_mm512_min_epi64(a, b), larger, a, b); }
  // Flips the bits below the sign of the negative lanes.
  static Reg flip_negative(Reg x) { return _mm512_xor_si512(x, _mm512_srli_epi64(_mm512_srai_epi64(x, 63), 1)); }
  static Mask mask_and(Mask a, Mask b) { return static_cast<Mask>(a & b); }
  static Mask mask_or(Mask a, Mask b) { return static_cast<Mask>(a | b); }
  static Mask mask_not(Mask a) { return static_cast<Mask>(~a); }
  static Mask mask_from_bits(unsigned bits) { return static_cast<Mask>(bits); }
  static unsigned bits(Mask m) { return m; }

  // m ? b : a, lane by lane.
  static Reg select(Mask m, Reg a, Reg b) { return _mm512_mask_blend_epi64(m, a, b); }

  template <int J>
  static Reg exchange_lanes(Reg v) {
    if constexpr (J == 1) return _mm512_permutex_epi64(v, 0xB1);
    else if constexpr (J == 2) return _mm512_permutex_epi64(v, 0x4E);
    else return _mm512_shuffle_i64x2(v, v, 0x4E);
  }

  static Index compaction_index(unsigned bits) {
    static constexpr auto table = make_compaction_table<N>();
    return _mm512_cvtepu8_epi64(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(table[bits].data())));
  }
  static Reg permute(Reg v, Index idx) { return _mm512_permutexvar_epi64(idx, v); }
};

}  // namespace

void sort_avx512(double* a, int64_t n) { sort_reals<Avx512>(a, n); }
void sort_avx512(int64_t* a, int64_t n) { sort_integers<Avx512>(a, n); }
void sort_pairs_avx512(int64_t* keys, int64_t* items, int64_t n) { sort_pairs<Avx512>(keys, items, n); }

}  // namespace vek::util::vector_sort_detail

#if defined(__clang__)
#pragma clang attribute pop
#else
#pragma GCC diagnostic pop
#pragma GCC pop_options
#endif
