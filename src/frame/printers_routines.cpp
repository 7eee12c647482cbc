// Bodies of the fourteen matrix printers. The declared checks (x04_printers.decl) have passed when a body
// runs: SORDER; MATRIX or UPLO, then DIAG; M, N, KL, KU; LDA; USEFRM. A comprehensive form then checks FORM,
// LABROW and LABCOL, in that order, and every body hands a shape and the layout options to the one kernel
// print_matrix. The easy forms print in the layout chosen from the values, with integer labels, 80 columns
// and no indent; the forms without NOUT print on the advisory unit.
//
// SORDER 1 is column-major storage, 2 row-major. MATRIX 'G' general, 'U' upper, 'L' lower triangular (or
// trapezoidal); UPLO 'U' or 'L'. DIAG, for a triangle: 'N' the diagonal as stored, 'U' unit (printed as 1,
// not read), 'B' not printed. USEFRM 'A' prints real parts on one line and imaginary parts on the line
// below, 'B' prints each element as (re,im). FORM blank or '*' chooses the layout from the values. LABROW
// and LABCOL: 'N' no labels, 'I' integer labels, 'C' the texts RLABS(1:M) and CLABS(1:N) (their first 40
// characters). NCOLS outside 1..132 is read as 80, INDENT outside 0..NCOLS-1 as 0.
#include <string_view>
#include <vector>

#include "frame/printers.h"
#include "frame/text.h"
#include "frame/units.h"
#include "layers/x04_printers.h"

namespace {

namespace p = vek::printers;
using vek::frame::ErrorBuffer;
using vek::text::option_letter;
using vek::text::view;

p::Order order_of(int64_t sorder) { return sorder == 1 ? p::Order::column_major : p::Order::row_major; }

p::Part part_of(std::string_view matrix) {
  switch (option_letter(matrix.data(), static_cast<int64_t>(matrix.size()))) {
    case 'U': return p::Part::upper;
    case 'L': return p::Part::lower;
    default: return p::Part::general;
  }
}

p::Diagonal diagonal_of(p::Part part, std::string_view diag) {
  if (part == p::Part::general) return p::Diagonal::stored;
  switch (option_letter(diag.data(), static_cast<int64_t>(diag.size()))) {
    case 'U': return p::Diagonal::unit;
    case 'B': return p::Diagonal::blank;
    default: return p::Diagonal::stored;
  }
}

// The layout arguments of a comprehensive form.
struct Layout {
  std::string_view usefrm, form, labrow;
  const char* rlabs;
  int64_t rlabs_len;
  std::string_view labcol;
  const char* clabs;
  int64_t clabs_len;
  int64_t ncols, indent;
};

bool label_kind(std::string_view option, p::Labels& out) {
  switch (option_letter(option.data(), static_cast<int64_t>(option.size()))) {
    case 'N': out = p::Labels::none; return true;
    case 'I': out = p::Labels::integer; return true;
    case 'C': out = p::Labels::character; return true;
    default: return false;
  }
}

std::vector<std::string_view> records(const char* texts, int64_t len, int64_t count) {
  std::vector<std::string_view> out(static_cast<size_t>(count));
  for (int64_t k = 0; k < count; ++k) out[static_cast<size_t>(k)] = view(texts + k * len, len);
  return out;
}

// FORM, LABROW and LABCOL of the routine R (the first failure recorded), then the other layout options.
template <class R>
bool comprehensive(ErrorBuffer& err, bool integer, const Layout& l, int64_t m, int64_t n, p::Options& o) {
  if (option_letter(l.usefrm.data(), static_cast<int64_t>(l.usefrm.size())) == 'B')
    o.complex_style = p::ComplexStyle::bracketed;
  if (const std::string_view f = vek::text::trim(l.form); !f.empty() && f != "*") {
    o.form = p::parse_edit_descriptor(f, integer);
    if (!o.form) return err.fail(R::form_invalid, l.form), false;
  }
  if (!label_kind(l.labrow, o.row_labels)) return err.fail(R::labrow_invalid, l.labrow), false;
  if (!label_kind(l.labcol, o.column_labels)) return err.fail(R::labcol_invalid, l.labcol), false;
  if (o.row_labels == p::Labels::character) o.row_texts = records(l.rlabs, l.rlabs_len, m);
  if (o.column_labels == p::Labels::character) o.column_texts = records(l.clabs, l.clabs_len, n);
  o.ncols = p::line_width(l.ncols);
  o.indent = p::indentation(l.indent, o.ncols);
  return true;
}

// The M by N matrix A of the given shape on `unit`, with the layout of a comprehensive form when R is one.
template <class R, class T, class Shape>
void print(ErrorBuffer& err, const T* a, const Shape& shape, int64_t m, int64_t n, int64_t unit,
           std::string_view title, const Layout& layout = {}) {
  p::Options o;
  o.unit = unit;
  o.title = title;
  if constexpr (requires { R::form_invalid; }) {
    if (!comprehensive<R>(err, std::is_same_v<T, int64_t>, layout, m, n, o)) return;
  }
  p::print_matrix(a, shape, o);
}

p::FullShape full(int64_t sorder, std::string_view matrix, std::string_view diag, int64_t m, int64_t n,
                  int64_t lda) {
  const p::Part part = part_of(matrix);
  return {m, n, lda, order_of(sorder), part, diagonal_of(part, diag)};
}

p::PackedShape packed(int64_t sorder, std::string_view uplo, std::string_view diag, int64_t n) {
  const p::Part part = part_of(uplo);
  return {n, order_of(sorder), part, diagonal_of(part, diag)};
}

}  // namespace

