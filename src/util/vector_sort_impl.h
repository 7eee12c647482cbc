// The vectorised quicksort, generic in the instruction set: included by one source file per instruction set,
// after that file has switched its code generation to the set (so every template here is compiled for it).
//
// Method (after Blacher, Giesen, Sanders and Wassenberg, "Vectorized and performance-portable quicksort", 2022,
// and Bramas's AVX-512 quicksort, 2017):
// - Partition in place a vector at a time. The first and last vectors of the range are held in registers, so
//   there is always a vector's room on each side; the next vector is read from the side with less room. Its
//   lanes below the pivot are moved to the front of the register and the rest behind them in their order (one
//   permutation from a table indexed by the comparison's bits), and the register is stored twice: at the left
//   write position, where the front lanes count, and ending at the right write position, where the back lanes
//   count. The lanes of each store that do not count fall on free room that later stores overwrite.
// - Pivot: the median of a sorted sample spread over the range. When nothing is below it (it was the least
//   element), the range is partitioned again by "not above the pivot": that left side is all equal to the
//   pivot and is finished, so equal keys cost one pass and every step makes progress.
// - Ranges of at most kBlock elements are sorted by a bitonic network in registers (Batcher, 1968), padded to
//   a power of two with the largest element; every compare-exchange is a compare and a select, so elements
//   are moved, never recomputed, and equal elements (such as -0 and +0) keep their bits.
// - A range split more than 2 log2(n) + 4 times, which only input built against the sampled pivots can cause,
//   is finished by heapsort.
//
// An instruction set supplies (struct Isa): N 64-bit lanes per register Reg, a compare mask Mask with its
// bits, compares of signed 64-bit integers, their minimum and maximum (and, lane by lane, the one a mask asks
// for), a select, the permutations that exchange lanes i and i ^ J, and the permutation that packs the lanes
// of given mask bits to the front.
#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <type_traits>

namespace vek::util::vector_sort_detail {

// The permutation packing the lanes whose bit is set in `bits` to the front and the others behind them, each
// group in lane order: entry l is the source lane of lane l.
template <int N>
constexpr std::array<std::array<uint8_t, N>, (1u << N)> make_compaction_table() {
  std::array<std::array<uint8_t, N>, (1u << N)> table{};
  for (unsigned bits = 0; bits < (1u << N); ++bits) {
    int out = 0;
    for (int lane = 0; lane < N; ++lane)
      if (bits >> lane & 1u) table[bits][out++] = static_cast<uint8_t>(lane);
    for (int lane = 0; lane < N; ++lane)
      if (!(bits >> lane & 1u)) table[bits][out++] = static_cast<uint8_t>(lane);
  }
  return table;
}

// Bits of the lanes that keep the larger element in the bitonic stage (K, J) for register r of N lanes: the
// element with index g compares with g ^ J, and the sequence of K elements holding g is sorted ascending when
// bit K of g is clear. The lane whose bit J is set holds the larger of an ascending pair.
template <int N>
constexpr unsigned larger_lanes(int k, int j, int r) {
  unsigned bits = 0;
  for (int lane = 0; lane < N; ++lane) {
    const int g = r * N + lane;
    if (((g & j) != 0) != ((g & k) != 0)) bits |= 1u << lane;
  }
  return bits;
}

// Sorting of signed 64-bit integers (doubles arrive as integers of the same order, see to_ordered_integers).
template <class Isa>
struct Keys {
  using Reg = typename Isa::Reg;
  using Mask = typename Isa::Mask;
  using Elem = int64_t;
  struct Vec {
    Reg key;
  };
  // May alias: the doubles of a real sort are sorted through this view.
  using Integer = int64_t __attribute__((may_alias));
  struct Ref {
    Integer* key;
  };

