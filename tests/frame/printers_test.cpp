// The matrix printers: layouts line by line for every kind and element type, the Fortran-style formats,
// exact read-back of every printed element for every storage scheme, and every message of every routine.
#include <gtest/gtest.h>

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstdlib>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "support/unit_capture.h"
#include "frame/printers_format.h"
#include "vek.h"

namespace {

using vek::testing::UnitCapture;
using Lines = std::vector<std::string>;

enum class Kind { general, packed, band };
enum class Elem { real, complex, integer };

struct Routine {
  const char* name;
  Kind kind;
  Elem elem;
  bool comprehensive;
  bool has_nout;
};

constexpr Routine kRoutines[] = {
    {"X04CAF", Kind::general, Elem::real, false, true},     {"X04CBF", Kind::general, Elem::real, true, true},
    {"X04CCF", Kind::packed, Elem::real, false, false},     {"X04CDF", Kind::packed, Elem::real, true, false},
    {"X04CEF", Kind::band, Elem::real, false, false},       {"X04CFF", Kind::band, Elem::real, true, false},
    {"X04DAF", Kind::general, Elem::complex, false, true},  {"X04DBF", Kind::general, Elem::complex, true, true},
    {"X04DCF", Kind::packed, Elem::complex, false, false},  {"X04DDF", Kind::packed, Elem::complex, true, false},
    {"X04DEF", Kind::band, Elem::complex, false, false},    {"X04DFF", Kind::band, Elem::complex, true, false},
    {"X04EAF", Kind::general, Elem::integer, false, false}, {"X04EBF", Kind::general, Elem::integer, true, false},
};

// Every argument of the family; `matrix` is UPLO for the packed kind. Labels are records of `label_len`.
struct Args {
  int64_t sorder = 1;
  std::string matrix = "G", diag = "N";
  int64_t m = 2, n = 3, kl = 1, ku = 1, lda = 3;
  std::string usefrm = "A", form = " ", title = "Title";
  std::string labrow = "I", rlabs = " ", labcol = "I", clabs = " ";
  int64_t label_len = 1;
  int64_t ncols = 80, indent = 0;
  int64_t nout = UnitCapture::kUnit;
  std::vector<double> a = std::vector<double>(64, 0.0);
  std::vector<vek_complex> z = std::vector<vek_complex>(64, vek_complex{0, 0});
  std::vector<int64_t> ia = std::vector<int64_t>(64, 0);
};

int64_t len(const std::string& s) { return static_cast<int64_t>(s.size()); }

// Calls the routine with IFAIL on entry `ifail` and returns IFAIL on exit.
int64_t call(const Routine& r, const Args& g, int64_t ifail) {
  const std::string name = r.name;
  const char *mx = g.matrix.c_str(), *dg = g.diag.c_str(), *uf = g.usefrm.c_str(), *fm = g.form.c_str(),
             *tt = g.title.c_str(), *lr = g.labrow.c_str(), *rl = g.rlabs.c_str(), *lc = g.labcol.c_str(),
             *cl = g.clabs.c_str();
  const int64_t lm = len(g.matrix), ld = len(g.diag), lu = len(g.usefrm), lf = len(g.form), lt = len(g.title),
                llr = len(g.labrow), llc = len(g.labcol), ll = g.label_len;
  const double* a = g.a.data();
  const vek_complex* z = g.z.data();
  const int64_t* ia = g.ia.data();
  if (name == "X04CAF") x04caf_(&g.sorder, mx, dg, &g.m, &g.n, a, &g.lda, tt, &g.nout, &ifail, lm, ld, lt);
  if (name == "X04CBF")
    x04cbf_(&g.sorder, mx, dg, &g.m, &g.n, a, &g.lda, fm, tt, lr, rl, lc, cl, &g.ncols, &g.indent, &g.nout, &ifail,
            lm, ld, lf, lt, llr, ll, llc, ll);
  if (name == "X04CCF") x04ccf_(&g.sorder, mx, dg, &g.n, a, tt, &ifail, lm, ld, lt);
  if (name == "X04CDF")
    x04cdf_(&g.sorder, mx, dg, &g.n, a, fm, tt, lr, rl, lc, cl, &g.ncols, &g.indent, &ifail, lm, ld, lf, lt, llr, ll,
            llc, ll);
  if (name == "X04CEF") x04cef_(&g.sorder, &g.m, &g.n, &g.kl, &g.ku, a, &g.lda, tt, &ifail, lt);
  if (name == "X04CFF")
    x04cff_(&g.sorder, &g.m, &g.n, &g.kl, &g.ku, a, &g.lda, fm, tt, lr, rl, lc, cl, &g.ncols, &g.indent, &ifail, lf,
            lt, llr, ll, llc, ll);
  if (name == "X04DAF") x04daf_(&g.sorder, mx, dg, &g.m, &g.n, z, &g.lda, tt, &g.nout, &ifail, lm, ld, lt);
  if (name == "X04DBF")
    x04dbf_(&g.sorder, mx, dg, &g.m, &g.n, z, &g.lda, uf, fm, tt, lr, rl, lc, cl, &g.ncols, &g.indent, &g.nout,
            &ifail, lm, ld, lu, lf, lt, llr, ll, llc, ll);
  if (name == "X04DCF") x04dcf_(&g.sorder, mx, dg, &g.n, z, tt, &ifail, lm, ld, lt);
  if (name == "X04DDF")
    x04ddf_(&g.sorder, mx, dg, &g.n, z, uf, fm, tt, lr, rl, lc, cl, &g.ncols, &g.indent, &ifail, lm, ld, lu, lf, lt,
            llr, ll, llc, ll);
  if (name == "X04DEF") x04def_(&g.sorder, &g.m, &g.n, &g.kl, &g.ku, z, &g.lda, tt, &ifail, lt);
  if (name == "X04DFF")
    x04dff_(&g.sorder, &g.m, &g.n, &g.kl, &g.ku, z, &g.lda, uf, fm, tt, lr, rl, lc, cl, &g.ncols, &g.indent,
            &ifail, lu, lf, lt, llr, ll, llc, ll);
  if (name == "X04EAF") x04eaf_(&g.sorder, mx, dg, &g.m, &g.n, ia, &g.lda, tt, &ifail, lm, ld, lt);
  if (name == "X04EBF")
    x04ebf_(&g.sorder, mx, dg, &g.m, &g.n, ia, &g.lda, fm, tt, lr, rl, lc, cl, &g.ncols, &g.indent, &ifail, lm, ld,
            lf, lt, llr, ll, llc, ll);
  return ifail;
}

const Routine& routine(const std::string& name) {
  for (const Routine& r : kRoutines)
    if (name == r.name) return r;
  std::abort();
}

Lines printed(const std::string& name, const Args& g, int64_t* ifail_out = nullptr) {
  UnitCapture cap;
  const int64_t ifail = call(routine(name), g, -1);
  if (ifail_out) *ifail_out = ifail;
  else EXPECT_EQ(ifail, 0) << name;
  return cap.lines();
}

// A 3 x 4 real matrix a(i, j) = (-1)^k (k + 1) 1.25 with k its column-major position.
Args example_3x4() {
  Args g;
  g.m = 3;
  g.n = 4;
  g.lda = 3;
  for (int k = 0; k < 12; ++k) g.a[k] = (k % 2 ? -1 : 1) * (k + 1) * 1.25;
  return g;
}

TEST(Printers, RealGeneralAndTriangularLayouts) {
  Args g = example_3x4();
  g.title = "Example 1: general";
  EXPECT_EQ(printed("X04CAF", g), (Lines{"Example 1: general",
                                         "         1        2        3        4",
                                         "1   1.2500  -5.0000   8.7500 -12.5000",
                                         "2  -2.5000   6.2500 -10.0000  13.7500",
                                         "3   3.7500  -7.5000  11.2500 -15.0000"}));
  // The same matrix stored row by row prints the same.
  Args r = g;
  r.sorder = 2;
  r.lda = 5;
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 4; ++j) r.a[i * 5 + j] = g.a[i + 3 * j];
  EXPECT_EQ(printed("X04CAF", r), printed("X04CAF", g));

