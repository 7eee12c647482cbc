// What the user functions of the routine table compute during a call: a plain smooth function (so that the
// baseline call can succeed), or NaN, an infinity, NaN after a few calls, or answers that contradict each
// other (a comparison that holds both ways).
#include <cmath>
#include <limits>

#include "sweep.h"

namespace sweep {
namespace {
int mode = cb_plain;
const std::vector<Len>* scalars = nullptr;
int64_t calls = 0;

double value_for(double x) {
  switch (mode) {
    case cb_nan: return std::numeric_limits<double>::quiet_NaN();
    case cb_inf: return std::numeric_limits<double>::infinity();
    case cb_minus_inf: return -std::numeric_limits<double>::infinity();
    case cb_nan_later: return calls > 3 ? std::numeric_limits<double>::quiet_NaN() : x - 0.7;
    case cb_inconsistent: return calls % 2 ? 1e300 : -1e300;
    default: return x - 0.7;
  }
}
}  // namespace

void set_callback_mode(int m, const std::vector<Len>* s) {
  mode = m;
  scalars = s;
  calls = 0;
}

CallResult callback_act(const CallbackDesc& d, void** params) {
  ++calls;
  double x = 0.5;
  const int64_t* ints[2] = {nullptr, nullptr};
  int nints = 0;
  for (int k = 0; k < d.nparams; ++k) {
    const ArgDesc& p = d.params[k];
    if (p.shape == scalar && p.base == 'R' && p.intent == 'i') x = *static_cast<const double*>(params[k]);
    if (p.shape == scalar && p.base == 'I' && p.intent == 'i' && nints < 2)
      ints[nints++] = static_cast<const int64_t*>(params[k]);
  }
  for (int k = 0; k < d.nparams; ++k) {
    const ArgDesc& p = d.params[k];
    if (p.intent == 'i' || p.base != 'R') continue;
    int64_t n = 1;
    if (p.shape == known_length) {
      if (!scalars) continue;
      const Len len = p.length(scalars->data());
      n = len.v < 0 ? 0 : static_cast<int64_t>(len.v);
    } else if (p.shape != scalar) {
      continue;  // unknown length: the function writes nothing
    }
    double* out = static_cast<double*>(params[k]);
    for (int64_t i = 0; i < n; ++i) out[i] = value_for(x + 0.125 * static_cast<double>(i));
  }
  CallResult r;
  r.real = value_for(x);
  if (d.returns == 'L' || d.returns == 'I') {
    const bool before = nints == 2 ? *ints[0] < *ints[1] : true;
    r.integer = mode == cb_inconsistent ? 1 : (before ? 1 : 0);
  }
  return r;
}

}  // namespace sweep
