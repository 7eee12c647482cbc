// Accuracy per evaluation of the multidimensional integrators, against plain Monte Carlo of the same number of
// points (GSL's gsl_monte_plain_integrate: no deterministic peer of the Genz-Malik cubature or of lattice rules
// exists there). Per problem (a Gaussian peak in 5 dimensions, an oscillatory integrand in 8, both over the unit
// cube, exact values in closed form):
//   d01fcf with EPSREL = 1e-6 uses "evals" evaluations, with true error "cubature_err";
//   d01gcf with NPTS = P Q <= evals/8 points (two primes near sqrt(evals/8)) and the Korobov coefficients of
//   d01gzf, 8 random shifts and Sidi's periodising transformation (ITRANS = 2), true error "lattice_err";
//   plain Monte Carlo with evals points, true error "mc_err" (and its own standard error "mc_sigma").
// "mc_over_cubature" and "mc_over_lattice" are the ratios of the errors at equal cost; "*_us" the times of one
// integration.
#include <benchmark/benchmark.h>
#include <gsl/gsl_monte_plain.h>
#include <gsl/gsl_rng.h>

#include <chrono>
#include <cmath>
#include <complex>
#include <cstdint>
#include <numbers>
#include <vector>

#include "vek.h"

namespace {

constexpr double kC = 1.5, kW = 0.4;  // the parameter and the centre of every factor

struct Problem {
  const char* name;
  int64_t ndim;
  double (*f)(int64_t n, const double* x);
  double (*exact)(int64_t n);
};

double gaussian(int64_t n, const double* x) {
  double s = 0.0;
  for (int64_t i = 0; i < n; ++i) s += (x[i] - kW) * (x[i] - kW);
  return std::exp(-kC * kC * s);
}

double gaussian_exact(int64_t n) {
  const double factor = std::sqrt(std::numbers::pi) / (2.0 * kC) * (std::erf(kC * (1.0 - kW)) + std::erf(kC * kW));
  return std::pow(factor, static_cast<double>(n));
}

double oscillatory(int64_t n, const double* x) {
  double s = 2.0 * std::numbers::pi * kW;
  for (int64_t i = 0; i < n; ++i) s += kC * x[i];
  return std::cos(s);
}

double oscillatory_exact(int64_t n) {  // Re(e^{2 pi i w} prod (e^{i c} - 1)/(i c))
  const std::complex<double> i(0.0, 1.0);
  std::complex<double> v = std::exp(2.0 * std::numbers::pi * kW * i);
  for (int64_t k = 0; k < n; ++k) v *= (std::exp(kC * i) - 1.0) / (kC * i);
  return v.real();
}

const Problem kProblems[] = {{"gaussian_5d", 5, gaussian, gaussian_exact},
                             {"oscillatory_8d", 8, oscillatory, oscillatory_exact}};

double vek_f(const int64_t* n, const double* x, int64_t*, double* ruser) {
  return kProblems[static_cast<int>(ruser[0])].f(*n, x);
}

double gsl_f(double* x, size_t n, void* params) {
  return static_cast<const Problem*>(params)->f(static_cast<int64_t>(n), x);
}

template <class Run>
double timed_us(Run run) {
  const auto t0 = std::chrono::steady_clock::now();
  run();
  return std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - t0).count();
}

bool is_prime(int64_t n) {
  for (int64_t d = 2; d * d <= n; ++d)
    if (n % d == 0) return false;
  return n >= 2;
}

void BM_Multidimensional(benchmark::State& state) {
  const int64_t which = state.range(0);
  const Problem& p = kProblems[which];
  state.SetLabel(p.name);
  const int64_t n = p.ndim;
  std::vector<double> a(n, 0.0), b(n, 1.0);
  const double exact = p.exact(n);
  double ruser[1] = {static_cast<double>(which)};
  int64_t iuser[1] = {0};

  int64_t evals = 0;
  double cubature = 0, lattice = 0, mc = 0, mc_sigma = 0, cubature_us = 0, lattice_us = 0, mc_us = 0;
  for (auto _ : state) {
    cubature_us = timed_us([&] {
      const int64_t minpts = 0, maxpts = 2'000'000, lw = 1'000'000;
      std::vector<double> w(lw);
      const double epsabs = 0, epsrel = 1e-6;
      double abserr = 0;
      int64_t ifail = 1;
      d01fcf_(vek_f, &n, a.data(), b.data(), &minpts, &maxpts, &epsabs, &epsrel, &cubature, &abserr, &evals,
              w.data(), &lw, iuser, ruser, &ifail);
    });

    // NPTS = P Q <= evals/8 with primes P near Q: d01gzf costs about NPTS^1.5 NDIM, d01gyf NPTS^2 NDIM / 4.
    const int64_t target = evals / 8;
    int64_t np2 = static_cast<int64_t>(std::sqrt(static_cast<double>(target)));
    while (!is_prime(np2)) --np2;
    int64_t np1 = target / np2;
    while (!is_prime(np1) || np1 == np2) --np1;
    std::vector<int64_t> vk(n), seed{20261125}, st(1);
    int64_t ifail = 1, npts = 0, genid = 1, subid = 1, lseed = 1, lstate = 0;
    d01gzf_(&n, &np1, &np2, &npts, vk.data(), &ifail);
    ifail = 1;
    g05kff_(&genid, &subid, seed.data(), &lseed, st.data(), &lstate, &ifail);
    st.assign(lstate, 0);
    ifail = 1;
    g05kff_(&genid, &subid, seed.data(), &lseed, st.data(), &lstate, &ifail);
    lattice_us = timed_us([&] {
      const int64_t nrand = 8, itrans = 2;
      double abserr = 0;
      d01gcf_(vek_f, &n, a.data(), b.data(), &npts, vk.data(), &nrand, &itrans, &lattice, &abserr, st.data(), iuser,
              ruser, &ifail);
    });

    gsl_rng* rng = gsl_rng_alloc(gsl_rng_mt19937);
    gsl_monte_plain_state* s = gsl_monte_plain_alloc(n);
    gsl_monte_function g{gsl_f, static_cast<size_t>(n), const_cast<Problem*>(&p)};
    mc_us = timed_us(
        [&] { gsl_monte_plain_integrate(&g, a.data(), b.data(), n, evals, rng, s, &mc, &mc_sigma); });
    gsl_monte_plain_free(s);
    gsl_rng_free(rng);
    state.SetIterationTime(cubature_us * 1e-6);
  }
  const double cubature_err = std::abs(cubature - exact), lattice_err = std::abs(lattice - exact),
               mc_err = std::abs(mc - exact);
  state.counters["evals"] = static_cast<double>(evals);
  state.counters["cubature_err"] = cubature_err;
  state.counters["lattice_err"] = lattice_err;
  state.counters["mc_err"] = mc_err;
  state.counters["mc_sigma"] = mc_sigma;
  state.counters["mc_over_cubature"] = mc_err / cubature_err;
  state.counters["mc_over_lattice"] = mc_err / lattice_err;
  state.counters["cubature_us"] = cubature_us;
  state.counters["lattice_us"] = lattice_us;
  state.counters["mc_us"] = mc_us;
}

}  // namespace

BENCHMARK(BM_Multidimensional)->DenseRange(0, 1)->ArgName("problem")->UseManualTime()->Iterations(1)->Unit(
    benchmark::kMicrosecond);
BENCHMARK_MAIN();