  g.matrix = "u";
  g.diag = "u";
  g.title = "Upper, unit";
  EXPECT_EQ(printed("X04CAF", g), (Lines{"Upper, unit",
                                         "         1        2        3        4",
                                         "1   1.0000  -5.0000   8.7500 -12.5000",
                                         "2            1.0000 -10.0000  13.7500",
                                         "3                     1.0000 -15.0000"}));
  g.matrix = "L";
  g.diag = "B";
  g.title = " ";  // no title line
  // The default field fits the printed values only.
  EXPECT_EQ(printed("X04CAF", g), (Lines{"        1       2       3       4", "1", "2 -2.5000", "3  3.7500 -7.5000"}));
}

// Trailing blanks are not written: the expected lines above are compared without them.
Lines trimmed(Lines lines) {
  for (std::string& l : lines) l.erase(l.find_last_not_of(' ') + 1);
  return lines;
}

TEST(Printers, DefaultFormatFollowsTheValues) {
  Args g;
  g.m = 2;
  g.n = 2;
  g.lda = 2;
  g.a = {1e-7, 2.5e10, -3, 4};
  g.title = "Wide range";
  EXPECT_EQ(printed("X04CAF", g), (Lines{"Wide range", "            1           2",
                                         "1  1.0000E-07 -3.0000E+00", "2  2.5000E+10  4.0000E+00"}));
  g.a = {0, 0, 0, 0};
  EXPECT_EQ(printed("X04CAF", g)[2], "1  0.0000  0.0000");
  g.a = {std::nan(""), -INFINITY, 0.5, 12345.5};
  EXPECT_EQ(printed("X04CAF", g), (Lines{"Wide range", "            1           2", "1         NaN      0.5000",
                                         "2   -Infinity  12345.5000"}));
  g.a = {-INFINITY, 0.5, 0.5, 0.5};  // a narrow field shows the short form
  EXPECT_EQ(printed("X04CAF", g)[2], "1    -Inf  0.5000");
}