  static Vec load(Ref d, int64_t i) { return {Isa::load(d.key + i)}; }
  static void store(Ref d, int64_t i, Vec v) { Isa::store(d.key + i, v.key); }
  static Vec load_partial(Ref d, int64_t i, int count) {
    return {Isa::load_partial(d.key + i, count, Isa::broadcast(INT64_MAX))};
  }
  static void store_partial(Ref d, int64_t i, int count, Vec v) { Isa::store_partial(d.key + i, count, v.key); }
  static Vec broadcast(Elem x) { return {Isa::broadcast(x)}; }
  static Mask less(Vec a, Vec b) { return Isa::less_int(a.key, b.key); }
  static void min_max(Vec a, Vec b, Vec& low, Vec& high) { Isa::min_max(a.key, b.key, low.key, high.key); }
  static Vec min_or_max(Vec a, Vec b, Mask larger) { return {Isa::min_or_max(a.key, b.key, larger)}; }
  static Vec select(Mask m, Vec a, Vec b) { return {Isa::select(m, a.key, b.key)}; }
  static Vec permute(Vec v, typename Isa::Index idx) { return {Isa::permute(v.key, idx)}; }
  template <int J>
  static Vec exchange_lanes(Vec v) { return {Isa::template exchange_lanes<J>(v.key)}; }

  static Elem get(Ref d, int64_t i) { return d.key[i]; }
  static void set(Ref d, int64_t i, Elem x) { d.key[i] = x; }
  static bool less(Elem a, Elem b) { return a < b; }

  template <int Size>
  struct Buffer {
    alignas(64) Integer key[Size];
    Ref ref() { return {key}; }
  };
};

// Replaces the bits of each double of a[0..n) (no NaNs) by a signed integer of the same order, -0 below +0:
// a negative double's bits below the sign are flipped, so larger magnitudes give smaller integers. Applied
// twice it restores the doubles.
template <class Isa>
void to_ordered_integers(typename Keys<Isa>::Integer* a, int64_t n) {
  int64_t i = 0;
  for (; i + Isa::N <= n; i += Isa::N) Isa::store(a + i, Isa::flip_negative(Isa::load(a + i)));
  for (; i < n; ++i) a[i] ^= static_cast<int64_t>(static_cast<uint64_t>(a[i] >> 63) >> 1);
}

// Sorting of (key, item) pairs of signed 64-bit integers in lexicographic order: the ranks of a vector whose
// keys have been made integers, the item numbers breaking ties so that the ranking is stable.
template <class Isa>
struct Pairs {
  using Reg = typename Isa::Reg;
  using Mask = typename Isa::Mask;
  struct Elem {
    int64_t key, item;
  };
  struct Vec {
    Reg key, item;
  };
  struct Ref {
    int64_t* key;
    int64_t* item;
  };

  static Vec load(Ref d, int64_t i) { return {Isa::load(d.key + i), Isa::load(d.item + i)}; }
  static void store(Ref d, int64_t i, Vec v) {
    Isa::store(d.key + i, v.key);
    Isa::store(d.item + i, v.item);
  }
  static Vec load_partial(Ref d, int64_t i, int count) {
    const Reg fill = Isa::broadcast(INT64_MAX);
    return {Isa::load_partial(d.key + i, count, fill), Isa::load_partial(d.item + i, count, fill)};
  }
  static void store_partial(Ref d, int64_t i, int count, Vec v) {
    Isa::store_partial(d.key + i, count, v.key);
    Isa::store_partial(d.item + i, count, v.item);
  }
  static Vec broadcast(Elem x) { return {Isa::broadcast(x.key), Isa::broadcast(x.item)}; }
  static Mask less(Vec a, Vec b) {
    return Isa::mask_or(Isa::less_int(a.key, b.key),
                        Isa::mask_and(Isa::equal_int(a.key, b.key), Isa::less_int(a.item, b.item)));
  }
  static Vec select(Mask m, Vec a, Vec b) { return {Isa::select(m, a.key, b.key), Isa::select(m, a.item, b.item)}; }
  static void min_max(Vec a, Vec b, Vec& low, Vec& high) {
    const Mask swap = less(b, a);
    low = select(swap, a, b);
    high = select(swap, b, a);
  }
  static Vec min_or_max(Vec a, Vec b, Mask larger) {
    Vec low, high;
    min_max(a, b, low, high);
    return select(larger, low, high);
  }
  static Vec permute(Vec v, typename Isa::Index idx) { return {Isa::permute(v.key, idx), Isa::permute(v.item, idx)}; }
  template <int J>
  static Vec exchange_lanes(Vec v) {
    return {Isa::template exchange_lanes<J>(v.key), Isa::template exchange_lanes<J>(v.item)};
  }

