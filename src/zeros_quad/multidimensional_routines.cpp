// Bodies of the multidimensional integrators (d01.decl): the adaptive Genz-Malik cubature for a vector of
// integrands (d01eaf) and for one (d01fcf), the randomly shifted Korobov lattice rules with a function of one
// point (d01gcf) or of a batch of points (d01gdf), and the optimal Korobov coefficients for a prime number of
// points (d01gyf) and for a product of two primes (d01gzf). The declared checks of the scalars have passed.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <new>
#include <span>
#include <vector>

#include "layers/d01.h"
#include "random/generator.h"
#include "zeros_quad/cubature.h"
#include "zeros_quad/lattice.h"

namespace vek::routines {
namespace {

int64_t saturated(__int128 v) { return static_cast<int64_t>(std::min<__int128>(v, INT64_MAX)); }

// The cubature's remaining checks in order (MAXPTS, LW, the limits), then the integration and its outcome.
template <class R>
void cubature(frame::ErrorBuffer& err, const zeros_quad::Integrands& f, int64_t ndim, const double* a,
              const double* b, int64_t nfun, int64_t minpts, int64_t maxpts, double epsabs, double epsrel,
              double* result, double* abserr, int64_t* nevals, double* w, int64_t lw) {
  const int64_t rule = zeros_quad::genz_malik_points(ndim);
  if (maxpts < std::max(minpts, rule)) return err.fail(R::maxpts_small, maxpts, minpts, rule);
  const __int128 needed = static_cast<__int128>(zeros_quad::cubature_regions(ndim, maxpts)) *
                          zeros_quad::cubature_record(ndim, nfun);
  if (lw < needed) return err.fail(R::lw_small, lw, maxpts, saturated(needed));
  for (int64_t i = 0; i < ndim; ++i)
    if (!std::isfinite(a[i]) || !std::isfinite(b[i])) return err.fail(R::limit_not_finite, i + 1, a[i], b[i]);

  const zeros_quad::CubatureProblem problem{ndim, nfun, a, b, minpts, maxpts, epsabs, epsrel};
  const auto out = zeros_quad::integrate_cubature(f, problem, {result, static_cast<size_t>(nfun)},
                                                  {abserr, static_cast<size_t>(nfun)}, w);
  *nevals = out.evaluations;
  if (out.end == zeros_quad::CubatureEnd::maxpts_reached)
    return err.fail(R::maxpts_reached, maxpts, out.worst + 1, abserr[out.worst]);
  if (out.end == zeros_quad::CubatureEnd::not_finite) return err.fail(R::not_finite);
}

// The lattice rules' remaining checks in order (VK, the limits, STATE), the shifts drawn, the integration.
template <class R>
void lattice(frame::ErrorBuffer& err, const zeros_quad::LatticeBatchFn& f, int64_t ndim, const double* a,
             const double* b, int64_t npts, const int64_t* vk, int64_t nrand, int64_t itrans, double* result,
             double* abserr, int64_t* state) {
  for (int64_t i = 0; i < ndim; ++i)
    if (vk[i] < 1 || vk[i] >= npts) return err.fail(R::vk_range, i + 1, vk[i], npts);
  for (int64_t i = 0; i < ndim; ++i)
    if (!std::isfinite(a[i]) || !std::isfinite(b[i])) return err.fail(R::limit_not_finite, i + 1, a[i], b[i]);
  random::StateStatus status;
  const auto stream = random::Stream::open(state, status);
  if (!stream) return err.fail(R::state_bad);
  // NRAND shifts of NDIM uniforms each, drawn in one call: the stream moves on as by g05saf with N = NRAND*NDIM.
  const __int128 uniforms = static_cast<__int128>(nrand) * ndim;
  if (uniforms > static_cast<__int128>(std::vector<double>().max_size())) throw std::bad_alloc();
  std::vector<double> shifts(static_cast<size_t>(uniforms));
  stream->uniforms(shifts);

  const zeros_quad::LatticeProblem problem{ndim, npts, vk, a, b, static_cast<zeros_quad::Periodising>(itrans)};
  const auto out = zeros_quad::integrate_lattice(f, problem, shifts);
  *result = out.result;
  *abserr = out.abserr;
  if (!out.finite) return err.fail(R::not_finite);
}

}  // namespace

void d01eaf::run(frame::ErrorBuffer& err, vek_d01eaf_funsub_adapter funsub_adapter, vek_d01eaf_funsub_fn funsub,
                 const int64_t* ndim, const double* a, const double* b, const int64_t* nfun, const int64_t* minpts,
                 const int64_t* maxpts, const double* epsabs, const double* epsrel, double* result, double* abserr,
                 int64_t* nevals, double* w, const int64_t* lw, int64_t* iuser, double* ruser) {
  auto f = [&](const double* z, double* values) { funsub_adapter(funsub, ndim, z, nfun, values, iuser, ruser); };
  cubature<d01eaf>(err, f, *ndim, a, b, *nfun, *minpts, *maxpts, *epsabs, *epsrel, result, abserr, nevals, w, *lw);
}

void d01fcf::run(frame::ErrorBuffer& err, vek_d01fcf_f_adapter f_adapter, vek_d01fcf_f_fn f, const int64_t* ndim,
                 const double* a, const double* b, const int64_t* minpts, const int64_t* maxpts, const double* epsabs,
                 const double* epsrel, double* result, double* abserr, int64_t* nevals, double* w, const int64_t* lw,
                 int64_t* iuser, double* ruser) {
  auto one = [&](const double* z, double* values) { values[0] = f_adapter(f, ndim, z, iuser, ruser); };
  cubature<d01fcf>(err, one, *ndim, a, b, 1, *minpts, *maxpts, *epsabs, *epsrel, result, abserr, nevals, w, *lw);
}

void d01gcf::run(frame::ErrorBuffer& err, vek_d01gcf_f_adapter f_adapter, vek_d01gcf_f_fn f, const int64_t* ndim,
                 const double* a, const double* b, const int64_t* npts, const int64_t* vk, const int64_t* nrand,
                 const int64_t* itrans, double* result, double* abserr, int64_t* state, int64_t* iuser,
                 double* ruser) {
  std::vector<double> point(static_cast<size_t>(*ndim));
  auto each = [&](int64_t m, const double* x, double* values) {
    for (int64_t j = 0; j < m; ++j) {
      for (int64_t i = 0; i < *ndim; ++i) point[i] = x[i * m + j];
      values[j] = f_adapter(f, ndim, point.data(), iuser, ruser);
    }
  };
  lattice<d01gcf>(err, each, *ndim, a, b, *npts, vk, *nrand, *itrans, result, abserr, state);
}

void d01gdf::run(frame::ErrorBuffer& err, vek_d01gdf_vecfun_adapter vecfun_adapter, vek_d01gdf_vecfun_fn vecfun,
                 const int64_t* ndim, const double* a, const double* b, const int64_t* npts, const int64_t* vk,
                 const int64_t* nrand, const int64_t* itrans, double* result, double* abserr, int64_t* state,
                 int64_t* iuser, double* ruser) {
  auto batch = [&](int64_t m, const double* x, double* values) {
    vecfun_adapter(vecfun, ndim, x, &m, values, iuser, ruser);
  };
  lattice<d01gdf>(err, batch, *ndim, a, b, *npts, vk, *nrand, *itrans, result, abserr, state);
}

void d01gyf::run(frame::ErrorBuffer& err, const int64_t* ndim, const int64_t* npts, int64_t* vk) {
  if (!zeros_quad::is_prime(*npts)) return err.fail(npts_prime, *npts);
  zeros_quad::korobov_vector(*npts, zeros_quad::optimal_korobov_prime(*npts, *ndim),
                             {vk, static_cast<size_t>(*ndim)});
}

void d01gzf::run(frame::ErrorBuffer& err, const int64_t* ndim, const int64_t* np1, const int64_t* np2, int64_t* npts,
                 int64_t* vk) {
  if (!zeros_quad::is_prime(*np1)) return err.fail(np1_prime, *np1);
  if (!zeros_quad::is_prime(*np2) || *np2 == *np1) return err.fail(np2_prime, *np2, *np1);
  if (static_cast<__int128>(*np1) * *np2 > (int64_t{1} << 53)) return err.fail(npts_large, *np1, *np2);
  *npts = *np1 * *np2;
  zeros_quad::korobov_vector(*npts, zeros_quad::optimal_korobov_product(*np1, *np2, *ndim),
                             {vk, static_cast<size_t>(*ndim)});
}

}  // namespace vek::routines