TEST(Printers, ComprehensiveFormsHonourFormLabelsWidthAndIndent) {
  Args g = example_3x4();
  g.form = "1PE12.4";
  g.title = "Comprehensive";
  g.labrow = "C";
  g.label_len = 8;
  g.rlabs = "Row one Row two Row 3   ";
  g.ncols = 40;
  g.indent = 3;
  EXPECT_EQ(trimmed(printed("X04CBF", g)), (Lines{"   Comprehensive",
                                                  "                      1            2",
                                                  "   Row one   1.2500E+00  -5.0000E+00",
                                                  "   Row two  -2.5000E+00   6.2500E+00",
                                                  "   Row 3     3.7500E+00  -7.5000E+00",
                                                  "",
                                                  "                      3            4",
                                                  "   Row one   8.7500E+00  -1.2500E+01",
                                                  "   Row two  -1.0000E+01   1.3750E+01",
                                                  "   Row 3     1.1250E+01  -1.5000E+01"}));
  // Character column labels, no row labels, a G format; NCOLS out of range means 80, a bad INDENT none.
  g.labrow = "n";
  g.labcol = "C";
  g.clabs = "alpha   beta    gamma   a long l";
  g.form = "(g10.3)";
  g.ncols = 500;
  g.indent = 500;
  g.m = 1;
  EXPECT_EQ(printed("X04CBF", g),
            (Lines{"Comprehensive", "      alpha       beta      gamma   a long l",
                   "   1.25      -5.00       8.75      -12.5"}));
  // Integer labels wider than the elements widen their columns.
  g.labrow = "I";
  g.labcol = "I";
  g.form = "F3.0";
  g.m = 1;
  g.n = 12;
  g.lda = 1;
  for (int k = 0; k < 12; ++k) g.a[k] = k;
  EXPECT_EQ(printed("X04CBF", g)[1], "    1   2   3   4   5   6   7   8   9  10  11  12");
}

