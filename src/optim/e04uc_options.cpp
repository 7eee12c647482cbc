#include "optim/e04uc_options.h"

namespace vek::optim::e04uc {

Store global_store() {
  static SaveAreas areas = initialised_areas();
  return Store(areas);
}

void after_option_call(Store s) {
  if (s.major_print_level() == kMarker) s.major_print_level() = 10;
}

SaveAreas start_of_solve(Store stored, const Inputs& in, const RecordSink& sink) {
  SaveAreas copy = copy_for_start(stored);
  const Store s(copy);
  apply_defaults(s, in);
  if (s.major_print_level() > 0) list_parameters(s, in, sink);
  return copy;
}

}  // namespace vek::optim::e04uc
