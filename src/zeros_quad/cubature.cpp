// The Genz-Malik rule and the globally adaptive cubature driver (cubature.h).
#include "zeros_quad/cubature.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <vector>

namespace vek::zeros_quad {
namespace {

// Generators of the fully symmetric point sets on [-1,1]^n (Genz and Malik 1980): lambda4 = lambda3.
const double kLambda2 = std::sqrt(9.0 / 70.0);
const double kLambda3 = std::sqrt(9.0 / 10.0);
const double kLambda5 = std::sqrt(9.0 / 19.0);
// (lambda2/lambda3)^2: scales the second difference at lambda3 to that at lambda2, so that their difference is a
// fourth difference along the axis.
constexpr double kFourthRatio = 1.0 / 7.0;

// Weights normalised to the mean over the cube: w for the degree-7 rule (w5 for each of the 2^n corners), v
// for the embedded degree-5 rule (no corner points), both from Genz and Malik (1980).
struct Weights {
  double w1, w2, w3, w4, w5, v1, v2, v3, v4;
};

Weights weights(int64_t ndim) {
  const double n = static_cast<double>(ndim);
  return {(12824.0 - 9120.0 * n + 400.0 * n * n) / 19683.0,
          980.0 / 6561.0,
          (1820.0 - 400.0 * n) / 19683.0,
          200.0 / 19683.0,
          6859.0 / 19683.0 / std::ldexp(1.0, static_cast<int>(ndim)),
          (729.0 - 950.0 * n + 50.0 * n * n) / 729.0,
          245.0 / 486.0,
          (265.0 - 100.0 * n) / 1458.0,
          25.0 / 729.0};
}

// Offsets of one region's fields in its record (cubature_record).
struct Record {
  int64_t ndim, nfun;
  static constexpr int64_t priority = 0, axis = 1, centre = 2;
  int64_t half() const { return centre + ndim; }
  int64_t value() const { return centre + 2 * ndim; }
  int64_t error() const { return value() + nfun; }
  int64_t size() const { return cubature_record(ndim, nfun); }
};

// One application of the degree-7 rule and its embedded degree-5 rule to a region record: writes the
// estimates, their differences as error estimates, the largest error as the priority, and the axis to bisect.
class GenzMalikRule {
 public:
  GenzMalikRule(const Integrands& f, Record layout)
      : f_(f), r_(layout), w_(weights(layout.ndim)), z_(layout.ndim), fourth_(layout.ndim), f0_(layout.nfun),
        plus_(layout.nfun), minus_(layout.nfun), second2_(layout.nfun), s2_(layout.nfun), s3_(layout.nfun),
        s4_(layout.nfun), s5_(layout.nfun) {}

  // False when a value or an estimate is not finite (the record then holds them as they came).
  bool apply(double* region) {
    const int64_t n = r_.ndim, nf = r_.nfun;
    const double* c = region + Record::centre;
    const double* h = region + r_.half();
    double volume = 1.0;
    for (int64_t i = 0; i < n; ++i) volume *= 2.0 * h[i];
    std::copy(c, c + n, z_.begin());
    f_(z_.data(), f0_.data());
    for (auto* s : {&s2_, &s3_, &s4_, &s5_}) std::fill(s->begin(), s->end(), 0.0);
    for (int64_t i = 0; i < n; ++i) {
      pair_along(c, h, i, kLambda2, s2_);
      std::copy(plus_.begin(), plus_.end(), second2_.begin());  // f(+) + f(-) at lambda2
      pair_along(c, h, i, kLambda3, s3_);
      double fourth = 0.0;
      for (int64_t k = 0; k < nf; ++k)
        fourth += std::abs(second2_[k] - 2.0 * f0_[k] - kFourthRatio * (plus_[k] - 2.0 * f0_[k]));
      fourth_[i] = fourth;
    }
    for (int64_t i = 0; i < n; ++i)
      for (int64_t j = i + 1; j < n; ++j)
        for (double si : {1.0, -1.0})
          for (double sj : {1.0, -1.0}) {
            z_[i] = c[i] + si * kLambda3 * h[i];
            z_[j] = c[j] + sj * kLambda3 * h[j];
            add_value(s4_);
            z_[i] = c[i], z_[j] = c[j];
          }
    corners(c, h);

    double* value = region + r_.value();
    double* error = region + r_.error();
    double largest = 0.0;
    bool finite = true;
    for (int64_t k = 0; k < nf; ++k) {
      const double base = w_.w1 * f0_[k], seven = base + w_.w2 * s2_[k] + w_.w3 * s3_[k] + w_.w4 * s4_[k] + w_.w5 * s5_[k];
      const double five = w_.v1 * f0_[k] + w_.v2 * s2_[k] + w_.v3 * s3_[k] + w_.v4 * s4_[k];
      value[k] = volume * seven;
      error[k] = std::abs(volume * (seven - five));
      finite = finite && std::isfinite(value[k]) && std::isfinite(error[k]);
      largest = std::max(largest, error[k]);
    }
    region[Record::priority] = largest;
    region[Record::axis] = static_cast<double>(bisection_axis(h));
    return finite;
  }