  static Elem get(Ref d, int64_t i) { return {d.key[i], d.item[i]}; }
  static void set(Ref d, int64_t i, Elem x) {
    d.key[i] = x.key;
    d.item[i] = x.item;
  }
  static bool less(Elem a, Elem b) { return a.key < b.key || (a.key == b.key && a.item < b.item); }

  template <int Size>
  struct Buffer {
    alignas(64) int64_t key[Size];
    alignas(64) int64_t item[Size];
    Ref ref() { return {key, item}; }
  };
};

template <class Isa, class L>
struct Sorter {
  using Vec = typename L::Vec;
  using Ref = typename L::Ref;
  using Elem = typename L::Elem;
  using Mask = typename Isa::Mask;
  static constexpr int N = Isa::N;
  // The largest network: kBlock elements in registers.
  static constexpr int kMaxRegisters = Isa::kNetworkRegisters;
  static constexpr int64_t kBlock = int64_t{N} * kMaxRegisters;
  // Vectors partitioned per step: a step's loads and stores do not wait on each other.
  static constexpr int kUnroll = Isa::kUnroll;
  static_assert(kBlock >= 2 * kUnroll * N, "a partitioned range holds the held vectors");
  // Elements in the pivot sample.
  static constexpr int64_t kSample = 3 * N;
  static constexpr int64_t kShortRange = 16 * kBlock;

  // Exchange where needed so that a holds the smaller and b the larger of each lane pair (ascending) or the
  // other way round.
  static void compare_exchange(Vec& a, Vec& b, bool ascending) {
    Vec low, high;
    L::min_max(a, b, low, high);
    a = ascending ? low : high;
    b = ascending ? high : low;
  }

  template <int R, int K, int J>
  static void stage(Vec* v) {
    if constexpr (J >= N) {
      constexpr int step = J / N;
      for (int r = 0; r < R; ++r)
        if ((r & step) == 0) compare_exchange(v[r], v[r + step], ((r * N) & K) == 0);
    } else {
      for (int r = 0; r < R; ++r)
        v[r] = L::min_or_max(v[r], L::template exchange_lanes<J>(v[r]), Isa::mask_from_bits(larger_lanes<N>(K, J, r)));
    }
  }

  template <int R, int K, int J>
  static void stages_of_merge(Vec* v) {
    stage<R, K, J>(v);
    if constexpr (J > 1) stages_of_merge<R, K, J / 2>(v);
  }

  template <int R, int K>
  static void bitonic(Vec* v) {
    stages_of_merge<R, K, K / 2>(v);
    if constexpr (K < R * N) bitonic<R, 2 * K>(v);
  }

  // Sorts d[0..n) for n <= R * N, the registers past n filled with the largest element.
  template <int R>
  static void sort_registers(Ref d, int64_t n) {
    Vec v[R];
    for (int r = 0; r < R; ++r) v[r] = L::load_partial(d, r * N, lanes_of(n, r));
    bitonic<R, 2>(v);
    for (int r = 0; r < R; ++r) L::store_partial(d, r * N, lanes_of(n, r), v[r]);
  }

  // Lanes of register r that hold elements of d[0..n).
  static int lanes_of(int64_t n, int r) {
    const int64_t left = n - int64_t{r} * N;
    return static_cast<int>(left < 0 ? 0 : left > N ? N : left);
  }

