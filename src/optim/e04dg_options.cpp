#include "optim/e04dg_options.h"

namespace vek::optim::e04dg {

Store global_store() {
  static SaveAreas areas = initialised_areas();
  return Store(areas);
}

SaveAreas start_of_solve(Store stored, const Inputs& in, const RecordSink& sink) {
  return start_of_family(stored, in, &Store::print_level, sink);
}

}  // namespace vek::optim::e04dg
