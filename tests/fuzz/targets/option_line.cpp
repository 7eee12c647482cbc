// The option-line machinery of the E04UCF family: tokenizer, numeric test and number reader, keyword lookup,
// one line applied to a store (first call and later calls), the solver's start rules and parameter listing
// on what the lines stored, and the E04UEF entry itself; the same lines on the E04DGF family's table, store,
// start and E04DKF. Properties: tokens within their limits and free of
// delimiters, a number in plain decimal form read as the C library reads it, lookup results within the
// table, and every record of the parameter listing within 80 characters.
#include <fuzzer/FuzzedDataProvider.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "frame/units.h"
#include "optim/e04dg_options.h"
#include "optim/e04uc_options.h"
#include "optim/option_line.h"
#include "optim/option_text.h"
#include "require.h"
#include "vek.h"

namespace {

namespace o = vek::optim;

bool is_digit(char c) { return c >= '0' && c <= '9'; }

// [sign] digits [. [digits]] or [sign] . digits, then optionally E or D, [sign], digits: the form strtod
// reads the same way (with D as E).
bool plain_decimal(const std::string& t, std::string& c_form) {
  size_t i = 0;
  if (i < t.size() && (t[i] == '+' || t[i] == '-')) ++i;
  size_t digits = 0;
  while (i < t.size() && is_digit(t[i])) ++i, ++digits;
  if (i < t.size() && t[i] == '.') {
    ++i;
    while (i < t.size() && is_digit(t[i])) ++i, ++digits;
  }
  if (digits == 0) return false;
  c_form = t.substr(0, i);
  if (i == t.size()) return true;
  if (t[i] != 'E' && t[i] != 'D') return false;
  c_form += 'E';
  ++i;
  if (i < t.size() && (t[i] == '+' || t[i] == '-')) c_form += t[i++];
  const size_t exponent_digits = i;
  while (i < t.size() && is_digit(t[i])) c_form += t[i++];
  return i == t.size() && i > exponent_digits;
}

void check_tokens(const std::string& line) {
  std::array<std::string, o::kMaxTokens> tokens;
  const size_t count = o::tokenize(line, tokens, true);
  FUZZ_REQUIRE(count <= o::kMaxTokens);
  for (size_t k = 0; k < tokens.size(); ++k) {
    const std::string& t = tokens[k];
    FUZZ_REQUIRE(k < count ? !t.empty() : t.empty());
    FUZZ_REQUIRE(t.size() <= o::kTokenWidth);
    for (char c : t) FUZZ_REQUIRE(!o::is_delimiter(c) && !(c >= 'a' && c <= 'z'));
    if (t.empty()) continue;
    std::string key = t;
    const int index = o::lookup(o::e04uc::family.keywords, key);
    const int size = static_cast<int>(o::e04uc::family.keywords.size());
    FUZZ_REQUIRE(index >= -size && index <= size);
    if (index > 0) FUZZ_REQUIRE(key == o::e04uc::family.keywords[static_cast<size_t>(index - 1)].name);
    else FUZZ_REQUIRE(key == t);
    if (!o::is_numeric(t)) continue;
    const double x = o::read_number(t);
    std::string c_form;
    if (plain_decimal(t, c_form)) FUZZ_REQUIRE(x == std::strtod(c_form.c_str(), nullptr));
    (void)o::truncate_to_int(x);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  FuzzedDataProvider in(data, size);
  const o::e04uc::Inputs sizes{in.ConsumeIntegral<int64_t>(), in.ConsumeIntegral<int64_t>(),
                               in.ConsumeIntegral<int64_t>()};
  std::vector<std::string> lines;
  while (in.remaining_bytes() > 0 && lines.size() < 8) lines.push_back(in.ConsumeRandomLengthString(100));

  o::SaveAreas areas;
  const o::e04uc::Store store(areas);
  o::initialise(store);
  std::vector<std::string> records;
  const o::RecordSink sink = [&](std::string_view r) { records.emplace_back(r); };
  for (const std::string& line : lines) {
    check_tokens(line);
    o::set_option(o::e04uc::family, store, line, "E04UEF", true, sink);
    o::e04uc::after_option_call(store);
  }
  std::vector<std::string> listing;
  o::e04uc::start_of_solve(store, sizes, [&](std::string_view r) { listing.emplace_back(r); });

  o::SaveAreas dg_areas;
  const o::e04dg::Store dg_store(dg_areas);
  o::initialise(dg_store);
  for (const std::string& line : lines) o::set_option(o::e04dg::family, dg_store, line, "E04DKF", true, sink);
  o::e04dg::start_of_solve(dg_store, {sizes.n}, [&](std::string_view r) { listing.emplace_back(r); });
  for (const std::string& r : listing) FUZZ_REQUIRE(r.size() <= 80);

  // The entry, with its printing suppressed.
  int64_t old_advisory = 0, quiet = -1;
  const int64_t get = 0, set = 1;
  x04abf_(&get, &old_advisory);
  x04abf_(&set, &quiet);
  for (const std::string& line : lines) {
    e04uef_(line.data(), static_cast<int64_t>(line.size()));
    e04dkf_(line.data(), static_cast<int64_t>(line.size()));
  }
  x04abf_(&set, &old_advisory);
  return 0;
}
