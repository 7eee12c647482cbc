// A fixed tiling of a level-3 result, and the loop that shares its tiles among the library's threads.
//
// The tiles depend only on the problem's sizes, never on the team: each tile is computed whole by one thread,
// through the dependency on that thread alone, and the inner dimension (the sum) is never cut. Every element
// of the result therefore sees the same operations in the same order with any number of threads.
#pragma once

#include <cstdint>

#include "frame/threads.h"

namespace vek::linalg::tiling {

struct Span {
  int64_t begin = 0, size = 0;
};

// Piece i of [0, n) cut into `count` nearly equal pieces whose edges are multiples of 16 (the register
// blocking of the dependency's kernels), except the last edge n.
Span piece(int64_t n, int64_t count, int64_t i);

// Piece i of the columns [0, n) of a triangle (the lower one when `lower`), the pieces holding nearly equal
// parts of the triangle's area.
Span triangle_piece(int64_t n, int64_t count, int64_t i, bool lower);

// The number of pieces of a dimension of length n in a problem of `flops` operations: one, or an even count
// (so that two threads share them evenly) of pieces each long enough and with work enough to run at the
// dependency's speed.
int64_t pieces(int64_t n, double flops);

// Rows and columns of the tiles of an m by n result of a product with inner dimension k; packing a tile's
// operands costs m*k per column of tiles and n*k per row of tiles, so the cheaper cut is taken.
struct Grid {
  int64_t rows = 1, cols = 1;
};
Grid product_grid(int64_t m, int64_t n, int64_t k);

// The team for `count` tiles: the library's thread count, one inside a caller's active parallel region.
int team_for(int64_t count);

// Calls tile(i) for i = 0 .. count-1, the tiles shared statically among the team.
template <class Tile>
void run(int64_t count, const Tile& tile) {
  const int team = team_for(count);
  if (team <= 1) {
    for (int64_t i = 0; i < count; ++i) tile(i);
    return;
  }
#pragma omp parallel for schedule(static) num_threads(team)
  for (int64_t i = 0; i < count; ++i) tile(i);
}

}  // namespace vek::linalg::tiling
