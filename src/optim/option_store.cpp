#include "optim/option_store.h"

#include <algorithm>

#include "frame/units.h"

namespace vek::optim {

void Areas::reset() const {
  std::fill_n(iwsav_, 2 * kBlockLength, kMarker);
  std::fill_n(rwsav_, 2 * kBlockLength, kRealMarker);
}

SaveAreas Areas::copy() const {
  SaveAreas a;
  std::copy_n(lwsav_, kLwsavLength, a.lwsav.begin());
  std::copy_n(iwsav_, kIwsavLength, a.iwsav.begin());
  std::copy_n(rwsav_, kRwsavLength, a.rwsav.begin());
  return a;
}

void initialise(Areas a) {
  a.reset();
  a.set_first_call(true);
  a.set_reset_pending(true);  // its initial state; the first line parsed, or the solver, clears it
  a.set_listing(true);
  a.advisory_unit() = units::advisory_unit();
}

SaveAreas initialised_areas() {
  SaveAreas a;
  initialise(Areas(a));
  return a;
}

SaveAreas copy_for_start(Areas stored) {
  SaveAreas copy = stored.copy();
  const Areas s(copy);
  if (s.reset_pending()) {
    s.reset();
    s.set_reset_pending(false);
  }
  return copy;
}

}  // namespace vek::optim
