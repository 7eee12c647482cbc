// Workers of the fourteen matrix printers. Each checks its arguments in the order of its argument list
// (SORDER; MATRIX or UPLO, then DIAG; M, N, KL, KU; LDA; USEFRM; FORM; LABROW; LABCOL), the first failure
// being IFAIL = 1 with the family's message number, then hands a shape and the layout options to the one
// kernel print_matrix. The easy forms print in the layout chosen from the values, with integer labels, 80
// columns and no indent; the forms without NOUT print on the advisory unit.
//
// SORDER 1 is column-major storage, 2 row-major. MATRIX 'G' general, 'U' upper, 'L' lower triangular (or
// trapezoidal); UPLO 'U' or 'L'. DIAG, for a triangle: 'N' the diagonal as stored, 'U' unit (printed as 1,
// not read), 'B' not printed. USEFRM 'A' prints real parts on one line and imaginary parts on the line
// below, 'B' prints each element as (re,im). FORM blank or '*' chooses the layout from the values. LABROW
// and LABCOL: 'N' no labels, 'I' integer labels, 'C' the texts RLABS(1:M) and CLABS(1:N) (their first 40
// characters). NCOLS outside 1..132 is read as 80, INDENT outside 0..NCOLS-1 as 0.
#include <new>
#include <string_view>

#include "frame/error_buffer.h"
#include "frame/printers.h"
#include "frame/text.h"
#include "frame/units.h"
#include "layers/x04_printers.h"

namespace {

namespace p = vek::printers;
using vek::frame::CharValue;
using vek::frame::ErrorBuffer;
using vek::text::view;

constexpr int64_t kBadSorder = 99999;
constexpr int64_t kBadMatrix = 99998;
constexpr int64_t kBadDiag = 99997;
constexpr int64_t kBadM = 99996;
constexpr int64_t kBadN = 99995;
constexpr int64_t kBadKl = 99994;
constexpr int64_t kBadKu = 99993;
constexpr int64_t kBadLdaColumns = 99992;
constexpr int64_t kBadLdaRows = 99991;
constexpr int64_t kBadLdaBand = 99990;
constexpr int64_t kBadUsefrm = 99989;
constexpr int64_t kBadForm = 99988;
constexpr int64_t kBadLabrow = 99987;
constexpr int64_t kBadLabcol = 99986;
constexpr int64_t kShownOption = 20;
constexpr int64_t kShownForm = 40;

// The argument checks of the family: each returns false after recording its failure.
class Checker {
 public:
  explicit Checker(ErrorBuffer& err) : err_(err) {}

  bool order(int64_t sorder, p::Order& out) {
    if (sorder != 1 && sorder != 2) return fail(kBadSorder, sorder);
    out = sorder == 1 ? p::Order::column_major : p::Order::row_major;
    return true;
  }

  // MATRIX (or UPLO when `packed`) and DIAG.
  bool triangle(std::string_view matrix, std::string_view diag, bool packed, p::Part& part, p::Diagonal& d) {
    const char mc = vek::text::option_letter(matrix.data(), static_cast<int64_t>(matrix.size()));
    if (mc == 'U') part = p::Part::upper;
    else if (mc == 'L') part = p::Part::lower;
    else if (mc == 'G' && !packed) part = p::Part::general;
    else return fail(kBadMatrix, CharValue{matrix, kShownOption});
    d = p::Diagonal::stored;
    if (part == p::Part::general) return true;
    const char dc = vek::text::option_letter(diag.data(), static_cast<int64_t>(diag.size()));
    if (dc == 'U') d = p::Diagonal::unit;
    else if (dc == 'B') d = p::Diagonal::blank;
    else if (dc != 'N') return fail(kBadDiag, CharValue{matrix, kShownOption}, CharValue{diag, kShownOption});
    return true;
  }

  bool rows(int64_t m) { return m >= 0 || fail(kBadM, m); }
  bool columns(int64_t n) { return n >= 0 || fail(kBadN, n); }
  bool bandwidths(int64_t kl, int64_t ku) { return (kl >= 0 || fail(kBadKl, kl)) && (ku >= 0 || fail(kBadKu, ku)); }

  bool full_lda(p::Order order, int64_t m, int64_t n, int64_t lda) {
    if (order == p::Order::column_major) return m <= lda || fail(kBadLdaColumns, m, lda);
    return n <= lda || fail(kBadLdaRows, n, lda);
  }

