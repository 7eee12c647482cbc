#include "optim/e04dg_options.h"

namespace vek::optim::e04dg {

Store global_store() {
  static SaveAreas areas = initialised_areas();
  return Store(areas);
}

SaveAreas start_of_solve(Store stored, const Inputs& in, const RecordSink& sink) {
  SaveAreas copy = copy_for_start(stored);
  const Store s(copy);
  apply_defaults(s, in);
  if (s.print_level() > 0) list_parameters(s, in, sink);
  return copy;
}

}  // namespace vek::optim::e04dg