TEST(Printers, ComplexLayouts) {
  Args g;
  g.m = 2;
  g.n = 2;
  g.lda = 2;
  g.z = {{1, 2}, {-3, 4}, {5.5, -6}, {7, 8}};
  g.title = "Complex";
  EXPECT_EQ(trimmed(printed("X04DAF", g)), (Lines{"Complex", "        1       2", "1  1.0000  5.5000",
                                                  "   2.0000 -6.0000", "2 -3.0000  7.0000", "   4.0000  8.0000"}));
  g.usefrm = "b";
  g.form = "F5.1";
  g.labrow = "N";
  g.labcol = "N";
  g.indent = 2;
  EXPECT_EQ(printed("X04DBF", g), (Lines{"  Complex", "   (  1.0,  2.0) (  5.5, -6.0)", "   ( -3.0,  4.0) (  7.0,  8.0)"}));
  // Packed and band complex matrices print through the same kernel.
  g.matrix = "L";
  g.diag = "U";
  g.n = 2;
  g.form = "F4.1";
  EXPECT_EQ(trimmed(printed("X04DDF", g)), (Lines{"  Complex", "   ( 1.0, 0.0)", "   (-3.0, 4.0) ( 1.0, 0.0)"}));
}

TEST(Printers, IntegerLayouts) {
  Args g;
  g.m = 2;
  g.n = 3;
  g.lda = 2;
  g.ia = {1, -20, 300, 4, 5, 6};
  g.title = "Integers";
  EXPECT_EQ(printed("X04EAF", g), (Lines{"Integers", "    1   2   3", "1   1 300   5", "2 -20   4   6"}));
  g.form = "I6";
  g.matrix = "U";
  g.diag = "N";
  EXPECT_EQ(trimmed(printed("X04EBF", g)),
            (Lines{"Integers", "       1      2      3", "1      1    300      5", "2             4      6"}));
  g.form = "I2";  // 300 does not fit: asterisks
  EXPECT_EQ(printed("X04EBF", g)[2], "1  1 **  5");
}

TEST(Printers, PackedAndBandLayouts) {
  Args g;
  g.n = 3;
  g.matrix = "U";
  g.a = {1, 2, 3, 4, 5, 6};
  g.title = "Packed";
  EXPECT_EQ(trimmed(printed("X04CCF", g)), (Lines{"Packed", "        1       2       3", "1  1.0000  2.0000  4.0000",
                                                  "2          3.0000  5.0000", "3                  6.0000"}));
  g.sorder = 2;  // row by row
  EXPECT_EQ(trimmed(printed("X04CCF", g))[1 + 1], "1  1.0000  2.0000  3.0000");
  Args b;
  b.m = 4;
  b.n = 4;
  b.kl = 1;
  b.ku = 1;
  b.lda = 3;
  b.a = {0, 11, 21, 12, 22, 32, 23, 33, 43, 34, 44, 0};
  b.form = "F3.0";
  b.title = "Band";
  EXPECT_EQ(trimmed(printed("X04CFF", b)), (Lines{"Band", "    1   2   3   4", "1 11. 12.", "2 21. 22. 23.",
                                                  "3     32. 33. 34.", "4         43. 44."}));
  EXPECT_EQ(trimmed(printed("X04CEF", b))[2], "1  11.0000  12.0000");
}

// Reads a printed table (no labels, exponent format) back into (row, column) -> value, blank cells as NaN.
std::vector<std::vector<double>> read_back(const Lines& lines, int64_t m, int64_t n, size_t width) {
  std::vector<std::vector<double>> v(static_cast<size_t>(m), std::vector<double>(static_cast<size_t>(n), NAN));
  for (int64_t i = 0; i < m; ++i) {
    const std::string& l = lines[static_cast<size_t>(i)];
    for (int64_t j = 0; j < n; ++j) {
      const size_t at = static_cast<size_t>(j) * (width + 1) + 1;
      if (at >= l.size()) continue;
      const std::string cell = l.substr(at, width);
      if (cell.find_first_not_of(' ') != std::string::npos) v[static_cast<size_t>(i)][static_cast<size_t>(j)] = std::strtod(cell.c_str(), nullptr);
    }
  }
  return v;
}

