// d01eaf and d01fcf (Genz-Malik cubature), d01gcf and d01gdf (shifted Korobov lattice rules), d01gyf and d01gzf
// (optimal Korobov coefficients) through their exported entries, against data/multidimensional.txt
// (make_multidimensional_reference.py): Genz's test integrands over boxes, exact as
// products of one-dimensional integrals by mpmath (2 to 15 dimensions), and the coefficients of an independent
// exhaustive search.
#include <gtest/gtest.h>

#include <cmath>
#include <algorithm>
#include <fstream>
#include <functional>
#include <limits>
#include <numbers>
#include <sstream>
#include <string>
#include <vector>

#include "frame/text.h"
#include "support/report.h"
#include "vek.h"

namespace {

struct Integral {
  std::string family;
  int64_t ndim = 0;
  std::vector<double> a, b, c, w;
  double exact = 0;
};

struct Coefficient {
  bool prime;
  int64_t p, q, ndim, a;
};

std::vector<Integral> g_integrals;
std::vector<Coefficient> g_coefficients;

void load() {
  if (!g_integrals.empty()) return;
  std::ifstream in(std::string(VEK_TEST_DATA_DIR) + "/multidimensional.txt");
  for (std::string line; std::getline(in, line);) {
    if (line.empty() || line[0] == '#') continue;
    std::istringstream s(line);
    std::string kind;
    s >> kind;
    if (kind == "korobov") {
      Coefficient k{};
      s >> kind;
      k.prime = kind == "prime";
      s >> k.p;
      if (!k.prime) s >> k.q;
      s >> k.ndim >> k.a;
      g_coefficients.push_back(k);
      continue;
    }
    Integral t;
    t.family = kind;
    s >> t.ndim;
    for (auto* v : {&t.a, &t.b, &t.c, &t.w}) {
      v->resize(static_cast<size_t>(t.ndim));
      for (double& x : *v) s >> x;
    }
    s >> t.exact;
    g_integrals.push_back(t);
  }
}

// The integrand of `t` at z (the families of make_multidimensional_reference.py).
double value(const Integral& t, const double* z) {
  double sum = 0.0, product = 1.0;
  for (int64_t i = 0; i < t.ndim; ++i) {
    const double c = t.c[i], d = z[i] - t.w[i];
    if (t.family == "oscillatory") sum += c * z[i];
    if (t.family == "product_peak") product /= 1.0 / (c * c) + d * d;
    if (t.family == "gaussian") sum -= c * c * d * d;
    if (t.family == "continuous") sum -= c * std::abs(d);
    if (t.family == "monomial") product *= std::pow(z[i], c);
    if (t.family == "periodic") sum += c * std::sin(2.0 * std::numbers::pi * d);
  }
  if (t.family == "oscillatory") return std::cos(2.0 * std::numbers::pi * t.w[0] + sum);
  if (t.family == "product_peak" || t.family == "monomial") return product;
  return std::exp(sum);
}

// IUSER(1) counts the calls (points for the batch form); RUSER carries nothing. The integrands of one call are
// g_current.
std::vector<const Integral*> g_current;

double scalar_f(const int64_t*, const double* z, int64_t* iuser, double*) {
  ++iuser[0];
  return value(*g_current[0], z);
}

void vector_f(const int64_t*, const double* z, const int64_t* nfun, double* f, int64_t* iuser, double*) {
  ++iuser[0];
  for (int64_t k = 0; k < *nfun; ++k) f[k] = value(*g_current[k], z);
}

void batch_f(const int64_t* ndim, const double* x, const int64_t* m, double* f, int64_t* iuser, double*) {
  std::vector<double> z(static_cast<size_t>(*ndim));
  for (int64_t j = 0; j < *m; ++j) {
    for (int64_t i = 0; i < *ndim; ++i) z[i] = x[i * *m + j];
    f[j] = value(*g_current[0], z.data());
  }
  iuser[0] += *m;
}

double nan_f(const int64_t*, const double*, int64_t*, double*) { return std::numeric_limits<double>::quiet_NaN(); }

int64_t rule_points(int64_t n) { return (int64_t{1} << n) + 2 * n * n + 2 * n + 1; }
int64_t workspace(int64_t n, int64_t nfun, int64_t maxpts) {
  return (1 + (maxpts - rule_points(n)) / (2 * rule_points(n))) * (2 + 2 * n + 2 * nfun);
}

struct Cubature {
  int64_t ifail = 1, nevals = 0, calls = 0;
  std::vector<double> result, abserr;
};

// d01fcf on t (nfun = 1) or d01eaf on the integrands of `ts` sharing the box of ts[0].
Cubature cubature(const std::vector<const Integral*>& ts, bool vector_form, double epsrel, int64_t maxpts,
                  int64_t minpts = 0, double epsabs = 0.0, std::vector<double> a = {}) {
  const Integral& t = *ts[0];
  if (a.empty()) a = t.a;
  std::vector<double> b = t.b;
  const int64_t n = t.ndim, nfun = static_cast<int64_t>(ts.size()), lw = workspace(n, nfun, maxpts);
  std::vector<double> w(static_cast<size_t>(lw));
  Cubature r;
  r.result.resize(ts.size());
  r.abserr.resize(ts.size());
  int64_t iuser[1] = {0};
  double ruser[1] = {0};
  g_current = ts;
  if (vector_form)
    d01eaf_(vector_f, &n, a.data(), b.data(), &nfun, &minpts, &maxpts, &epsabs, &epsrel, r.result.data(),
            r.abserr.data(), &r.nevals, w.data(), &lw, iuser, ruser, &r.ifail);
  else
    d01fcf_(scalar_f, &n, a.data(), b.data(), &minpts, &maxpts, &epsabs, &epsrel, r.result.data(), r.abserr.data(),
            &r.nevals, w.data(), &lw, iuser, ruser, &r.ifail);
  r.calls = iuser[0];
  return r;
}

// The embedded estimate is the error of the degree-5 rule, which needs about (1/h)^NDIM regions of width h to
// fall: 1e-6 up to 5 dimensions, 1e-4 in 6 and 7, 1e-3 beyond and across kinks (the continuous family).
double requested_relative(const Integral& t) {
  if (t.family == "continuous" || t.ndim > 7) return 1e-3;
  return t.ndim > 5 ? 1e-4 : 1e-6;
}

// Every test integral by d01fcf: the requested accuracy met within the estimate, the estimate covering the true
// error, one call per evaluation counted; the box reversed in its first coordinate negates the result with the
// same evaluations (the points in another order). A polynomial of total degree 7 is integrated exactly by one application of the rule.
TEST(Multidimensional, CubatureAgainstProducts) {
  load();
  ASSERT_EQ(g_integrals.size(), 30u);
  for (const Integral& t : g_integrals) {
    SCOPED_TRACE(t.family + " in " + std::to_string(t.ndim) + " dimensions");
    if (t.family == "monomial") {
      const Cubature one = cubature({&t}, false, 0.0, rule_points(t.ndim), 0, 1.0);
      EXPECT_EQ(one.ifail, 0);
      EXPECT_EQ(one.nevals, rule_points(t.ndim));
      EXPECT_NEAR(one.result[0], t.exact, 1e-14 * (1.0 + std::abs(t.exact)));
      continue;
    }
    if (t.family == "periodic" && t.ndim > 3) continue;  // a full period in each variable: the lattice rules' case
    const double epsrel = requested_relative(t);
    const Cubature r = cubature({&t}, false, epsrel, 2'000'000);
    EXPECT_EQ(r.ifail, 0);
    EXPECT_EQ(r.calls, r.nevals);
    EXPECT_EQ(r.nevals % (2 * rule_points(t.ndim)), rule_points(t.ndim));
    EXPECT_LE(r.abserr[0], epsrel * std::abs(r.result[0]));
    EXPECT_LE(std::abs(r.result[0] - t.exact), r.abserr[0]) << r.result[0] << " vs " << t.exact;

    std::vector<double> reversed_a = t.a;
    reversed_a[0] = t.b[0];
    Integral reversed = t;
    reversed.b[0] = t.a[0];
    const Cubature back = cubature({&reversed}, false, epsrel, 2'000'000, 0, 0.0, reversed_a);
    EXPECT_NEAR(back.result[0], -r.result[0], 1e-13 * std::abs(r.result[0]));
    EXPECT_EQ(back.nevals, r.nevals);
  }
}

// d01eaf: the integrands over the unit cube of each dimension together, one call per point for all of them;
// each meets its own accuracy. MINPTS forces evaluations beyond what the accuracy needs.
TEST(Multidimensional, VectorFormSharesEvaluations) {
  load();
  for (int64_t n : {3, 5, 6}) {
    std::vector<const Integral*> ts;
    for (const Integral& t : g_integrals)
      if (t.ndim == n && t.a == std::vector<double>(n, 0.0) && t.b == std::vector<double>(n, 1.0)) ts.push_back(&t);
    SCOPED_TRACE(std::to_string(ts.size()) + " integrands in " + std::to_string(n) + " dimensions");
    ASSERT_GE(ts.size(), 2u);
    const Cubature r = cubature(ts, true, 1e-3, 2'000'000);
    EXPECT_EQ(r.ifail, 0);
    EXPECT_EQ(r.calls, r.nevals);
    for (size_t k = 0; k < ts.size(); ++k) {
      EXPECT_LE(r.abserr[k], 1e-3 * std::abs(r.result[k])) << ts[k]->family;
      EXPECT_LE(std::abs(r.result[k] - ts[k]->exact), r.abserr[k]) << ts[k]->family;
    }
    const int64_t minpts = r.nevals + 10 * rule_points(n);
    const Cubature more = cubature(ts, true, 1e-3, 2'000'000, minpts);
    EXPECT_GE(more.nevals, minpts);
    EXPECT_EQ(more.ifail, 0);
  }
}

std::vector<int64_t> initialised_state() {
  const int64_t genid = 1, subid = 1, seed[1] = {1762543}, lseed = 1;
  int64_t lstate = 0, ifail = 1;
  std::vector<int64_t> state(1);
  g05kff_(&genid, &subid, seed, &lseed, state.data(), &lstate, &ifail);  // the length query
  state.assign(static_cast<size_t>(lstate), 0);
  ifail = 0;
  g05kff_(&genid, &subid, seed, &lseed, state.data(), &lstate, &ifail);
  return state;
}

struct Lattice {
  int64_t ifail = 1, calls = 0;
  double result = 0, abserr = 0;
  std::vector<int64_t> state;
};

Lattice lattice(const Integral& t, bool batch, int64_t npts, std::vector<int64_t> vk, int64_t nrand,
                int64_t itrans) {
  Lattice r;
  r.state = initialised_state();
  int64_t iuser[1] = {0};
  double ruser[1] = {0};
  g_current = {&t};
  if (batch)
    d01gdf_(batch_f, &t.ndim, t.a.data(), t.b.data(), &npts, vk.data(), &nrand, &itrans, &r.result, &r.abserr,
            r.state.data(), iuser, ruser, &r.ifail);
  else
    d01gcf_(scalar_f, &t.ndim, t.a.data(), t.b.data(), &npts, vk.data(), &nrand, &itrans, &r.result, &r.abserr,
            r.state.data(), iuser, ruser, &r.ifail);
  r.calls = iuser[0];
  return r;
}

std::vector<int64_t> korobov(int64_t n, int64_t a, int64_t ndim) {
  std::vector<int64_t> z(static_cast<size_t>(ndim));
  __int128 power = 1;
  for (int64_t& zi : z) zi = static_cast<int64_t>(power), power = power * a % n;
  return z;
}

// The coefficient generators against the independent search; then the lattice rules with those coefficients on
// the test integrals (periodic ones as they are, the others under each periodising transformation): within six
// standard errors of the exact value, the batch form identical to the scalar form, NRAND * NPTS evaluations, and
// STATE moved on exactly as by g05saf drawing NRAND * NDIM uniforms.
TEST(Multidimensional, LatticeRulesAndCoefficients) {
  load();
  ASSERT_EQ(g_coefficients.size(), 11u);
  for (const Coefficient& k : g_coefficients) {
    std::vector<int64_t> vk(static_cast<size_t>(k.ndim));
    int64_t ifail = 1, n = k.p;
    if (k.prime)
      d01gyf_(&k.ndim, &k.p, vk.data(), &ifail);
    else
      d01gzf_(&k.ndim, &k.p, &k.q, &n, vk.data(), &ifail);
    EXPECT_EQ(ifail, 0);
    EXPECT_EQ(n, k.prime ? k.p : k.p * k.q);
    EXPECT_EQ(vk, korobov(n, k.a, k.ndim)) << k.p << " " << k.q << " " << k.ndim;
  }

  for (const Integral& t : g_integrals) {
    if (t.family == "monomial" || t.family == "continuous" || t.ndim > 8) continue;
    std::vector<int64_t> vk(static_cast<size_t>(t.ndim));
    int64_t ifail = 1, npts = 0;
    const int64_t p = 89, q = 113;  // 10057 points
    d01gzf_(&t.ndim, &p, &q, &npts, vk.data(), &ifail);
    ASSERT_EQ(ifail, 0);
    for (int64_t itrans : {0, 1, 2, 3}) {
      if ((t.family == "periodic") != (itrans == 0)) continue;
      SCOPED_TRACE(t.family + " in " + std::to_string(t.ndim) + " dimensions, ITRANS " + std::to_string(itrans));
      const int64_t nrand = 8;
      const Lattice r = lattice(t, false, npts, vk, nrand, itrans);
      EXPECT_EQ(r.ifail, 0);
      EXPECT_EQ(r.calls, nrand * npts);
      EXPECT_LE(std::abs(r.result - t.exact), 6.0 * r.abserr + 1e-14 * std::abs(t.exact)) << r.result;
      EXPECT_LE(r.abserr, 1e-2 * std::abs(t.exact));
      const Lattice v = lattice(t, true, npts, vk, nrand, itrans);
      EXPECT_EQ(v.result, r.result);
      EXPECT_EQ(v.abserr, r.abserr);
      EXPECT_EQ(v.calls, r.calls);

      std::vector<int64_t> drawn = initialised_state();
      std::vector<double> u(static_cast<size_t>(nrand * t.ndim));
      const int64_t count = nrand * t.ndim;
      int64_t g05 = 0;
      g05saf_(&count, drawn.data(), u.data(), &g05);
      EXPECT_EQ(r.state, drawn);
    }
  }
}

void nan_vector(const int64_t*, const double*, const int64_t* nfun, double* f, int64_t*, double*) {
  std::fill(f, f + *nfun, std::numeric_limits<double>::quiet_NaN());
}
void nan_batch(const int64_t*, const double*, const int64_t* m, double* f, int64_t*, double*) {
  std::fill(f, f + *m, std::numeric_limits<double>::quiet_NaN());
}

// The arguments of a failing call, changed one at a time from a valid call.
struct Args {
  int64_t ndim = 2, nfun = 2, minpts = 0, maxpts = 99, lw = 30, npts = 7, nrand = 2, itrans = 0;
  std::vector<double> a = {0, 0}, b = {1, 1};
  std::vector<int64_t> vk = {1, 3};
  bool nan = false, corrupt = false;
};

using Change = std::function<void(Args&)>;

// Every message of the six routines, to the character, and the IFAIL of each failure.
TEST(Multidimensional, EveryMessage) {
  load();
  const Integral& gauss = g_integrals[9];
  ASSERT_EQ(gauss.family + std::to_string(gauss.ndim), "gaussian2");
  const std::vector<const Integral*> twice = {&gauss, &gauss};
  const std::vector<double> box_a = {0, 0}, box_b = {1, 1};

  auto call = [&](const std::string& routine, Change change) {
    return [=](int64_t* fail) {
      Args x;
      x.nfun = routine == "D01EAF" ? 2 : 1;
      x.lw = routine == "D01EAF" ? 30 : 24;
      change(x);
      int64_t iuser[1] = {0}, nevals = 0, npts = 0;
      double ruser[1] = {0}, epsabs = 0, epsrel = 1e-10, result[2], abserr[2];
      std::vector<double> w(static_cast<size_t>(std::max<int64_t>(x.lw, 1)));
      std::vector<int64_t> state = initialised_state(), vk = x.vk;
      if (x.corrupt) state[1] += 1;
      g_current = twice;
      if (routine == "D01EAF")
        d01eaf_(x.nan ? nan_vector : vector_f, &x.ndim, x.a.data(), x.b.data(), &x.nfun, &x.minpts, &x.maxpts,
                &epsabs, &epsrel, result, abserr, &nevals, w.data(), &x.lw, iuser, ruser, fail);
      if (routine == "D01FCF")
        d01fcf_(x.nan ? nan_f : scalar_f, &x.ndim, x.a.data(), x.b.data(), &x.minpts, &x.maxpts, &epsabs, &epsrel,
                result, abserr, &nevals, w.data(), &x.lw, iuser, ruser, fail);
      if (routine == "D01GCF")
        d01gcf_(x.nan ? nan_f : scalar_f, &x.ndim, x.a.data(), x.b.data(), &x.npts, vk.data(), &x.nrand, &x.itrans,
                result, abserr, state.data(), iuser, ruser, fail);
      if (routine == "D01GDF")
        d01gdf_(x.nan ? nan_batch : batch_f, &x.ndim, x.a.data(), x.b.data(), &x.npts, vk.data(), &x.nrand,
                &x.itrans, result, abserr, state.data(), iuser, ruser, fail);
      if (routine == "D01GYF") d01gyf_(&x.ndim, &x.npts, vk.data(), fail);
      if (routine == "D01GZF") d01gzf_(&x.ndim, &x.nfun, &x.npts, &npts, vk.data(), fail);
    };
  };
  struct Failure {
    std::string what;
    int64_t ifail;
    std::vector<std::string> records;
    Change change;
  };
  auto expect = [&](const std::string& routine, const std::vector<Failure>& failures) {
    std::vector<vek::testing::ReportCase> cases;
    for (const Failure& f : failures) cases.push_back({f.what, f.ifail, f.records, call(routine, f.change)});
    vek::testing::expect_reports(routine, cases);
  };

  // IFAIL 1 quotes the error estimate that a run with the same arguments ends with.
  Integral unit = gauss;
  unit.a = box_a, unit.b = box_b;
  const Cubature short_run = cubature({&unit}, false, 1e-10, 99);
  ASSERT_EQ(short_run.nevals, 85);
  const std::vector<Failure> cubature_failures = {
      {"NDIM", 6, {"** On entry, NDIM = 31", "** Constraint: 2 <= NDIM <= 30."}, [](Args& x) { x.ndim = 31; }},
      {"MINPTS", 6, {"** On entry, MINPTS = -1", "** Constraint: MINPTS >= 0."}, [](Args& x) { x.minpts = -1; }},
      {"MAXPTS", 6, {"** On entry, MAXPTS = 16 and MINPTS = 0", "** Constraint: MAXPTS >= max(MINPTS, 17)."},
       [](Args& x) { x.maxpts = 16; }},
      {"MINPTS > MAXPTS", 6, {"** On entry, MAXPTS = 99 and MINPTS = 100", "** Constraint: MAXPTS >= max(MINPTS, 17)."},
       [](Args& x) { x.minpts = 100; }},
      {"LW", 6, {"** On entry, LW = 19 and MAXPTS = 99."}, [](Args& x) { x.lw = 19; }},
      {"A", 6, {"** On entry, a limit of integration is not finite:", "** A(2) = NaN and B(I) = 1"},
       [](Args& x) { x.a[1] = NAN; }},
      {"MAXPTS reached", 1,
       {"** MAXPTS = 99 evaluations did not reach the requested accuracy:",
        "** the error estimate of integral 1 is " + vek::text::real_text(short_run.abserr[0]) + "."},
       [](Args&) {}},
      {"not finite", 2, {"** A value of the integrand is not finite (NaN or infinity)."}, [](Args& x) { x.nan = true; }},
  };
  for (const std::string routine : {"D01EAF", "D01FCF"}) {
    std::vector<Failure> failures = cubature_failures;
    failures[4].records.push_back(routine == "D01EAF" ? "** Minimum possible dimension: 30"
                                                      : "** Minimum possible dimension: 24");
    if (routine == "D01EAF")
      failures.push_back({"NFUN", 6, {"** On entry, NFUN = 0", "** Constraint: NFUN >= 1."}, [](Args& x) { x.nfun = 0; }});
    expect(routine, failures);
  }
  for (const std::string routine : {"D01GCF", "D01GDF"})
    expect(routine,
           {{"NDIM", 6, {"** On entry, NDIM = 0", "** Constraint: NDIM >= 1."}, [](Args& x) { x.ndim = 0; }},
            {"NPTS", 6, {"** On entry, NPTS = 1", "** Constraint: NPTS >= 2."}, [](Args& x) { x.npts = 1; }},
            {"NRAND", 6, {"** On entry, NRAND = 1", "** Constraint: NRAND >= 2."}, [](Args& x) { x.nrand = 1; }},
            {"ITRANS", 6, {"** On entry, ITRANS = 4", "** Constraint: ITRANS = 0, 1, 2 or 3."},
             [](Args& x) { x.itrans = 4; }},
            {"VK", 6, {"** On entry, VK(2) = 7", "** Constraint: 1 <= VK(i) < NPTS = 7."}, [](Args& x) { x.vk[1] = 7; }},
            {"B", 6, {"** On entry, a limit of integration is not finite:", "** A(1) = 0 and B(I) = NaN"},
             [](Args& x) { x.b[0] = NAN; }},
            {"STATE", 6, {"** On entry, STATE vector has been corrupted or not initialized."},
             [](Args& x) { x.corrupt = true; }},
            {"not finite", 2, {"** A value of the integrand is not finite (NaN or infinity)."},
             [](Args& x) { x.nan = true; }}});
  expect("D01GYF", {{"NDIM", 1, {"** On entry, NDIM = 0", "** Constraint: NDIM >= 1."}, [](Args& x) { x.ndim = 0; }},
                    {"NPTS", 2, {"** On entry, NPTS = 9", "** Constraint: NPTS must be a prime number."},
                     [](Args& x) { x.npts = 9; }}});
  // d01gzf: NP1 is NFUN and NP2 is NPTS of Args.
  expect("D01GZF",
         {{"NDIM", 1, {"** On entry, NDIM = 0", "** Constraint: NDIM >= 1."}, [](Args& x) { x.ndim = 0; }},
          {"NP1", 2, {"** On entry, NP1 = 4", "** Constraint: NP1 must be a prime number."}, [](Args& x) { x.nfun = 4; }},
          {"NP2", 3, {"** On entry, NP2 = 5 and NP1 = 5", "** Constraint: NP2 must be a prime number other than NP1."},
           [](Args& x) { x.nfun = 5, x.npts = 5; }},
          {"NP1*NP2", 4, {"** On entry, NP1 = 2147483647 and NP2 = 4294967311", "** Constraint: NP1*NP2 <= 2**53."},
           [](Args& x) { x.nfun = 2147483647, x.npts = 4294967311; }}});
}

}  // namespace
