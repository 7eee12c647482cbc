// The matrix printers' kernel: one template over the element type (double, vek_complex, int64_t) and the
// matrix kind (full or triangular, packed triangular, band), writing a titled, labelled table of the
// matrix on an output unit.
//
// Layout: the title (when not blank) on its own line; then the matrix in blocks of as many columns as fit
// in NCOLS characters after INDENT blanks and the row labels; each block a line of column labels (unless
// they are off) and one line per row (two for complex elements printed real part above imaginary part);
// a blank line between blocks. Every column is one blank plus the element field, right-aligned; a column
// is at least as wide as its label. Elements outside the stored part are blank; a unit diagonal is
// printed as 1; a "blank" diagonal is not printed.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "frame/printers_format.h"
#include "vek.h"

namespace vek::printers {

enum class Order { column_major, row_major };
enum class Part { general, upper, lower };
enum class Diagonal { stored, unit, blank };
enum class Labels { none, integer, character };
enum class ComplexStyle { above, bracketed };

// What stands at (i, j) (0-based): the element at an array index, or a fixed unit / blank cell.
inline constexpr int64_t kBlankCell = -1;
inline constexpr int64_t kUnitCell = -2;

// A full m x n array, general or triangular (trapezoidal when m != n).
struct FullShape {
  int64_t m, n, lda;
  Order order;
  Part part;
  Diagonal diag;
  int64_t locate(int64_t i, int64_t j) const;
};

// An n x n triangle packed column by column (or row by row).
struct PackedShape {
  int64_t n;
  Order order;
  Part part;  // upper or lower
  Diagonal diag;
  int64_t locate(int64_t i, int64_t j) const;
};

// An m x n band matrix with kl sub- and ku superdiagonals in band storage: column j of the matrix in
// column j of the array (row ku + i - j), or row i in row i of the array (column kl + j - i).
struct BandShape {
  int64_t m, n, kl, ku, lda;
  Order order;
  int64_t locate(int64_t i, int64_t j) const;
};

struct Options {
  int64_t unit = 6;
  std::string_view title;
  std::optional<EditDescriptor> form;  // nothing: chosen from the values
  ComplexStyle complex_style = ComplexStyle::above;
  Labels row_labels = Labels::integer;
  Labels column_labels = Labels::integer;
  std::vector<std::string_view> row_texts;     // the character labels, when asked for
  std::vector<std::string_view> column_texts;
  int64_t ncols = 80;
  int64_t indent = 0;
};

inline constexpr int64_t kDefaultLineWidth = 80;
inline constexpr int64_t kMaxLineWidth = 132;
inline constexpr size_t kMaxLabelLength = 40;

// NCOLS outside 1..132 means 80; INDENT outside 0..NCOLS-1 means 0.
int64_t line_width(int64_t ncols);
int64_t indentation(int64_t indent, int64_t width);

// Prints the matrix; the caller has checked the shape against its array.
template <class T, class Shape>
void print_matrix(const T* a, const Shape& shape, const Options& options);

}  // namespace vek::printers