// Prints g (random elements, 17 significant digits, no labels) and reads every cell back: the element at
// the array index `locate(i, j)` gives, or a blank cell where it gives -1.
template <class Locate>
void check_read_back(const char* name, Args g, int64_t m, int64_t n, const char* form, std::mt19937_64& gen,
                     Locate locate) {
  std::normal_distribution<double> dist;
  for (double& x : g.a) x = dist(gen);
  g.form = form;
  g.labrow = g.labcol = "N";
  g.title = " ";
  g.ncols = 132;
  const auto v = read_back(printed(name, g), m, n, 24);
  for (int64_t i = 0; i < m; ++i)
    for (int64_t j = 0; j < n; ++j) {
      const int64_t k = locate(i, j);
      if (k < 0) EXPECT_TRUE(std::isnan(v[i][j])) << name << g.sorder << i << j;
      else EXPECT_EQ(v[i][j], g.a[k]) << name << g.sorder << g.matrix << i << j;
    }
}

TEST(Printers, EveryStorageSchemeReadsBackExactly) {
  std::mt19937_64 gen(7);
  const int64_t n = 5;
  for (const int64_t sorder : {1, 2}) {
    for (const char* uplo : {"U", "L"}) {
      Args g;
      g.sorder = sorder;
      g.matrix = uplo;
      g.n = n;
      // Column-major upper / row-major lower pack r + c(c+1)/2 with (r, c) the (shorter, longer) index.
      const bool short_first = (uplo[0] == 'U') == (sorder == 1);
      check_read_back("X04CDF", g, n, n, "ES24.16", gen, [&](int64_t i, int64_t j) -> int64_t {
        if (uplo[0] == 'U' ? i > j : i < j) return -1;
        const int64_t r = sorder == 1 ? i : j, c = sorder == 1 ? j : i;
        return short_first ? r + c * (c + 1) / 2 : r + c * (2 * n - c - 1) / 2;
      });
    }
    Args b;
    b.sorder = sorder;
    b.m = 4;
    b.n = n;
    b.kl = 2;
    b.ku = 1;
    b.lda = 5;
    check_read_back("X04CFF", b, b.m, n, "1PE24.16", gen, [&](int64_t i, int64_t j) -> int64_t {
      if (i - j > b.kl || j - i > b.ku) return -1;
      return sorder == 1 ? b.ku + i - j + j * b.lda : i * b.lda + b.kl + j - i;
    });
    Args f;
    f.sorder = sorder;
    f.m = 3;
    f.n = 4;
    f.lda = 6;
    check_read_back("X04CBF", f, f.m, f.n, "E24.17", gen,
                    [&](int64_t i, int64_t j) { return sorder == 1 ? i + j * f.lda : i * f.lda + j; });
  }
}

