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
  return start_of_family(stored, in, &Store::major_print_level, sink);
}

}  // namespace vek::optim::e04uc
