// Workers of the option routines: E04UEF and E04DKF (one option line), E04UDF and E04DJF (an options file),
// each acting on its family's library-global store and printing on the advisory unit.
#include <new>
#include <string>

#include "frame/text.h"
#include "frame/units.h"
#include "layers/e04.h"
#include "optim/e04dg_options.h"
#include "optim/e04uc_options.h"
#include "optim/option_line.h"
#include "optim/options_file.h"

namespace {

namespace o = vek::optim;

// The store's printing goes to the advisory unit in force at the call.
o::RecordSink advisory_sink(o::Areas store) {
  store.advisory_unit() = vek::units::advisory_unit();
  const int64_t unit = store.advisory_unit();
  return [unit](std::string_view record) { vek::units::write_record(unit, record); };
}

// Without IFAIL there is no -999: when memory runs out the line is not applied (a store update it made
// before stays) and, with the echo on, one record from static text says so.
void set_line(const o::Family& family, o::Areas store, const char* str, int64_t str_len, std::string_view routine) {
  try {
    o::set_option(family, store, vek::text::view(str, str_len), routine, true, advisory_sink(store));
  } catch (const std::bad_alloc&) {
    if (store.listing()) vek::units::write_record(store.advisory_unit(), o::kLineNotApplied);
  }
}

int64_t read_file(const o::Family& family, o::Areas store, int64_t unit) {
  const o::RecordSource source = [unit](std::string& record) { return vek::units::read_record(unit, record); };
  return o::read_options_file(family, store, unit, true, source, advisory_sink(store));
}

}  // namespace

extern "C" {

void e04uefn_(const char* str, int64_t str_len) {
  const o::e04uc::Store store = o::e04uc::global_store();
  set_line(o::e04uc::family, store, str, str_len, "E04UEF");
  o::e04uc::after_option_call(store);
}

void e04udfn_(const int64_t* ioptns, int64_t* inform) {
  const o::e04uc::Store store = o::e04uc::global_store();
  *inform = read_file(o::e04uc::family, store, *ioptns);
  o::e04uc::after_option_call(store);
}

void e04dkfn_(const char* string, int64_t string_len) {
  set_line(o::e04dg::family, o::e04dg::global_store(), string, string_len, "E04DKF");
}

void e04djfn_(const int64_t* ioptns, int64_t* inform) {
  *inform = read_file(o::e04dg::family, o::e04dg::global_store(), *ioptns);
}

}  // extern "C"