TEST(PrinterFormats, FortranEditDescriptors) {
  using vek::printers::format_real;
  auto f = [](const char* form) {
    const auto d = vek::printers::parse_edit_descriptor(form, false);
    EXPECT_TRUE(d.has_value()) << form;
    return d.value_or(vek::printers::EditDescriptor{});
  };
  EXPECT_EQ(format_real(f("F8.4"), 3.14159265), "  3.1416");
  EXPECT_EQ(format_real(f("F3.1"), 0.25), "0.2");   // 0.25 is a tie, rounded to even
  EXPECT_EQ(format_real(f("F3.1"), -0.75), "-.8");  // the leading zero goes when room is short
  EXPECT_EQ(format_real(f("F4.0"), 7.0), "  7.");
  EXPECT_EQ(format_real(f("F5.1"), 1e10), "*****");
  EXPECT_EQ(format_real(f("E12.4"), 1234.56), "  0.1235E+04");
  EXPECT_EQ(format_real(f("D12.4"), -0.001234), " -0.1234D-02");
  EXPECT_EQ(format_real(f("E10.3"), 1.5e100), " 0.150+101");
  EXPECT_EQ(format_real(f("E10.3"), 1.5e-100), " 0.150E-99");
  EXPECT_EQ(format_real(f("E10.3"), 1.5e-101), " 0.150-100");
  EXPECT_EQ(format_real(f("E10.4"), -0.5), "-.5000E+00");
  EXPECT_EQ(format_real(f("E9.4"), -0.5), "*********");
  EXPECT_EQ(format_real(f("E12.4"), 0.0), "  0.0000E+00");
  EXPECT_EQ(format_real(f("1PE12.4"), 12.345678), "  1.2346E+01");
  EXPECT_EQ(format_real(f("ES11.3"), -0.000123456), " -1.235E-04");
  EXPECT_EQ(format_real(f("1P,E11.3"), 5.0), "  5.000E+00");
  EXPECT_EQ(format_real(f("G14.6"), 3.14159265), "   3.14159    ");
  EXPECT_EQ(format_real(f("G14.6"), 0.5), "  0.500000    ");
  EXPECT_EQ(format_real(f("G14.6"), 123456.7), "   123457.    ");
  EXPECT_EQ(format_real(f("G14.6"), 1234567.0), "  0.123457E+07");
  EXPECT_EQ(format_real(f("G14.6"), 0.01), "  0.100000E-01");
  EXPECT_EQ(format_real(f("G14.6"), 0.0), "   0.00000    ");
  EXPECT_EQ(format_real(f("1PG14.6"), 1234567.0), "  1.234567E+06");
  EXPECT_EQ(format_real(f("F10.2"), INFINITY), "  Infinity");
  EXPECT_EQ(format_real(f("F5.2"), -INFINITY), " -Inf");
  EXPECT_EQ(format_real(f("F2.0"), -INFINITY), "**");
  EXPECT_EQ(format_real(f("F5.2"), NAN), "  NaN");
  // The widest fields with the most digits, at the ends of the range.
  for (const char* form : {"1PE60.59", "E60.59", "G60.59", "1PG60.59", "F60.59"})
    for (double x : {DBL_MAX, -DBL_MAX, DBL_TRUE_MIN, -1.0 / 3})
      EXPECT_EQ(format_real(f(form), x).size(), 60u) << form << x;
  for (const char* form : {"1PE60.50", "E60.50", "G60.50", "1PG60.50", "F60.50"})
    for (double x : {DBL_MAX, -DBL_MAX, DBL_TRUE_MIN, -1.0 / 3}) {
      const std::string s = format_real(f(form), x);
      if (form[0] == 'F' && std::fabs(x) > 1e10) {
        EXPECT_EQ(s, std::string(60, '*'));
        continue;
      }
      // An exponent beyond 99 has no letter; F shows the subnormal as zero.
      std::string t = s;
      const size_t sign = t.find_last_of("+-");
      if (sign != std::string::npos && sign > 0 && std::isdigit(static_cast<unsigned char>(t[sign - 1])))
        t.insert(sign, "E");
      const double back = std::strtod(t.c_str(), nullptr);
      if (form[0] == 'F' && std::fabs(x) < 1) EXPECT_NEAR(back, x, 1e-50) << form << " " << s;
      else EXPECT_NEAR(back / x, 1.0, 1e-15) << form << " " << s;
    }
  const auto i6 = vek::printers::parse_edit_descriptor("i6", true);
  ASSERT_TRUE(i6);
  EXPECT_EQ(vek::printers::format_integer(*i6, -12345), "-12345");
  EXPECT_EQ(vek::printers::format_integer(*i6, 1234567), "******");
  for (const char* bad : {"F8", "F8.", "X8.4", "E8.0", "F61.2", "F8.8", "1PF8.4", "0PES10.2", "F0.0", "I4",
                          "F8.4,I2", "((F8.4)", "F1234.2", "G8.-1"})
    EXPECT_FALSE(vek::printers::parse_edit_descriptor(bad, false)) << bad;
  for (const char* bad : {"F8.4", "I0", "I61", "I", "I4.2"})
    EXPECT_FALSE(vek::printers::parse_edit_descriptor(bad, true)) << bad;
  for (const char* good : {"f8.4", " ( E 12 . 4 ) ", "0PE12.4", "1pd12.4", "es9.2", "G60.17", "F1.0"})
    EXPECT_TRUE(vek::printers::parse_edit_descriptor(good, false)) << good;
}

// One message of the family: which routines it concerns, the change of arguments that provokes it, and
// its records (for the packed kind, where the option is UPLO, its own records when they differ).
struct MessageCase {
  const char* what;
  bool (*applies)(const Routine&);
  void (*provoke)(Args&);
  Lines records;
  Lines packed_records;
};

