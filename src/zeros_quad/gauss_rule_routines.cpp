// Bodies of the Gauss-rule members of D01 (d01.decl): the rule generator d01bcf, the one-dimensional fixed
// rule d01baf, the product rule d01fbf, and the double-exponential integrator d01rgf. F is called through the
// adapter the entry passed, with IUSER and RUSER as given.
#include <cmath>
#include <cstdint>
#include <vector>

#include "layers/d01.h"
#include "zeros_quad/gauss_rules.h"
#include "zeros_quad/product_rule.h"
#include "zeros_quad/tanh_sinh.h"

namespace vek::routines {
namespace {

using zeros_quad::GaussFamily;

// The checks of the family's parameters after the declared ones, in the order of the messages; true when
// they pass.
template <class R>
bool family_accepted(frame::ErrorBuffer& err, int64_t itype, double a, double b, double c, double d) {
  const GaussFamily family = static_cast<GaussFamily>(itype < 0 ? -itype : itype);
  const bool finite = std::isfinite(a) && std::isfinite(b);
  auto exponent_ok = [](double e, double low) { return e > low && e <= 1000.0; };
  switch (family) {
    case GaussFamily::legendre:
    case GaussFamily::jacobi:
      if (!(finite && a < b)) return err.fail(R::ab_interval, itype, a, b), false;
      break;
    case GaussFamily::laguerre:
    case GaussFamily::hermite:
      if (!(finite && b > 0.0)) return err.fail(R::ab_scale, itype, a, b), false;
      break;
    case GaussFamily::rational:
      if (!(finite && a + b > 0.0 && std::isfinite(a + b))) return err.fail(R::ab_rational, itype, a, b), false;
      if (!exponent_ok(c, 1.0)) return err.fail(R::c_rational, itype, c), false;
      break;
  }
  if ((family == GaussFamily::laguerre || family == GaussFamily::jacobi) && !exponent_ok(c, -1.0))
    return err.fail(R::c_range, itype, c), false;
  if (family == GaussFamily::jacobi && !exponent_ok(d, -1.0)) return err.fail(R::d_range, itype, d), false;
  return true;
}

void make_rule(int64_t itype, double a, double b, double c, double d, int64_t n, double* weight, double* abscis) {
  const GaussFamily family = static_cast<GaussFamily>(itype < 0 ? -itype : itype);
  zeros_quad::gauss_rule({family, a, b, c, d}, n, itype < 0, weight, abscis);
}

}  // namespace

void d01bcf::run(frame::ErrorBuffer& err, const int64_t* itype, const double* a, const double* b, const double* c,
                 const double* d, const int64_t* n, double* weight, double* abscis) {
  if (!family_accepted<d01bcf>(err, *itype, *a, *b, *c, *d)) return;
  make_rule(*itype, *a, *b, *c, *d, *n, weight, abscis);
}

void d01baf::run(frame::ErrorBuffer& err, vek_d01baf_f_adapter f_adapter, vek_d01baf_f_fn f, const int64_t* itype,
                 const double* a, const double* b, const double* c, const double* d, const int64_t* n,
                 double* result, int64_t* iuser, double* ruser) {
  if (!family_accepted<d01baf>(err, *itype, *a, *b, *c, *d)) return;
  std::vector<double> weight(static_cast<size_t>(*n)), abscis(static_cast<size_t>(*n));
  make_rule(*itype, *a, *b, *c, *d, *n, weight.data(), abscis.data());
  double sum = 0.0;
  *result = 0.0;
  for (size_t i = 0; i < weight.size(); ++i) {
    const double fx = f_adapter(f, &abscis[i], iuser, ruser);
    if (!std::isfinite(fx)) return err.fail(not_finite, abscis[i]);
    sum += weight[i] * fx;
  }
  *result = sum;
}

void d01fbf::run(frame::ErrorBuffer& err, vek_d01fbf_f_adapter f_adapter, vek_d01fbf_f_fn f, const int64_t* ndim,
                 const int64_t* nptvec, const int64_t* lwa, const double* weight, const double* abscis, double* result,
                 int64_t* iuser, double* ruser) {
  __int128 total = 0;
  double points = 1.0;
  for (int64_t j = 0; j < *ndim; ++j) {
    if (nptvec[j] < 1) return err.fail(nptvec_small, j + 1, nptvec[j]);
    total += nptvec[j];
    points *= static_cast<double>(nptvec[j]);
  }
  if (*lwa < total) return err.fail(lwa_small, *lwa, static_cast<int64_t>(total));
  if (points > 0x1p32) return err.fail(too_many, points);
  const zeros_quad::ProductOutcome out = zeros_quad::product_rule(
      *ndim, nptvec, weight, abscis, [&](const double* x) { return f_adapter(f, ndim, x, iuser, ruser); });
  *result = out.result;
  if (out.bad_point != 0) return err.fail(not_finite, out.bad_point);
}

void d01rgf::run(frame::ErrorBuffer& err, vek_d01rgf_f_adapter f_adapter, vek_d01rgf_f_fn f, const double* a,
                 const double* b, const double* epsabs, const double* epsrel, double* result, double* abserr,
                 int64_t* nevals, int64_t* iuser, double* ruser) {
  // The library's own adapter only calls F: F is called directly, a call less at every abscissa.
  auto direct = [&](double x, double xc) { return f(&x, &xc, iuser, ruser); };
  auto adapted = [&](double x, double xc) { return f_adapter(f, &x, &xc, iuser, ruser); };
  const zeros_quad::EndpointIntegrand integrand =
      f_adapter == d01rgf_fh_ ? zeros_quad::EndpointIntegrand(direct) : zeros_quad::EndpointIntegrand(adapted);
  const zeros_quad::TanhSinhOutcome out = zeros_quad::integrate_tanh_sinh(integrand, *a, *b, *epsabs, *epsrel);
  *result = out.result;
  *abserr = out.abserr;
  *nevals = out.evaluations;
  switch (out.end) {
    case zeros_quad::TanhSinhEnd::converged:
      return;
    case zeros_quad::TanhSinhEnd::level_limit:
      return err.fail(level_limit, static_cast<int64_t>(out.levels), out.abserr);
    case zeros_quad::TanhSinhEnd::round_off:
      return err.fail(round_off, *epsabs, *epsrel);
    case zeros_quad::TanhSinhEnd::not_finite:
      return err.fail(not_finite, out.bad_x, out.bad_xc);
    case zeros_quad::TanhSinhEnd::truncated:
      return err.fail(truncated, out.abserr);
  }
}

}  // namespace vek::routines
