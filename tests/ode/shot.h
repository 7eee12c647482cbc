// One call of D02HAF with everything it takes held in a struct, so that each test states only what differs.
#pragma once

#include <cstdint>
#include <vector>

#include "vek.h"

namespace vek::testing {

struct Shot {
  explicit Shot(int64_t size)
      : n(size), u(size), iu(size), v(size), iv(size), w(size > 0 ? size * (10 * size + 14) : 1),
        lw(static_cast<int64_t>(w.size())) {}
  int64_t n;
  std::vector<double> u;
  std::vector<int64_t> iu;
  std::vector<double> v;
  std::vector<int64_t> iv;
  double a = 0.0, b = 1.0, xm = 0.5, tol = 1e-8;
  int64_t maxit = 20, maxcal = 1000000;
  std::vector<int64_t> iuser = {0};
  std::vector<double> ruser = {0.0};
  std::vector<double> w;
  int64_t lw;
  int64_t ifail = 1;  // soft and silent unless a test asks otherwise
};

inline void shoot(Shot& s, vek_d02haf_fcn_fn fcn) {
  d02haf_(s.u.data(), s.iu.data(), s.v.data(), s.iv.data(), &s.n, &s.a, &s.b, &s.xm, &s.tol, fcn, &s.maxit,
          &s.maxcal, s.iuser.data(), s.ruser.data(), s.w.data(), &s.lw, &s.ifail);
}

}  // namespace vek::testing