bool any(const Routine&) { return true; }
bool general(const Routine& r) { return r.kind == Kind::general; }
bool packed(const Routine& r) { return r.kind == Kind::packed; }
bool band(const Routine& r) { return r.kind == Kind::band; }
bool with_rows(const Routine& r) { return r.kind != Kind::packed; }
bool comprehensive(const Routine& r) { return r.comprehensive; }
bool complex_comprehensive(const Routine& r) { return r.comprehensive && r.elem == Elem::complex; }
bool real_comprehensive(const Routine& r) { return r.comprehensive && r.elem != Elem::integer; }
bool integer_comprehensive(const Routine& r) { return r.comprehensive && r.elem == Elem::integer; }

const MessageCase kMessages[] = {
    {"SORDER", any, [](Args& g) { g.sorder = 3; },
     {"** On entry, SORDER = 3.", "** Constraint: SORDER = 1 or 2."}, {}},
    {"MATRIX", [](const Routine& r) { return r.kind != Kind::band; }, [](Args& g) { g.matrix = "  Q"; },
     {"** On entry, MATRIX is not valid: MATRIX = 'Q'."}, {"** On entry, UPLO is not valid: UPLO = 'Q'."}},
    {"packed general", packed, [](Args& g) { g.matrix = "G"; }, {}, {"** On entry, UPLO is not valid: UPLO = 'G'."}},
    {"DIAG", [](const Routine& r) { return r.kind != Kind::band; }, [](Args& g) {
       g.matrix = "Lower";
       g.diag = "X";
     },
     {"** On entry, MATRIX = 'Lower', but DIAG is not valid:", "** DIAG = 'X'."},
     {"** On entry, UPLO = 'Lower', but DIAG is not valid:", "** DIAG = 'X'."}},
    {"M", with_rows, [](Args& g) { g.m = -1; }, {"** On entry, M = -1.", "** Constraint: M >= 0."}, {}},
    {"N", any, [](Args& g) { g.n = -2; }, {"** On entry, N = -2.", "** Constraint: N >= 0."},
     {"** On entry, N = -2.", "** Constraint: N >= 0."}},
    {"KL", band, [](Args& g) { g.kl = -1; }, {"** On entry, KL = -1.", "** Constraint: KL >= 0."}, {}},
    {"KU", band, [](Args& g) { g.ku = -3; }, {"** On entry, KU = -3.", "** Constraint: KU >= 0."}, {}},
    {"LDA columns", general, [](Args& g) { g.lda = 1; },
     {"** On entry, M = 2 and LDA = 1.", "** Constraint: M <= LDA."}, {}},
    {"LDA rows", general, [](Args& g) {
       g.sorder = 2;
       g.lda = 2;
     },
     {"** On entry, N = 3 and LDA = 2.", "** Constraint: N <= LDA."}, {}},
    {"LDA band", band, [](Args& g) { g.lda = 2; },
     {"** On entry, KL = 1, KU = 1 and LDA = 2.", "** Constraint: LDA >= KL + KU + 1."}, {}},
    {"LDA band overflow", band, [](Args& g) { g.ku = INT64_MAX; },
     {"** On entry, KL = 1, KU = 9223372036854775807 and LDA = 3.", "** Constraint: LDA >= KL + KU + 1."}, {}},
    {"USEFRM", complex_comprehensive, [](Args& g) { g.usefrm = "C"; },
     {"** On entry, USEFRM is not valid: USEFRM = 'C'.", "** Constraint: USEFRM = 'A' or 'B'."},
     {"** On entry, USEFRM is not valid: USEFRM = 'C'.", "** Constraint: USEFRM = 'A' or 'B'."}},
    {"FORM real", real_comprehensive, [](Args& g) { g.form = "F8"; },
     {"** On entry, FORM is not valid: FORM = 'F8'.",
      "** Constraint: FORM is blank, '*' or one of Fw.d, Ew.d, Dw.d, ESw.d, Gw.d,",
      "** 1PEw.d, 1PDw.d, 1PGw.d, with 1 <= w <= 60."},
     {"** On entry, FORM is not valid: FORM = 'F8'.",
      "** Constraint: FORM is blank, '*' or one of Fw.d, Ew.d, Dw.d, ESw.d, Gw.d,",
      "** 1PEw.d, 1PDw.d, 1PGw.d, with 1 <= w <= 60."}},
    {"FORM integer", integer_comprehensive, [](Args& g) { g.form = "F8.2"; },
     {"** On entry, FORM is not valid: FORM = 'F8.2'.", "** Constraint: FORM is blank, '*' or Iw (1 <= w <= 60)."},
     {}},
    {"LABROW", comprehensive, [](Args& g) { g.labrow = "Y"; },
     {"** On entry, LABROW is not valid: LABROW = 'Y'.", "** Constraint: LABROW = 'N', 'I' or 'C'."},
     {"** On entry, LABROW is not valid: LABROW = 'Y'.", "** Constraint: LABROW = 'N', 'I' or 'C'."}},
    {"LABCOL", comprehensive, [](Args& g) { g.labcol = "Z"; },
     {"** On entry, LABCOL is not valid: LABCOL = 'Z'.", "** Constraint: LABCOL = 'N', 'I' or 'C'."},
     {"** On entry, LABCOL is not valid: LABCOL = 'Z'.", "** Constraint: LABCOL = 'N', 'I' or 'C'."}},
};

