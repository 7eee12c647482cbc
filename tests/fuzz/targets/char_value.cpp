// The character-value formatter: any value, any LIMIT, either flag, any result length. The shown text is the
// value without its outer blanks (the leading ones kept when FLAG is not 0) and trailing NULs, whole when it
// fits min(LIMIT, 80) characters, otherwise cut with "..." (or dots alone).
#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>

#include "frame/error_buffer.h"
#include "frame/text.h"
#include "require.h"
#include "vek.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  FuzzedDataProvider in(data, size);
  const int64_t limit = in.ConsumeBool() ? in.ConsumeIntegralInRange<int64_t>(-5, 100) : in.ConsumeIntegral<int64_t>();
  const int64_t flag = in.ConsumeIntegralInRange<int64_t>(-1, 2);
  const int64_t out_len = in.ConsumeIntegralInRange<int64_t>(-1, 120);
  const std::string value = in.ConsumeRemainingBytesAsString();

  std::string out(static_cast<size_t>(std::max<int64_t>(out_len, 0)), '?');
  p01abun_(out.data(), out_len, value.data(), &limit, &flag, static_cast<int64_t>(value.size()));

  const std::string shown = vek::frame::show_value(value, limit, flag != 0);
  const std::string_view text = flag != 0 ? vek::text::trim_right(value) : vek::text::trim(value);
  const int64_t l = std::min<int64_t>(limit, 80);
  if (static_cast<int64_t>(text.size()) <= l) {
    FUZZ_REQUIRE(shown == text);
  } else {
    FUZZ_REQUIRE(static_cast<int64_t>(shown.size()) == std::max<int64_t>(l, 0));
    if (l > 3) FUZZ_REQUIRE(shown == std::string(text.substr(0, static_cast<size_t>(l - 3))) + "...");
    else FUZZ_REQUIRE(shown.find_first_not_of('.') == std::string::npos);
  }
  // The result holds the shown text, blank-padded or cut to its length.
  std::string expected = shown;
  expected.resize(out.size(), ' ');
  FUZZ_REQUIRE(out == expected);
  return 0;
}
