// The options-file reader of the E04UCF family: the input is the file, one record per line. Read from
// memory, and through E04UDF from the same file opened on a unit, it must give one of the documented INFORM
// codes, the same from both.
#include <fuzzer/FuzzedDataProvider.h>

#include <cstdint>
#include <string>
#include <vector>

#include "files.h"
#include "frame/units.h"
#include "optim/e04uc_options.h"
#include "optim/options_file.h"
#include "require.h"
#include "vek.h"

namespace o = vek::optim;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  FuzzedDataProvider in(data, size);
  const bool listing = in.ConsumeBool();
  const bool read_error = in.ConsumeBool();
  const std::string bytes = in.ConsumeRemainingBytesAsString();
  const std::vector<std::string> records = vek_fuzz::lines_of(bytes);

  o::SaveAreas areas;
  const o::e04uc::Store store(areas);
  o::initialise(store);
  size_t next = 0;
  std::vector<std::string> written;
  const int64_t inform = o::read_options_file(
      o::e04uc::family, store, 7, listing,
      [&](std::string& r) {
        if (next == records.size())
          return read_error ? vek::units::ReadStatus::not_readable : vek::units::ReadStatus::end_of_file;
        r = records[next++];
        return vek::units::ReadStatus::ok;
      },
      [&](std::string_view r) { written.emplace_back(r); });
  FUZZ_REQUIRE(inform == 0 || (inform >= 2 && inform <= 5));
  o::e04uc::start_of_solve(store, {3, 1, 1}, [&](std::string_view r) { written.emplace_back(r); });

  // The same file through the entry, on a unit, with the printing suppressed.
  const std::string path = vek_fuzz::scratch_file("vek_fuzz_options", bytes);
  if (path.empty()) return 0;
  const int64_t unit = 18, read_mode = 0, get = 0, set = 1;
  int64_t ifail = 1, old_advisory = 0, quiet = -1, unit_inform = -1;
  x04acf_(&unit, path.data(), &read_mode, &ifail, static_cast<int64_t>(path.size()));
  FUZZ_REQUIRE(ifail == 0);
  x04abf_(&get, &old_advisory);
  x04abf_(&set, &quiet);
  e04udf_(&unit, &unit_inform);
  x04abf_(&set, &old_advisory);
  x04adf_(&unit, &ifail);
  FUZZ_REQUIRE(unit_inform == inform);
  return 0;
}
