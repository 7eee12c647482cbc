// The record reader of the units: a file with any bytes, read record by record through X04BBF with any
// record length, must give back its lines (without the line ends and a carriage return before them), each
// cut or blank-padded to the length, and then end of file; the unit's open and close report nothing. A file
// name from the input under a folder that does not exist exercises the failed open and its message.
#include <fuzzer/FuzzedDataProvider.h>

#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "frame/units.h"
#include "require.h"
#include "vek.h"

namespace {

// The lines of a file as a line-oriented reader sees them.
std::vector<std::string> lines_of(const std::string& bytes) {
  std::vector<std::string> lines;
  size_t start = 0;
  while (start < bytes.size()) {
    size_t end = bytes.find('\n', start);
    if (end == std::string::npos) end = bytes.size();
    std::string line = bytes.substr(start, end - start);
    if (!line.empty() && line.back() == '\r') line.pop_back();
    lines.push_back(line);
    start = end + 1;
  }
  return lines;
}

const std::string& scratch_file() {
  static const std::string path =
      (std::filesystem::temp_directory_path() / ("vek_fuzz_record_" + std::to_string(getpid()))).string();
  return path;
}

}  // namespace

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

  if (std::FILE* f = std::fopen(scratch_file().c_str(), "wb")) {
    std::fwrite(bytes.data(), 1, bytes.size(), f);
    std::fclose(f);
  } else {
    return 0;
  }
  ifail = 1;
  x04acf_(&unit, scratch_file().data(), &read_mode, &ifail, static_cast<int64_t>(scratch_file().size()));
  FUZZ_REQUIRE(ifail == 0);

  const std::vector<std::string> expected = lines_of(bytes);
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