  // The band array holds KL + KU + 1 entries per column (row-major: per row). The sum is formed so that
  // it cannot overflow.
  bool band_lda(int64_t kl, int64_t ku, int64_t lda) {
    return (lda >= 1 && kl <= lda - 1 && ku <= lda - 1 - kl) || fail(kBadLdaBand, kl, ku, lda);
  }

  bool complex_style(std::string_view usefrm, p::Options& o) {
    const char c = vek::text::option_letter(usefrm.data(), static_cast<int64_t>(usefrm.size()));
    if (c == 'A') o.complex_style = p::ComplexStyle::above;
    else if (c == 'B') o.complex_style = p::ComplexStyle::bracketed;
    else return fail(kBadUsefrm, CharValue{usefrm, kShownOption});
    return true;
  }

  bool form(std::string_view form, bool integer, p::Options& o) {
    const std::string_view t = vek::text::trim(form);
    if (t.empty() || t == "*") return true;
    o.form = p::parse_edit_descriptor(t, integer);
    return o.form.has_value() || fail(kBadForm, CharValue{form, kShownForm});
  }

  // LABROW with RLABS(1:M) and LABCOL with CLABS(1:N); each label a record of the texts' length.
  bool labels(std::string_view labrow, const char* rlabs, int64_t rlabs_len, int64_t m, std::string_view labcol,
              const char* clabs, int64_t clabs_len, int64_t n, p::Options& o) {
    if (!label_kind(labrow, kBadLabrow, o.row_labels) || !label_kind(labcol, kBadLabcol, o.column_labels))
      return false;
    if (o.row_labels == p::Labels::character) o.row_texts = records(rlabs, rlabs_len, m);
    if (o.column_labels == p::Labels::character) o.column_texts = records(clabs, clabs_len, n);
    return true;
  }

 private:
  template <class... V>
  bool fail(int64_t msgno, const V&... values) {
    err_.fail(1, msgno, values...);
    return false;
  }

  bool label_kind(std::string_view option, int64_t msgno, p::Labels& out) {
    const char c = vek::text::option_letter(option.data(), static_cast<int64_t>(option.size()));
    if (c == 'N') out = p::Labels::none;
    else if (c == 'I') out = p::Labels::integer;
    else if (c == 'C') out = p::Labels::character;
    else return fail(msgno, CharValue{option, kShownOption});
    return true;
  }

  static std::vector<std::string_view> records(const char* texts, int64_t len, int64_t count) {
    std::vector<std::string_view> out(static_cast<size_t>(count));
    for (int64_t k = 0; k < count; ++k) out[static_cast<size_t>(k)] = view(texts + k * len, len);
    return out;
  }

  ErrorBuffer& err_;
};

// The layout settings of a comprehensive form.
struct Layout {
  std::string_view usefrm, form, labrow;
  const char* rlabs;
  int64_t rlabs_len;
  std::string_view labcol;
  const char* clabs;
  int64_t clabs_len;
  int64_t ncols, indent;
};

enum class Element { real, complex, integer };

bool comprehensive(Checker& c, Element element, const Layout& l, int64_t m, int64_t n, p::Options& o) {
  if (element == Element::complex && !c.complex_style(l.usefrm, o)) return false;
  if (!c.form(l.form, element == Element::integer, o)) return false;
  if (!c.labels(l.labrow, l.rlabs, l.rlabs_len, m, l.labcol, l.clabs, l.clabs_len, n, o)) return false;
  o.ncols = p::line_width(l.ncols);
  o.indent = p::indentation(l.indent, o.ncols);
  return true;
}

template <class T, class Shape>
void print(ErrorBuffer& err, const T* a, const Shape& shape, const p::Options& o) {
  try {
    p::print_matrix(a, shape, o);
  } catch (const std::bad_alloc&) {
    err.fail_allocation();
  }
}

// General or triangular: checks, layout, print. `layout` is null for an easy form.
template <class T>
void print_full(ErrorBuffer& err, Element element, int64_t sorder, std::string_view matrix, std::string_view diag,
                int64_t m, int64_t n, const T* a, int64_t lda, std::string_view title, const Layout* layout,
                int64_t unit) {
  Checker c(err);
  p::FullShape s{m, n, lda, p::Order::column_major, p::Part::general, p::Diagonal::stored};
  p::Options o;
  o.unit = unit;
  o.title = title;
  try {
    if (!c.order(sorder, s.order) || !c.triangle(matrix, diag, false, s.part, s.diag) || !c.rows(m) ||
        !c.columns(n) || !c.full_lda(s.order, m, n, lda))
      return;
    if (layout && !comprehensive(c, element, *layout, m, n, o)) return;
  } catch (const std::bad_alloc&) {
    return err.fail_allocation();
  }
  print(err, a, s, o);
}

template <class T>
void print_packed(ErrorBuffer& err, Element element, int64_t sorder, std::string_view uplo, std::string_view diag,
                  int64_t n, const T* a, std::string_view title, const Layout* layout) {
  Checker c(err);
  p::PackedShape s{n, p::Order::column_major, p::Part::upper, p::Diagonal::stored};
  p::Options o;
  o.unit = vek::units::advisory_unit();
  o.title = title;
  try {
    if (!c.order(sorder, s.order) || !c.triangle(uplo, diag, true, s.part, s.diag) || !c.columns(n)) return;
    if (layout && !comprehensive(c, element, *layout, n, n, o)) return;
  } catch (const std::bad_alloc&) {
    return err.fail_allocation();
  }
  print(err, a, s, o);
}

template <class T>
void print_band(ErrorBuffer& err, Element element, int64_t sorder, int64_t m, int64_t n, int64_t kl, int64_t ku,
                const T* a, int64_t lda, std::string_view title, const Layout* layout) {
  Checker c(err);
  p::BandShape s{m, n, kl, ku, lda, p::Order::column_major};
  p::Options o;
  o.unit = vek::units::advisory_unit();
  o.title = title;
  try {
    if (!c.order(sorder, s.order) || !c.rows(m) || !c.columns(n) || !c.bandwidths(kl, ku) ||
        !c.band_lda(kl, ku, lda))
      return;
    if (layout && !comprehensive(c, element, *layout, m, n, o)) return;
  } catch (const std::bad_alloc&) {
    return err.fail_allocation();
  }
  print(err, a, s, o);
}

}  // namespace

