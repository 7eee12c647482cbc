// Workers of the E04UCF option routines: E04UEF (one option line) and E04UDF (an options file), both acting
// on the library-global store and printing on the advisory unit.
#include <new>
#include <string>

#include "frame/text.h"
#include "frame/units.h"
#include "layers/e04.h"
#include "optim/e04uc_options.h"
#include "optim/option_line.h"
#include "optim/options_file.h"

namespace {

// The store's printing goes to the advisory unit in force at the call.
vek::optim::RecordSink advisory_sink(vek::optim::e04uc::Store store) {
  store.advisory_unit() = vek::units::advisory_unit();
  const int64_t unit = store.advisory_unit();
  return [unit](std::string_view record) { vek::units::write_record(unit, record); };
}

}  // namespace

extern "C" {

// Without IFAIL there is no -999: when memory runs out the line is not applied (a store update it made
// before stays) and, with the echo on, one record from static text says so.
void e04uefn_(const char* str, int64_t str_len) {
  const vek::optim::e04uc::Store store = vek::optim::e04uc::global_store();
  try {
    vek::optim::set_option(vek::optim::e04uc::family, store, vek::text::view(str, str_len), "E04UEF", true,
                           advisory_sink(store));
  } catch (const std::bad_alloc&) {
    if (store.listing()) vek::units::write_record(store.advisory_unit(), vek::optim::kLineNotApplied);
  }
  vek::optim::e04uc::after_option_call(store);
}

void e04udfn_(const int64_t* ioptns, int64_t* inform) {
  const vek::optim::e04uc::Store store = vek::optim::e04uc::global_store();
  const int64_t unit = *ioptns;
  const vek::optim::RecordSource source = [unit](std::string& record) { return vek::units::read_record(unit, record); };
  *inform = vek::optim::read_options_file(vek::optim::e04uc::family, store, unit, true, source, advisory_sink(store));
  vek::optim::e04uc::after_option_call(store);
}

}  // extern "C"
