// Tile sizes of the thread-count-independent level-3 routines (tiling.h).
#include "linalg/tiling.h"

#include <algorithm>
#include <cmath>

namespace vek::linalg::tiling {
namespace {

constexpr int64_t kAlign = 16;         // tile edges at multiples of the kernels' register blocking
constexpr int64_t kMinEdge = 128;      // shorter tiles lose the dependency's cache blocking
constexpr double kMinFlops = 1.6e7;    // a tile's work: well above the cost of starting a team (~10 us)
// Even counts share evenly between two threads; more tiles would pack the operands more often.
constexpr int64_t kCounts[] = {4, 2, 1};

int64_t aligned(double edge, int64_t n) {
  const auto e = static_cast<int64_t>(std::llround(edge / kAlign)) * kAlign;
  return std::clamp<int64_t>(e, 0, n);
}

int64_t balanced_at_most(int64_t cap) {
  for (int64_t c : kCounts)
    if (c <= cap) return c;
  return 1;
}

int64_t work_cap(double flops) { return static_cast<int64_t>(std::min(flops / kMinFlops, 64.0)); }

}  // namespace

Span piece(int64_t n, int64_t count, int64_t i) {
  const auto edge = [&](int64_t j) {
    return j >= count ? n : aligned(static_cast<double>(n) * static_cast<double>(j) / static_cast<double>(count), n);
  };
  const int64_t begin = edge(i);
  return {begin, std::max<int64_t>(edge(i + 1) - begin, 0)};
}

Span triangle_piece(int64_t n, int64_t count, int64_t i, bool lower) {
  // Area left of column c: c^2/2 for the upper triangle, n c - c^2/2 for the lower one.
  const auto edge = [&](int64_t j) {
    if (j >= count) return n;
    const double f = static_cast<double>(j) / static_cast<double>(count), dn = static_cast<double>(n);
    return aligned(lower ? dn * (1.0 - std::sqrt(1.0 - f)) : dn * std::sqrt(f), n);
  };
  const int64_t begin = edge(i);
  return {begin, std::max<int64_t>(edge(i + 1) - begin, 0)};
}

int64_t pieces(int64_t n, double flops) { return balanced_at_most(std::min(n / kMinEdge, work_cap(flops))); }

Grid product_grid(int64_t m, int64_t n, int64_t k) {
  const double flops = 2.0 * static_cast<double>(m) * static_cast<double>(n) * static_cast<double>(k);
  const int64_t most_rows = std::max<int64_t>(m / kMinEdge, 1), most_cols = std::max<int64_t>(n / kMinEdge, 1);
  const int64_t cap = std::min(most_rows * most_cols, work_cap(flops));
  for (int64_t count : kCounts) {
    if (count > cap) continue;
    Grid best{0, 0};
    double best_cost = 0;
    for (int64_t rows = 1; rows <= count; ++rows) {
      if (count % rows != 0 || rows > most_rows || count / rows > most_cols) continue;
      const double cost = static_cast<double>(m) * static_cast<double>(count / rows) +
                          static_cast<double>(n) * static_cast<double>(rows);
      if (best.rows == 0 || cost < best_cost) best = {rows, count / rows}, best_cost = cost;
    }
    if (best.rows != 0) return best;
  }
  return {};
}

int team_for(int64_t count) {
  if (count <= 1 || threads::in_parallel()) return 1;
  return static_cast<int>(std::clamp<int64_t>(threads::max_threads(), 1, count));
}

}  // namespace vek::linalg::tiling
