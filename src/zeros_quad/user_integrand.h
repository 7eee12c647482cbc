// The user's integrand of the D01 routines as the rules call it. F(X, IUSER, RUSER) is called point by point;
// a batch form F(X, FV, N, IUSER, RUSER) with all abscissae of a subinterval at once. Through the adapter the
// entry passed, except that the library's own adapter (which only calls F) is skipped: F is then called
// directly, a call less at every abscissa.
#pragma once

#include <cstdint>
#include <type_traits>

namespace vek::zeros_quad {

// body(integrand), the integrand calling f through f_adapter (unless it is own_adapter) with iuser and ruser.
template <class Adapter, class Function, class Body>
decltype(auto) with_user_integrand(Adapter own_adapter, Adapter f_adapter, Function f, int64_t* iuser, double* ruser,
                                   Body&& body) {
  if constexpr (std::is_invocable_v<Function, const double*, int64_t*, double*>) {
    if (f_adapter == own_adapter) {
      auto integrand = [=](double x) { return f(&x, iuser, ruser); };
      return body(integrand);
    }
    auto integrand = [=](double x) { return f_adapter(f, &x, iuser, ruser); };
    return body(integrand);
  } else {
    if (f_adapter == own_adapter) {
      auto integrand = [=](const double* x, double* fv, int64_t n) { f(x, fv, &n, iuser, ruser); };
      return body(integrand);
    }
    auto integrand = [=](const double* x, double* fv, int64_t n) { f_adapter(f, x, fv, &n, iuser, ruser); };
    return body(integrand);
  }
}

}  // namespace vek::zeros_quad
