// The record reader of the units: a file with any bytes, read record by record through X04BBF with any
// record length, must give back its lines (without the line ends and a carriage return before them), each
// cut or blank-padded to the length, and then end of file; the unit's open and close report nothing. A file
// name from the input under a folder that does not exist exercises the failed open and its message.
#include <fuzzer/FuzzedDataProvider.h>

#include <cstdint>
#include <string>
#include <vector>

#include "files.h"
#include "require.h"
#include "vek.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  FuzzedDataProvider in(data, size);
  const int64_t recin_len = in.ConsumeIntegralInRange<int64_t>(0, 200);
  const std::string name = in.ConsumeRandomLengthString(80);
  const std::string bytes = in.ConsumeRemainingBytesAsString();

  // A name that cannot be opened: IFAIL 2, silently (IFAIL 1 on entry), the unit left without a file.
  const int64_t unit = 17, read_mode = 0;
  const std::string missing = "vek-fuzz-no-such-folder/" + name;
  int64_t ifail = 1;
  x04acf_(&unit, missing.data(), &read_mode, &ifail, static_cast<int64_t>(missing.size()));
  FUZZ_REQUIRE(ifail == 2);

  const std::string path = vek_fuzz::scratch_file("vek_fuzz_record", bytes);
  if (path.empty()) return 0;
  ifail = 1;
  x04acf_(&unit, path.data(), &read_mode, &ifail, static_cast<int64_t>(path.size()));
  FUZZ_REQUIRE(ifail == 0);

  const std::vector<std::string> expected = vek_fuzz::lines_of(bytes);
  std::string recin(static_cast<size_t>(recin_len), '?');
  for (const std::string& line : expected) {
    ifail = 1;
    x04bbf_(&unit, recin.data(), &ifail, recin_len);
    FUZZ_REQUIRE(ifail == 0);
    std::string want = line.substr(0, recin.size());
    want.resize(recin.size(), ' ');
    FUZZ_REQUIRE(recin == want);
  }
  ifail = 1;
  x04bbf_(&unit, recin.data(), &ifail, recin_len);
  FUZZ_REQUIRE(ifail == 1);

  // A negative unit reads nothing and succeeds.
  const int64_t none = -1;
  ifail = 1;
  x04bbf_(&none, recin.data(), &ifail, recin_len);
  FUZZ_REQUIRE(ifail == 0);

  ifail = 1;
  x04adf_(&unit, &ifail);
  FUZZ_REQUIRE(ifail == 0);
  return 0;
}