 private:
  // f at c +- lambda h_i e_i: the sum into plus_, and added to `sum`.
  void pair_along(const double* c, const double* h, int64_t i, double lambda, std::vector<double>& sum) {
    z_[i] = c[i] + lambda * h[i];
    f_(z_.data(), plus_.data());
    z_[i] = c[i] - lambda * h[i];
    f_(z_.data(), minus_.data());
    z_[i] = c[i];
    for (size_t k = 0; k < sum.size(); ++k) {
      plus_[k] += minus_[k];
      sum[k] += plus_[k];
    }
  }

  void add_value(std::vector<double>& sum) {
    f_(z_.data(), plus_.data());
    for (size_t k = 0; k < sum.size(); ++k) sum[k] += plus_[k];
  }

  // The 2^n corners c +- lambda5 h in Gray-code order: one coordinate changes between neighbours.
  void corners(const double* c, const double* h) {
    const int64_t n = r_.ndim;
    for (int64_t i = 0; i < n; ++i) z_[i] = c[i] - kLambda5 * h[i];
    const uint64_t count = uint64_t{1} << n;
    uint64_t plus = 0;  // bit i set: coordinate i at c + lambda5 h
    for (uint64_t m = 0; m < count; ++m) {
      add_value(s5_);
      if (m + 1 == count) break;
      const int i = std::countr_zero(m + 1);
      plus ^= uint64_t{1} << i;
      z_[i] = (plus >> i) & 1 ? c[i] + kLambda5 * h[i] : c[i] - kLambda5 * h[i];
    }
  }

  // The axis of the largest fourth difference; among axes within rounding of it (all of them for an integrand
  // of degree three or less along every axis) the widest, the first on ties.
  int64_t bisection_axis(const double* h) const {
    double sum_f0 = 0.0;
    for (double v : f0_) sum_f0 += std::abs(v);
    const double top = *std::max_element(fourth_.begin(), fourth_.end());
    const double near = top - (1e-5 * top + 100.0 * std::numeric_limits<double>::epsilon() * sum_f0);
    int64_t axis = 0;
    double widest = -1.0;
    for (int64_t i = 0; i < r_.ndim; ++i)
      if (fourth_[i] >= near && std::abs(h[i]) > widest) axis = i, widest = std::abs(h[i]);
    return axis;
  }

  const Integrands& f_;
  Record r_;
  Weights w_;
  std::vector<double> z_, fourth_, f0_, plus_, minus_, second2_, s2_, s3_, s4_, s5_;
};

// Max-heap of region records on their priority, stored contiguously in the caller's workspace.
class RegionHeap {
 public:
  RegionHeap(double* w, int64_t record) : w_(w), rec_(record) {}
  int64_t size() const { return size_; }
  double* at(int64_t i) const { return w_ + i * rec_; }

  void push(const double* region) {
    std::copy(region, region + rec_, at(size_));
    for (int64_t i = size_++; i > 0 && priority(parent(i)) < priority(i); i = parent(i)) swap(i, parent(i));
  }

  void replace_top(const double* region) {
    std::copy(region, region + rec_, at(0));
    for (int64_t i = 0;;) {
      int64_t largest = i;
      for (int64_t c : {2 * i + 1, 2 * i + 2})
        if (c < size_ && priority(c) > priority(largest)) largest = c;
      if (largest == i) return;
      swap(i, largest);
      i = largest;
    }
  }

 private:
  static int64_t parent(int64_t i) { return (i - 1) / 2; }
  double priority(int64_t i) const { return at(i)[Record::priority]; }
  void swap(int64_t i, int64_t j) { std::swap_ranges(at(i), at(i) + rec_, at(j)); }