namespace vek::routines {

void x04caf::run(ErrorBuffer& err, const int64_t* sorder, const char* matrix, const char* diag, const int64_t* m,
                 const int64_t* n, const double* a, const int64_t* lda, const char* title, const int64_t* nout,
                 int64_t matrix_len, int64_t diag_len, int64_t title_len) {
  print<x04caf>(err, a, full(*sorder, view(matrix, matrix_len), view(diag, diag_len), *m, *n, *lda), *m, *n, *nout,
                view(title, title_len));
}

void x04cbf::run(ErrorBuffer& err, const int64_t* sorder, const char* matrix, const char* diag, const int64_t* m,
                 const int64_t* n, const double* a, const int64_t* lda, const char* form, const char* title,
                 const char* labrow, const char* rlabs, const char* labcol, const char* clabs, const int64_t* ncols,
                 const int64_t* indent, const int64_t* nout, int64_t matrix_len, int64_t diag_len, int64_t form_len,
                 int64_t title_len, int64_t labrow_len, int64_t rlabs_len, int64_t labcol_len, int64_t clabs_len) {
  const Layout l{{}, view(form, form_len), view(labrow, labrow_len), rlabs, rlabs_len,
                 view(labcol, labcol_len), clabs, clabs_len, *ncols, *indent};
  print<x04cbf>(err, a, full(*sorder, view(matrix, matrix_len), view(diag, diag_len), *m, *n, *lda), *m, *n, *nout,
                view(title, title_len), l);
}

void x04ccf::run(ErrorBuffer& err, const int64_t* sorder, const char* uplo, const char* diag, const int64_t* n,
                 const double* a, const char* title, int64_t uplo_len, int64_t diag_len, int64_t title_len) {
  print<x04ccf>(err, a, packed(*sorder, view(uplo, uplo_len), view(diag, diag_len), *n), *n, *n,
                units::advisory_unit(), view(title, title_len));
}

void x04cdf::run(ErrorBuffer& err, const int64_t* sorder, const char* uplo, const char* diag, const int64_t* n,
                 const double* a, const char* form, const char* title, const char* labrow, const char* rlabs,
                 const char* labcol, const char* clabs, const int64_t* ncols, const int64_t* indent,
                 int64_t uplo_len, int64_t diag_len, int64_t form_len, int64_t title_len, int64_t labrow_len,
                 int64_t rlabs_len, int64_t labcol_len, int64_t clabs_len) {
  const Layout l{{}, view(form, form_len), view(labrow, labrow_len), rlabs, rlabs_len,
                 view(labcol, labcol_len), clabs, clabs_len, *ncols, *indent};
  print<x04cdf>(err, a, packed(*sorder, view(uplo, uplo_len), view(diag, diag_len), *n), *n, *n,
                units::advisory_unit(), view(title, title_len), l);
}

void x04cef::run(ErrorBuffer& err, const int64_t* sorder, const int64_t* m, const int64_t* n, const int64_t* kl,
                 const int64_t* ku, const double* a, const int64_t* lda, const char* title, int64_t title_len) {
  print<x04cef>(err, a, p::BandShape{*m, *n, *kl, *ku, *lda, order_of(*sorder)}, *m, *n, units::advisory_unit(),
                view(title, title_len));
}

void x04cff::run(ErrorBuffer& err, const int64_t* sorder, const int64_t* m, const int64_t* n, const int64_t* kl,
                 const int64_t* ku, const double* a, const int64_t* lda, const char* form, const char* title,
                 const char* labrow, const char* rlabs, const char* labcol, const char* clabs, const int64_t* ncols,
                 const int64_t* indent, int64_t form_len, int64_t title_len, int64_t labrow_len, int64_t rlabs_len,
                 int64_t labcol_len, int64_t clabs_len) {
  const Layout l{{}, view(form, form_len), view(labrow, labrow_len), rlabs, rlabs_len,
                 view(labcol, labcol_len), clabs, clabs_len, *ncols, *indent};
  print<x04cff>(err, a, p::BandShape{*m, *n, *kl, *ku, *lda, order_of(*sorder)}, *m, *n, units::advisory_unit(),
                view(title, title_len), l);
}

void x04daf::run(ErrorBuffer& err, const int64_t* sorder, const char* matrix, const char* diag, const int64_t* m,
                 const int64_t* n, const vek_complex* a, const int64_t* lda, const char* title, const int64_t* nout,
                 int64_t matrix_len, int64_t diag_len, int64_t title_len) {
  print<x04daf>(err, a, full(*sorder, view(matrix, matrix_len), view(diag, diag_len), *m, *n, *lda), *m, *n, *nout,
                view(title, title_len));
}

void x04dbf::run(ErrorBuffer& err, const int64_t* sorder, const char* matrix, const char* diag, const int64_t* m,
                 const int64_t* n, const vek_complex* a, const int64_t* lda, const char* usefrm, const char* form,
                 const char* title, const char* labrow, const char* rlabs, const char* labcol, const char* clabs,
                 const int64_t* ncols, const int64_t* indent, const int64_t* nout, int64_t matrix_len,
                 int64_t diag_len, int64_t usefrm_len, int64_t form_len, int64_t title_len, int64_t labrow_len,
                 int64_t rlabs_len, int64_t labcol_len, int64_t clabs_len) {
  const Layout l{view(usefrm, usefrm_len), view(form, form_len), view(labrow, labrow_len), rlabs, rlabs_len,
                 view(labcol, labcol_len), clabs, clabs_len, *ncols, *indent};
  print<x04dbf>(err, a, full(*sorder, view(matrix, matrix_len), view(diag, diag_len), *m, *n, *lda), *m, *n, *nout,
                view(title, title_len), l);
}

void x04dcf::run(ErrorBuffer& err, const int64_t* sorder, const char* uplo, const char* diag, const int64_t* n,
                 const vek_complex* a, const char* title, int64_t uplo_len, int64_t diag_len, int64_t title_len) {
  print<x04dcf>(err, a, packed(*sorder, view(uplo, uplo_len), view(diag, diag_len), *n), *n, *n,
                units::advisory_unit(), view(title, title_len));
}

void x04ddf::run(ErrorBuffer& err, const int64_t* sorder, const char* uplo, const char* diag, const int64_t* n,
                 const vek_complex* a, const char* usefrm, const char* form, const char* title, const char* labrow,
                 const char* rlabs, const char* labcol, const char* clabs, const int64_t* ncols,
                 const int64_t* indent, int64_t uplo_len, int64_t diag_len, int64_t usefrm_len, int64_t form_len,
                 int64_t title_len, int64_t labrow_len, int64_t rlabs_len, int64_t labcol_len, int64_t clabs_len) {
  const Layout l{view(usefrm, usefrm_len), view(form, form_len), view(labrow, labrow_len), rlabs, rlabs_len,
                 view(labcol, labcol_len), clabs, clabs_len, *ncols, *indent};
  print<x04ddf>(err, a, packed(*sorder, view(uplo, uplo_len), view(diag, diag_len), *n), *n, *n,
                units::advisory_unit(), view(title, title_len), l);
}

void x04def::run(ErrorBuffer& err, const int64_t* sorder, const int64_t* m, const int64_t* n, const int64_t* kl,
                 const int64_t* ku, const vek_complex* a, const int64_t* lda, const char* title, int64_t title_len) {
  print<x04def>(err, a, p::BandShape{*m, *n, *kl, *ku, *lda, order_of(*sorder)}, *m, *n, units::advisory_unit(),
                view(title, title_len));
}

void x04dff::run(ErrorBuffer& err, const int64_t* sorder, const int64_t* m, const int64_t* n, const int64_t* kl,
                 const int64_t* ku, const vek_complex* a, const int64_t* lda, const char* usefrm, const char* form,
                 const char* title, const char* labrow, const char* rlabs, const char* labcol, const char* clabs,
                 const int64_t* ncols, const int64_t* indent, int64_t usefrm_len, int64_t form_len,
                 int64_t title_len, int64_t labrow_len, int64_t rlabs_len, int64_t labcol_len, int64_t clabs_len) {
  const Layout l{view(usefrm, usefrm_len), view(form, form_len), view(labrow, labrow_len), rlabs, rlabs_len,
                 view(labcol, labcol_len), clabs, clabs_len, *ncols, *indent};
  print<x04dff>(err, a, p::BandShape{*m, *n, *kl, *ku, *lda, order_of(*sorder)}, *m, *n, units::advisory_unit(),
                view(title, title_len), l);
}

void x04eaf::run(ErrorBuffer& err, const int64_t* sorder, const char* matrix, const char* diag, const int64_t* m,
                 const int64_t* n, const int64_t* a, const int64_t* lda, const char* title, int64_t matrix_len,
                 int64_t diag_len, int64_t title_len) {
  print<x04eaf>(err, a, full(*sorder, view(matrix, matrix_len), view(diag, diag_len), *m, *n, *lda), *m, *n,
                units::advisory_unit(), view(title, title_len));
}

void x04ebf::run(ErrorBuffer& err, const int64_t* sorder, const char* matrix, const char* diag, const int64_t* m,
                 const int64_t* n, const int64_t* a, const int64_t* lda, const char* form, const char* title,
                 const char* labrow, const char* rlabs, const char* labcol, const char* clabs, const int64_t* ncols,
                 const int64_t* indent, int64_t matrix_len, int64_t diag_len, int64_t form_len, int64_t title_len,
                 int64_t labrow_len, int64_t rlabs_len, int64_t labcol_len, int64_t clabs_len) {
  const Layout l{{}, view(form, form_len), view(labrow, labrow_len), rlabs, rlabs_len,
                 view(labcol, labcol_len), clabs, clabs_len, *ncols, *indent};
  print<x04ebf>(err, a, full(*sorder, view(matrix, matrix_len), view(diag, diag_len), *m, *n, *lda), *m, *n,
                units::advisory_unit(), view(title, title_len), l);
}

}  // namespace vek::routines
