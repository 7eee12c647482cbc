#include "optim/e04uc_options.h"

namespace vek::optim::e04uc {

Store global_store() {
  static SaveAreas areas = [] {
    SaveAreas a;
    initialise(Areas(a));
    return a;
  }();
  return Store(areas);
}

void after_option_call(Store s) {
  if (s.major_print_level() == kMarker) s.major_print_level() = 10;
}

SaveAreas start_of_solve(Store stored, const Inputs& in, const RecordSink& sink) {
  SaveAreas copy = stored.copy();
  const Store s(copy);
  if (s.reset_pending()) {
    s.reset();
    s.set_reset_pending(false);
  }
  apply_defaults(s, in);
  if (s.major_print_level() > 0) list_parameters(s, in, sink);
  return copy;
}

}  // namespace vek::optim::e04uc
