#include "frame/printers.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>

#include "frame/text.h"
#include "frame/units.h"

namespace vek::printers {
namespace {

int64_t triangle_cell(Part part, Diagonal diag, int64_t i, int64_t j, int64_t index) {
  if ((part == Part::upper && i > j) || (part == Part::lower && i < j)) return kBlankCell;
  if (part != Part::general && i == j && diag != Diagonal::stored)
    return diag == Diagonal::unit ? kUnitCell : kBlankCell;
  return index;
}

int64_t rows(const FullShape& s) { return s.m; }
int64_t rows(const PackedShape& s) { return s.n; }
int64_t rows(const BandShape& s) { return s.m; }

// The values that decide the default field: the range of the printed real parts, the extremes of the
// printed integers.
struct Range {
  double largest = 0;
  double smallest = std::numeric_limits<double>::infinity();
  int64_t imax = 0;
  int64_t imin = 0;
  void add(double x) {
    if (!std::isfinite(x)) return;
    const double ax = std::fabs(x);
    largest = std::max(largest, ax);
    if (ax != 0) smallest = std::min(smallest, ax);
  }
  void add(const vek_complex& z) {
    add(z.re);
    add(z.im);
  }
  void add(int64_t x) {
    imax = std::max(imax, x);
    imin = std::min(imin, x);
  }
};

constexpr bool is_integer(const int64_t*) { return true; }
constexpr bool is_integer(const void*) { return false; }

// The element texts of one cell: one line, or two for a complex element printed above.
struct Cell {
  std::string line[2];
};

Cell render(const EditDescriptor& f, ComplexStyle, double x) { return {{format_real(f, x), ""}}; }
Cell render(const EditDescriptor& f, ComplexStyle, int64_t x) { return {{format_integer(f, x), ""}}; }
Cell render(const EditDescriptor& f, ComplexStyle style, const vek_complex& z) {
  if (style == ComplexStyle::above) return {{format_real(f, z.re), format_real(f, z.im)}};
  return {{"(" + format_real(f, z.re) + "," + format_real(f, z.im) + ")", ""}};
}

template <class T>
int lines_per_row(const Options& o) {
  return std::is_same_v<T, vek_complex> && o.complex_style == ComplexStyle::above ? 2 : 1;
}

template <class T>
T unit_value() {
  if constexpr (std::is_same_v<T, vek_complex>) return vek_complex{1.0, 0.0};
  else return T{1};
}

std::string label_text(Labels kind, const std::vector<std::string_view>& texts, int64_t k) {
  if (kind == Labels::none) return {};
  if (kind == Labels::integer) return text::int_text(k + 1);
  const std::string_view t = text::trim(texts[static_cast<size_t>(k)]);
  return std::string(t.substr(0, kMaxLabelLength));
}

std::string pad_left(std::string_view s, size_t width) {
  return std::string(width > s.size() ? width - s.size() : 0, ' ') + std::string(s);
}
std::string pad_right(std::string_view s, size_t width) {
  return std::string(s) + std::string(width > s.size() ? width - s.size() : 0, ' ');
}

}  // namespace

int64_t FullShape::locate(int64_t i, int64_t j) const {
  const int64_t index = order == Order::column_major ? i + j * lda : i * lda + j;
  return triangle_cell(part, diag, i, j, index);
}

int64_t PackedShape::locate(int64_t i, int64_t j) const {
  // Row-major packing of one triangle is column-major packing of the other triangle of the transpose.
  const bool upper_columns = (part == Part::upper) == (order == Order::column_major);
  const int64_t r = order == Order::column_major ? i : j;
  const int64_t c = order == Order::column_major ? j : i;
  const int64_t index = upper_columns ? r + c * (c + 1) / 2 : r + c * (2 * n - c - 1) / 2;
  return triangle_cell(part, diag, i, j, index);
}

int64_t BandShape::locate(int64_t i, int64_t j) const {
  if (i - j > kl || j - i > ku) return kBlankCell;
  return order == Order::column_major ? ku + i - j + j * lda : i * lda + kl + j - i;
}

int64_t line_width(int64_t ncols) { return ncols >= 1 && ncols <= kMaxLineWidth ? ncols : kDefaultLineWidth; }
int64_t indentation(int64_t indent, int64_t width) { return indent >= 0 && indent < width ? indent : 0; }

template <class T, class Shape>
void print_matrix(const T* a, const Shape& shape, const Options& o) {
  const int64_t m = rows(shape), n = shape.n;
  const std::string margin(static_cast<size_t>(o.indent), ' ');
  if (!text::trim(o.title).empty()) units::write_record(o.unit, margin + std::string(text::trim_right(o.title)));
  if (m <= 0 || n <= 0) return;

  EditDescriptor f;
  if (o.form) {
    f = *o.form;
  } else {
    Range range;
    bool unit_seen = false;
    for (int64_t j = 0; j < n; ++j)
      for (int64_t i = 0; i < m; ++i) {
        const int64_t k = shape.locate(i, j);
        if (k >= 0) range.add(a[k]);
        unit_seen = unit_seen || k == kUnitCell;
      }
    if (unit_seen) range.add(unit_value<T>());
    f = is_integer(a) ? default_integer_format(range.imax, range.imin)
                      : default_real_format(range.largest, range.smallest);
  }

  const T one = unit_value<T>();
  const size_t cell_width = render(f, o.complex_style, one).line[0].size();
  size_t column_width = cell_width;
  for (int64_t j = 0; j < n; ++j)
    column_width = std::max(column_width, label_text(o.column_labels, o.column_texts, j).size());
  size_t label_width = 0;
  for (int64_t i = 0; i < m; ++i)
    label_width = std::max(label_width, label_text(o.row_labels, o.row_texts, i).size());

  const int64_t room = o.ncols - o.indent - static_cast<int64_t>(label_width);
  const int64_t per_line = std::max<int64_t>(1, room / static_cast<int64_t>(column_width + 1));
  const int nlines = lines_per_row<T>(o);
  for (int64_t first = 0; first < n; first += per_line) {
    const int64_t last = std::min(n, first + per_line);
    if (first > 0) units::write_record(o.unit, "");
    if (o.column_labels != Labels::none) {
      std::string line = margin + std::string(label_width, ' ');
      for (int64_t j = first; j < last; ++j) {
        line += ' ';
        line += pad_left(label_text(o.column_labels, o.column_texts, j), column_width);
      }
      units::write_record(o.unit, line);
    }
    for (int64_t i = 0; i < m; ++i) {
      std::string lines[2];
      const std::string label = label_text(o.row_labels, o.row_texts, i);
      lines[0] = margin + (o.row_labels == Labels::character ? pad_right(label, label_width)
                                                              : pad_left(label, label_width));
      lines[1] = margin + std::string(label_width, ' ');
      for (int64_t j = first; j < last; ++j) {
        const int64_t k = shape.locate(i, j);
        Cell cell;
        if (k == kBlankCell) cell = {{std::string(cell_width, ' '), std::string(cell_width, ' ')}};
        else cell = render(f, o.complex_style, k == kUnitCell ? one : a[k]);
        for (int l = 0; l < nlines; ++l) {
          lines[l] += ' ';
          lines[l] += pad_left(cell.line[l], column_width);
        }
      }
      for (int l = 0; l < nlines; ++l) units::write_record(o.unit, lines[l]);
    }
  }
}

template void print_matrix(const double*, const FullShape&, const Options&);
template void print_matrix(const double*, const PackedShape&, const Options&);
template void print_matrix(const double*, const BandShape&, const Options&);
template void print_matrix(const vek_complex*, const FullShape&, const Options&);
template void print_matrix(const vek_complex*, const PackedShape&, const Options&);
template void print_matrix(const vek_complex*, const BandShape&, const Options&);
template void print_matrix(const int64_t*, const FullShape&, const Options&);

}  // namespace vek::printers