  // Sorts d[0..n) for n <= kBlock with the smallest network that holds it.
  static void sort_block(Ref d, int64_t n) {
    if (n <= 1) return;
    if (n <= N) sort_registers<1>(d, n);
    else if (n <= 2 * N) sort_registers<2>(d, n);
    else if (n <= 4 * N) sort_registers<4>(d, n);
    else if (n <= 8 * N || kMaxRegisters == 8) sort_registers<8>(d, n);
    else sort_registers<kMaxRegisters>(d, n);
  }

  static Ref offset(Ref d, int64_t i) {
    Ref r = d;
    r.key += i;
    if constexpr (requires { r.item; }) r.item += i;
    return r;
  }

  // The median of Size elements spread evenly over d[0..n), n > kBlock.
  template <int64_t Size>
  static Elem median_of_sample(Ref d, int64_t n) {
    typename L::template Buffer<Size> buffer;
    const Ref b = buffer.ref();
    const int64_t stride = n / Size;
    for (int64_t s = 0; s < Size; ++s) L::set(b, s, L::get(d, s * stride + stride / 2));
    sort_block(b, Size);
    return L::get(b, Size / 2);
  }

  // The pivot: a sample of one vector for short ranges, where sorting a larger sample would cost as much as
  // the partition, and of kSample elements otherwise.
  static Elem pivot(Ref d, int64_t n) {
    return n <= kShortRange ? median_of_sample<N>(d, n) : median_of_sample<kSample>(d, n);
  }

  // Stores v partitioned by `left` (the lanes that belong to the left side) at the write positions.
  static void store_partitioned(Ref d, Vec v, Mask left, int64_t& write_left, int64_t& write_right) {
    const unsigned bits = Isa::bits(left);
    const int count = std::popcount(bits);
    const Vec packed = L::permute(v, Isa::compaction_index(bits));
    L::store(d, write_left, packed);
    L::store(d, write_right - N, packed);
    write_left += count;
    write_right -= N - count;
  }

  // Whether elements belong to the left side: below the pivot, or (kNotAbove) not above it.
  template <bool kNotAbove>
  static Mask goes_left(Vec v, Vec p) {
    if constexpr (kNotAbove) return Isa::mask_not(L::less(p, v));
    else return L::less(v, p);
  }
  template <bool kNotAbove>
  static bool goes_left(Elem x, Elem p) {
    if constexpr (kNotAbove) return !L::less(p, x);
    else return L::less(x, p);
  }

  // Reads the vector at `at` and stores it partitioned.
  template <bool kNotAbove>
  static void partition_vector(Ref d, int64_t at, Vec pv, int64_t& write_left, int64_t& write_right) {
    const Vec v = L::load(d, at);
    store_partitioned(d, v, goes_left<kNotAbove>(v, pv), write_left, write_right);
  }

