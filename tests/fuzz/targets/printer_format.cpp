// The matrix printers' FORM descriptors, labels, title and layout numbers. An accepted descriptor must write
// every double (zeros, subnormals, the extremes, infinities, NaN, values from the input) in exactly its width;
// the printers themselves run on a suppressed unit with FORM, labels, NCOLS and INDENT from the input.
#include <fuzzer/FuzzedDataProvider.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "frame/printers_format.h"
#include "frame/text.h"
#include "frame/units.h"
#include "require.h"
#include "vek.h"

namespace {

using Limits = std::numeric_limits<double>;

void check_widths(const vek::printers::EditDescriptor& f, FuzzedDataProvider& in) {
  FUZZ_REQUIRE(f.width >= 1 && f.width <= vek::printers::kMaxFieldWidth);
  std::vector<double> values = {0.0, -0.0, 1.0, -1.0, 0.1, 9.9999999, 1e10, -1e-10, Limits::denorm_min(),
                                Limits::min(), Limits::max(), -Limits::max(), Limits::infinity(),
                                -Limits::infinity(), Limits::quiet_NaN(), 0.5e-99, 0.99999e100};
  for (int k = 0; k < 4; ++k) values.push_back(in.ConsumeFloatingPoint<double>());
  if (f.kind == vek::printers::EditDescriptor::Kind::integer) {
    for (int64_t x : {int64_t{0}, int64_t{-1}, std::numeric_limits<int64_t>::min(), in.ConsumeIntegral<int64_t>()})
      FUZZ_REQUIRE(vek::printers::format_integer(f, x).size() == static_cast<size_t>(f.width));
    return;
  }
  for (double x : values) FUZZ_REQUIRE(vek::printers::format_real(f, x).size() == static_cast<size_t>(f.width));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  FuzzedDataProvider in(data, size);
  const std::string form = in.ConsumeRandomLengthString(40);
  const bool integer = in.ConsumeBool();
  if (const auto f = vek::printers::parse_edit_descriptor(form, integer)) check_widths(*f, in);

  // The printers: a small matrix, character labels and layout from the input, every record suppressed.
  const int64_t m = in.ConsumeIntegralInRange<int64_t>(0, 4), n = in.ConsumeIntegralInRange<int64_t>(0, 4);
  const int64_t lda = std::max<int64_t>(m, 1);
  const int64_t ncols = in.ConsumeIntegralInRange<int64_t>(-2, 140), indent = in.ConsumeIntegralInRange<int64_t>(-2, 140);
  const int64_t label_len = in.ConsumeIntegralInRange<int64_t>(0, 50);
  const std::string labrow = in.ConsumeBytesAsString(1), labcol = in.ConsumeBytesAsString(1);
  const std::string usefrm = in.ConsumeBytesAsString(1), matrix = in.ConsumeBytesAsString(1);
  std::string rlabs = in.ConsumeBytesAsString(static_cast<size_t>(4 * label_len));
  std::string clabs = in.ConsumeBytesAsString(static_cast<size_t>(4 * label_len));
  rlabs.resize(static_cast<size_t>(4 * label_len), ' ');
  clabs.resize(static_cast<size_t>(4 * label_len), ' ');
  const std::string title = in.ConsumeRandomLengthString(100);
  std::vector<double> a(16);
  std::vector<vek_complex> z(16);
  std::vector<int64_t> ia(16);
  for (int k = 0; k < 16; ++k) {
    a[k] = in.ConsumeFloatingPoint<double>();
    z[k] = {a[k], -a[k]};
    ia[k] = in.ConsumeIntegral<int64_t>();
  }

  const int64_t suppressed = -1, sorder = 1;
  int64_t old_advisory = 0;
  const int64_t get = 0, set = 1;
  x04abf_(&get, &old_advisory);
  int64_t quiet = suppressed;
  x04abf_(&set, &quiet);
  const char* diag = "N";
  auto len = [](const std::string& s) { return static_cast<int64_t>(s.size()); };
  // A printer succeeds only with a FORM the parser accepts (or a blank or "*" one).
  const std::string_view trimmed = vek::text::trim(form);
  const bool form_accepted = trimmed.empty() || trimmed == "*" || vek::printers::parse_edit_descriptor(form, false);
  int64_t ifail = 1;
  x04cbf_(&sorder, matrix.data(), diag, &m, &n, a.data(), &lda, form.data(), title.data(), labrow.data(),
          rlabs.data(), labcol.data(), clabs.data(), &ncols, &indent, &suppressed, &ifail, len(matrix), 1,
          len(form), len(title), len(labrow), label_len, len(labcol), label_len);
  if (ifail == 0) FUZZ_REQUIRE(form_accepted);
  ifail = 1;
  x04dbf_(&sorder, matrix.data(), diag, &m, &n, z.data(), &lda, usefrm.data(), form.data(), title.data(),
          labrow.data(), rlabs.data(), labcol.data(), clabs.data(), &ncols, &indent, &suppressed, &ifail,
          len(matrix), 1, len(usefrm), len(form), len(title), len(labrow), label_len, len(labcol), label_len);
  ifail = 1;
  x04ebf_(&sorder, matrix.data(), diag, &m, &n, ia.data(), &lda, form.data(), title.data(), labrow.data(),
          rlabs.data(), labcol.data(), clabs.data(), &ncols, &indent, &ifail, len(matrix), 1, len(form),
          len(title), len(labrow), label_len, len(labcol), label_len);
  x04abf_(&set, &old_advisory);
  return 0;
}