TEST(Printers, EveryMessageOfEveryRoutine) {
  for (const Routine& r : kRoutines) {
    for (const MessageCase& mc : kMessages) {
      if (!mc.applies(r)) continue;
      Args g;
      if (r.kind == Kind::packed) g.matrix = "U";
      mc.provoke(g);
      int64_t ifail = 0;
      const Lines lines = printed(r.name, g, &ifail);
      EXPECT_EQ(ifail, 1) << r.name << " " << mc.what;
      Lines expected;
      const bool own = r.kind == Kind::packed && !mc.packed_records.empty();
      for (const std::string& rec : own ? mc.packed_records : mc.records)
        expected.push_back(" " + rec);
      expected.push_back(std::string(" ** ABNORMAL EXIT from VEK Library routine ") + r.name + ": IFAIL =     1");
      expected.push_back(" ** VEK soft failure - control returned");
      EXPECT_EQ(lines, expected) << r.name << " " << mc.what;
    }
    // The same arguments without the fault print without complaint.
    Args ok;
    if (r.kind == Kind::packed) ok.matrix = "U";
    int64_t ifail = -7;
    const Lines lines = printed(r.name, ok, &ifail);
    EXPECT_EQ(ifail, 0) << r.name;
    EXPECT_EQ(lines.front(), "Title") << r.name;
  }
}

// With the trace on, a comprehensive printer dumps its scalars and texts and only the address of its arrays
// (whose lengths depend on options), then prints as without it.
TEST(Printers, TracedCallPrintsTheSameTable) {
  Args g = example_3x4();
  g.labrow = "C";
  g.label_len = 3;
  g.rlabs = "r1 r2 r3 ";
  const Lines plain = printed("X04CBF", g);
  const int64_t on = 2, off = 0;
  y90gcft_(&on);
  const Lines traced = printed("X04CBF", g);
  y90gcft_(&off);
  bool form_shown = false;
  for (const std::string& line : traced) form_shown = form_shown || line.find("FORM") != std::string::npos;
  EXPECT_TRUE(form_shown);
  // The table stands whole between the "On entry" and "On exit" records.
  EXPECT_NE(std::search(traced.begin(), traced.end(), plain.begin(), plain.end()), traced.end());
  EXPECT_GT(traced.size(), plain.size());
}

TEST(Printers, EasyFormsWithoutNoutUseTheAdvisoryUnitAndNegativeUnitsAreSilent) {
  Args g;
  g.nout = -1;
  for (const char* name : {"X04CAF", "X04CBF", "X04DAF", "X04DBF"}) EXPECT_TRUE(printed(name, g).empty()) << name;
  g.m = 0;
  g.n = 0;
  g.nout = UnitCapture::kUnit;
  EXPECT_EQ(printed("X04CAF", g), Lines{"Title"});
}

}  // namespace