  // Puts the elements of d[0..n) (n >= 2 kUnroll N) that go left of the pivot p before the others; returns
  // their count. The room on a side is the free space between its read and write positions; the two
  // sides' room is 2 kUnroll N throughout, and each step reads from the side with less, after which both
  // have at least the kUnroll vectors' width the stores need.
  template <bool kNotAbove>
  static int64_t partition(Ref d, int64_t n, Elem p) {
    constexpr int64_t U = kUnroll;
    const Vec pv = L::broadcast(p);
    Vec held[2 * U];
    for (int u = 0; u < U; ++u) {
      held[u] = L::load(d, u * N);
      held[U + u] = L::load(d, n - (u + 1) * N);
    }
    int64_t read_left = U * N, read_right = n - U * N, write_left = 0, write_right = n;
    while (read_right - read_left >= U * N) {
      const bool from_left = read_left - write_left <= write_right - read_right;
      const int64_t at = from_left ? read_left : read_right - U * N;
      read_left += from_left ? U * N : 0;
      read_right -= from_left ? 0 : U * N;
      Vec v[U];
      for (int u = 0; u < U; ++u) v[u] = L::load(d, at + u * N);
      for (int u = 0; u < U; ++u) store_partitioned(d, v[u], goes_left<kNotAbove>(v[u], pv), write_left, write_right);
    }
    while (read_right - read_left >= N) {
      const bool from_left = read_left - write_left <= write_right - read_right;
      const int64_t at = from_left ? read_left : read_right - N;
      read_left += from_left ? N : 0;
      read_right -= from_left ? 0 : N;
      partition_vector<kNotAbove>(d, at, pv, write_left, write_right);
    }
    // Fewer than N unread: hold them aside, then the gap between the write positions is theirs and the held
    // vectors'.
    typename L::template Buffer<N> rest;
    const Ref aside = rest.ref();
    const int64_t unread = read_right - read_left;
    for (int64_t i = 0; i < unread; ++i) L::set(aside, i, L::get(d, read_left + i));
    for (int64_t i = 0; i < unread; ++i) {
      const Elem x = L::get(aside, i);
      if (goes_left<kNotAbove>(x, p)) L::set(d, write_left++, x);
      else L::set(d, --write_right, x);
    }
    // The gap is now a whole number of vectors: while it holds two or more the two stores of a vector do not
    // meet, and the last vector fills it with one store.
    for (int u = 0; u < 2 * U; ++u)
      store_partitioned(d, held[u], goes_left<kNotAbove>(held[u], pv), write_left, write_right);
    return write_left;
  }

  static void sift_down(Ref d, int64_t root, int64_t n) {
    const Elem x = L::get(d, root);
    for (int64_t child; (child = 2 * root + 1) < n; root = child) {
      if (child + 1 < n && L::less(L::get(d, child), L::get(d, child + 1))) ++child;
      if (!L::less(x, L::get(d, child))) break;
      L::set(d, root, L::get(d, child));
    }
    L::set(d, root, x);
  }

  static void heapsort(Ref d, int64_t n) {
    for (int64_t i = n / 2; i-- > 0;) sift_down(d, i, n);
    for (int64_t end = n - 1; end > 0; --end) {
      const Elem top = L::get(d, 0);
      L::set(d, 0, L::get(d, end));
      L::set(d, end, top);
      sift_down(d, 0, end);
    }
  }

  static void quicksort(Ref d, int64_t n, int splits_left) {
    while (n > kBlock) {
      if (splits_left-- == 0) return heapsort(d, n);
      const Elem p = pivot(d, n);
      const int64_t below = partition<false>(d, n, p);
      if (below == 0) {
        // The pivot is the least element: its copies go first and are finished.
        const int64_t equal = partition<true>(d, n, p);
        d = offset(d, equal);
        n -= equal;
        continue;
      }
      // Sort the smaller side by recursion, the larger in this loop, so the stack stays within log2(n).
      if (below <= n - below) {
        quicksort(d, below, splits_left);
        d = offset(d, below);
        n -= below;
      } else {
        quicksort(offset(d, below), n - below, splits_left);
        n = below;
      }
    }
    sort_block(d, n);
  }

  static void sort(Ref d, int64_t n) {
    quicksort(d, n, 2 * static_cast<int>(std::bit_width(static_cast<uint64_t>(n))) + 4);
  }
};

// The entries of an instruction set's file.
template <class Isa>
void sort_reals(double* a, int64_t n) {
  auto* bits = reinterpret_cast<typename Keys<Isa>::Integer*>(a);
  to_ordered_integers<Isa>(bits, n);
  Sorter<Isa, Keys<Isa>>::sort({bits}, n);
  to_ordered_integers<Isa>(bits, n);
}

template <class Isa>
void sort_integers(int64_t* a, int64_t n) {
  Sorter<Isa, Keys<Isa>>::sort({a}, n);
}

template <class Isa>
void sort_pairs(int64_t* keys, int64_t* items, int64_t n) {
  Sorter<Isa, Pairs<Isa>>::sort({keys, items}, n);
}

}  // namespace vek::util::vector_sort_detail