  double* w_;
  int64_t rec_, size_ = 0;
};

double requested(const CubatureProblem& p, double estimate) {
  return std::max(std::abs(p.epsabs), std::abs(p.epsrel) * std::abs(estimate));
}

bool accurate(const CubatureProblem& p, std::span<const double> result, std::span<const double> abserr) {
  for (size_t k = 0; k < result.size(); ++k)
    if (!(abserr[k] <= requested(p, result[k]))) return false;
  return true;
}

// The totals over every region, afresh (the running totals drift by rounding).
void sum_regions(const RegionHeap& heap, Record r, std::span<double> result, std::span<double> abserr) {
  std::fill(result.begin(), result.end(), 0.0);
  std::fill(abserr.begin(), abserr.end(), 0.0);
  for (int64_t i = 0; i < heap.size(); ++i)
    for (int64_t k = 0; k < r.nfun; ++k) {
      result[k] += heap.at(i)[r.value() + k];
      abserr[k] += heap.at(i)[r.error() + k];
    }
}

// The bisection shows how far the parent's estimate was from the better one of its halves. Where that change
// exceeds the errors the halves claim, the embedded estimates are unreliable there (the two rules agreed by
// accident): the halves' errors are scaled up to add up to the change (a safeguard in the spirit of the error
// estimation of Berntsen, Espelid and Genz 1991), and their priorities follow.
void guard_estimates(Record r, const double* parent, double* first, double* second) {
  first[Record::priority] = second[Record::priority] = 0.0;
  for (int64_t k = 0; k < r.nfun; ++k) {
    double& e1 = first[r.error() + k];
    double& e2 = second[r.error() + k];
    const double change = std::abs(first[r.value() + k] + second[r.value() + k] - parent[r.value() + k]);
    const double claimed = e1 + e2;
    if (change > claimed) {
      if (claimed > 0.0) {
        e1 *= change / claimed;
        e2 *= change / claimed;
      } else {
        e1 = e2 = 0.5 * change;
      }
    }
    first[Record::priority] = std::max(first[Record::priority], e1);
    second[Record::priority] = std::max(second[Record::priority], e2);
  }
}

}  // namespace

int64_t genz_malik_points(int64_t ndim) { return (int64_t{1} << ndim) + 2 * ndim * ndim + 2 * ndim + 1; }

int64_t cubature_regions(int64_t ndim, int64_t maxpts) {
  const int64_t rule = genz_malik_points(ndim);
  return 1 + (maxpts - rule) / (2 * rule);
}

CubatureOutcome integrate_cubature(const Integrands& f, const CubatureProblem& p, std::span<double> result,
                                   std::span<double> abserr, double* w) {
  const Record r{p.ndim, p.nfun};
  const int64_t rule = genz_malik_points(p.ndim);
  GenzMalikRule gm(f, r);
  RegionHeap heap(w, r.size());
  CubatureOutcome out;

  std::vector<double> first(r.size()), second(r.size());
  for (int64_t i = 0; i < p.ndim; ++i) {  // halves first: no overflow for limits near the largest double
    first[Record::centre + i] = 0.5 * p.a[i] + 0.5 * p.b[i];
    first[r.half() + i] = 0.5 * p.b[i] - 0.5 * p.a[i];
  }
  const bool finite = gm.apply(first.data());
  out.evaluations = rule;
  std::copy_n(first.begin() + r.value(), p.nfun, result.begin());
  std::copy_n(first.begin() + r.error(), p.nfun, abserr.begin());
  if (!finite) {
    out.end = CubatureEnd::not_finite;
    return out;
  }
  heap.push(first.data());

  for (;;) {
    bool met = accurate(p, result, abserr);
    if (met) {
      sum_regions(heap, r, result, abserr);
      met = accurate(p, result, abserr);
    }
    if (met && out.evaluations >= p.minpts) break;
    if (p.maxpts - out.evaluations < 2 * rule) {
      if (!met) out.end = CubatureEnd::maxpts_reached;
      break;
    }
    // Bisect the region of largest error along its chosen axis.
    const double* top = heap.at(0);
    std::copy(top, top + r.size(), first.begin());
    std::copy(top, top + r.size(), second.begin());
    const int64_t axis = static_cast<int64_t>(top[Record::axis]);
    const double half = 0.5 * top[r.half() + axis];
    first[r.half() + axis] = second[r.half() + axis] = half;
    first[Record::centre + axis] -= half;
    second[Record::centre + axis] += half;
    bool ok = gm.apply(first.data());
    out.evaluations += rule;
    if (ok) {
      ok = gm.apply(second.data());
      out.evaluations += rule;
    }
    if (!ok) {
      out.end = CubatureEnd::not_finite;
      break;
    }
    guard_estimates(r, top, first.data(), second.data());
    for (int64_t k = 0; k < p.nfun; ++k) {
      result[k] += first[r.value() + k] + second[r.value() + k] - top[r.value() + k];
      abserr[k] += first[r.error() + k] + second[r.error() + k] - top[r.error() + k];
    }
    heap.replace_top(first.data());
    heap.push(second.data());
  }
  sum_regions(heap, r, result, abserr);
  if (out.end == CubatureEnd::maxpts_reached) {
    double furthest = -1.0;
    for (int64_t k = 0; k < p.nfun; ++k) {
      const double excess = abserr[k] / std::max(requested(p, result[k]), std::numeric_limits<double>::min());
      if (excess > furthest) furthest = excess, out.worst = k;
    }
  }
  return out;
}

}  // namespace vek::zeros_quad