extern "C" {

void x04cafn_(const int64_t* sorder, const char* matrix, const char* diag, const int64_t* m, const int64_t* n,
              const double* a, const int64_t* lda, const char* title, const int64_t* nout, char* errbuf,
              int64_t* ierr, int64_t matrix_len, int64_t diag_len, int64_t title_len, int64_t errbuf_len) {
  ErrorBuffer err(errbuf, errbuf_len, ierr);
  if (!err.licensed("X04CAFN")) return;
  print_full(err, Element::real, *sorder, view(matrix, matrix_len), view(diag, diag_len), *m, *n, a, *lda,
             view(title, title_len), nullptr, *nout);
}

void x04cbfn_(const int64_t* sorder, const char* matrix, const char* diag, const int64_t* m, const int64_t* n,
              const double* a, const int64_t* lda, const char* form, const char* title, const char* labrow,
              const char* rlabs, const char* labcol, const char* clabs, const int64_t* ncols,
              const int64_t* indent, const int64_t* nout, char* errbuf, int64_t* ierr, int64_t matrix_len,
              int64_t diag_len, int64_t form_len, int64_t title_len, int64_t labrow_len, int64_t rlabs_len,
              int64_t labcol_len, int64_t clabs_len, int64_t errbuf_len) {
  ErrorBuffer err(errbuf, errbuf_len, ierr);
  if (!err.licensed("X04CBFN")) return;
  const Layout l{{}, view(form, form_len), view(labrow, labrow_len), rlabs, rlabs_len,
                 view(labcol, labcol_len), clabs, clabs_len, *ncols, *indent};
  print_full(err, Element::real, *sorder, view(matrix, matrix_len), view(diag, diag_len), *m, *n, a, *lda,
             view(title, title_len), &l, *nout);
}

void x04ccfn_(const int64_t* sorder, const char* uplo, const char* diag, const int64_t* n, const double* a,
              const char* title, char* errbuf, int64_t* ierr, int64_t uplo_len, int64_t diag_len,
              int64_t title_len, int64_t errbuf_len) {
  ErrorBuffer err(errbuf, errbuf_len, ierr);
  if (!err.licensed("X04CCFN")) return;
  print_packed(err, Element::real, *sorder, view(uplo, uplo_len), view(diag, diag_len), *n, a,
               view(title, title_len), nullptr);
}

void x04cdfn_(const int64_t* sorder, const char* uplo, const char* diag, const int64_t* n, const double* a,
              const char* form, const char* title, const char* labrow, const char* rlabs, const char* labcol,
              const char* clabs, const int64_t* ncols, const int64_t* indent, char* errbuf, int64_t* ierr,
              int64_t uplo_len, int64_t diag_len, int64_t form_len, int64_t title_len, int64_t labrow_len,
              int64_t rlabs_len, int64_t labcol_len, int64_t clabs_len, int64_t errbuf_len) {
  ErrorBuffer err(errbuf, errbuf_len, ierr);
  if (!err.licensed("X04CDFN")) return;
  const Layout l{{}, view(form, form_len), view(labrow, labrow_len), rlabs, rlabs_len,
                 view(labcol, labcol_len), clabs, clabs_len, *ncols, *indent};
  print_packed(err, Element::real, *sorder, view(uplo, uplo_len), view(diag, diag_len), *n, a,
               view(title, title_len), &l);
}

void x04cefn_(const int64_t* sorder, const int64_t* m, const int64_t* n, const int64_t* kl, const int64_t* ku,
              const double* a, const int64_t* lda, const char* title, char* errbuf, int64_t* ierr,
              int64_t title_len, int64_t errbuf_len) {
  ErrorBuffer err(errbuf, errbuf_len, ierr);
  if (!err.licensed("X04CEFN")) return;
  print_band(err, Element::real, *sorder, *m, *n, *kl, *ku, a, *lda, view(title, title_len), nullptr);
}

void x04cffn_(const int64_t* sorder, const int64_t* m, const int64_t* n, const int64_t* kl, const int64_t* ku,
              const double* a, const int64_t* lda, const char* form, const char* title, const char* labrow,
              const char* rlabs, const char* labcol, const char* clabs, const int64_t* ncols,
              const int64_t* indent, char* errbuf, int64_t* ierr, int64_t form_len, int64_t title_len,
              int64_t labrow_len, int64_t rlabs_len, int64_t labcol_len, int64_t clabs_len, int64_t errbuf_len) {
  ErrorBuffer err(errbuf, errbuf_len, ierr);
  if (!err.licensed("X04CFFN")) return;
  const Layout l{{}, view(form, form_len), view(labrow, labrow_len), rlabs, rlabs_len,
                 view(labcol, labcol_len), clabs, clabs_len, *ncols, *indent};
  print_band(err, Element::real, *sorder, *m, *n, *kl, *ku, a, *lda, view(title, title_len), &l);
}

void x04dafn_(const int64_t* sorder, const char* matrix, const char* diag, const int64_t* m, const int64_t* n,
              const vek_complex* a, const int64_t* lda, const char* title, const int64_t* nout, char* errbuf,
              int64_t* ierr, int64_t matrix_len, int64_t diag_len, int64_t title_len, int64_t errbuf_len) {
  ErrorBuffer err(errbuf, errbuf_len, ierr);
  if (!err.licensed("X04DAFN")) return;
  print_full(err, Element::complex, *sorder, view(matrix, matrix_len), view(diag, diag_len), *m, *n, a, *lda,
             view(title, title_len), nullptr, *nout);
}

void x04dbfn_(const int64_t* sorder, const char* matrix, const char* diag, const int64_t* m, const int64_t* n,
              const vek_complex* a, const int64_t* lda, const char* usefrm, const char* form, const char* title,
              const char* labrow, const char* rlabs, const char* labcol, const char* clabs, const int64_t* ncols,
              const int64_t* indent, const int64_t* nout, char* errbuf, int64_t* ierr, int64_t matrix_len,
              int64_t diag_len, int64_t usefrm_len, int64_t form_len, int64_t title_len, int64_t labrow_len,
              int64_t rlabs_len, int64_t labcol_len, int64_t clabs_len, int64_t errbuf_len) {
  ErrorBuffer err(errbuf, errbuf_len, ierr);
  if (!err.licensed("X04DBFN")) return;
  const Layout l{view(usefrm, usefrm_len), view(form, form_len), view(labrow, labrow_len), rlabs, rlabs_len,
                 view(labcol, labcol_len), clabs, clabs_len, *ncols, *indent};
  print_full(err, Element::complex, *sorder, view(matrix, matrix_len), view(diag, diag_len), *m, *n, a, *lda,
             view(title, title_len), &l, *nout);
}

void x04dcfn_(const int64_t* sorder, const char* uplo, const char* diag, const int64_t* n, const vek_complex* a,
              const char* title, char* errbuf, int64_t* ierr, int64_t uplo_len, int64_t diag_len,
              int64_t title_len, int64_t errbuf_len) {
  ErrorBuffer err(errbuf, errbuf_len, ierr);
  if (!err.licensed("X04DCFN")) return;
  print_packed(err, Element::complex, *sorder, view(uplo, uplo_len), view(diag, diag_len), *n, a,
               view(title, title_len), nullptr);
}

void x04ddfn_(const int64_t* sorder, const char* uplo, const char* diag, const int64_t* n, const vek_complex* a,
              const char* usefrm, const char* form, const char* title, const char* labrow, const char* rlabs,
              const char* labcol, const char* clabs, const int64_t* ncols, const int64_t* indent, char* errbuf,
              int64_t* ierr, int64_t uplo_len, int64_t diag_len, int64_t usefrm_len, int64_t form_len,
              int64_t title_len, int64_t labrow_len, int64_t rlabs_len, int64_t labcol_len, int64_t clabs_len,
              int64_t errbuf_len) {
  ErrorBuffer err(errbuf, errbuf_len, ierr);
  if (!err.licensed("X04DDFN")) return;
  const Layout l{view(usefrm, usefrm_len), view(form, form_len), view(labrow, labrow_len), rlabs, rlabs_len,
                 view(labcol, labcol_len), clabs, clabs_len, *ncols, *indent};
  print_packed(err, Element::complex, *sorder, view(uplo, uplo_len), view(diag, diag_len), *n, a,
               view(title, title_len), &l);
}

void x04defn_(const int64_t* sorder, const int64_t* m, const int64_t* n, const int64_t* kl, const int64_t* ku,
              const vek_complex* a, const int64_t* lda, const char* title, char* errbuf, int64_t* ierr,
              int64_t title_len, int64_t errbuf_len) {
  ErrorBuffer err(errbuf, errbuf_len, ierr);
  if (!err.licensed("X04DEFN")) return;
  print_band(err, Element::complex, *sorder, *m, *n, *kl, *ku, a, *lda, view(title, title_len), nullptr);
}

void x04dffn_(const int64_t* sorder, const int64_t* m, const int64_t* n, const int64_t* kl, const int64_t* ku,
              const vek_complex* a, const int64_t* lda, const char* usefrm, const char* form, const char* title,
              const char* labrow, const char* rlabs, const char* labcol, const char* clabs, const int64_t* ncols,
              const int64_t* indent, char* errbuf, int64_t* ierr, int64_t usefrm_len, int64_t form_len,
              int64_t title_len, int64_t labrow_len, int64_t rlabs_len, int64_t labcol_len, int64_t clabs_len,
              int64_t errbuf_len) {
  ErrorBuffer err(errbuf, errbuf_len, ierr);
  if (!err.licensed("X04DFFN")) return;
  const Layout l{view(usefrm, usefrm_len), view(form, form_len), view(labrow, labrow_len), rlabs, rlabs_len,
                 view(labcol, labcol_len), clabs, clabs_len, *ncols, *indent};
  print_band(err, Element::complex, *sorder, *m, *n, *kl, *ku, a, *lda, view(title, title_len), &l);
}

void x04eafn_(const int64_t* sorder, const char* matrix, const char* diag, const int64_t* m, const int64_t* n,
              const int64_t* a, const int64_t* lda, const char* title, char* errbuf, int64_t* ierr,
              int64_t matrix_len, int64_t diag_len, int64_t title_len, int64_t errbuf_len) {
  ErrorBuffer err(errbuf, errbuf_len, ierr);
  if (!err.licensed("X04EAFN")) return;
  print_full(err, Element::integer, *sorder, view(matrix, matrix_len), view(diag, diag_len), *m, *n, a, *lda,
             view(title, title_len), nullptr, vek::units::advisory_unit());
}

void x04ebfn_(const int64_t* sorder, const char* matrix, const char* diag, const int64_t* m, const int64_t* n,
              const int64_t* a, const int64_t* lda, const char* form, const char* title, const char* labrow,
              const char* rlabs, const char* labcol, const char* clabs, const int64_t* ncols,
              const int64_t* indent, char* errbuf, int64_t* ierr, int64_t matrix_len, int64_t diag_len,
              int64_t form_len, int64_t title_len, int64_t labrow_len, int64_t rlabs_len, int64_t labcol_len,
              int64_t clabs_len, int64_t errbuf_len) {
  ErrorBuffer err(errbuf, errbuf_len, ierr);
  if (!err.licensed("X04EBFN")) return;
  const Layout l{{}, view(form, form_len), view(labrow, labrow_len), rlabs, rlabs_len,
                 view(labcol, labcol_len), clabs, clabs_len, *ncols, *indent};
  print_full(err, Element::integer, *sorder, view(matrix, matrix_len), view(diag, diag_len), *m, *n, a, *lda,
             view(title, title_len), &l, vek::units::advisory_unit());
}

}  // extern "C"
