// F06AAZ, the argument-error routine of chapters F06, F07 and F08, and the error hook of the OpenBLAS linked
// into the library. OpenBLAS and its LAPACK report an illegal argument by calling xerbla_ with the routine's
// published name and the argument number; the archive's symbols are renamed with the prefix vekob_ and its
// own xerbla member is removed at link time, so the call arrives here, is labelled with both names
// ("F07ADF/DGETRF") and printed without stopping; the routine itself has already set INFO.
#include "linalg/argument_error.h"

#include <algorithm>
#include <cctype>
#include <cstdio>

#include "frame/text.h"
#include "frame/units.h"
#include "layers/f06.h"
#include "linalg/name_map.h"

namespace vek::linalg {

void argument_error(std::string_view name, int64_t number) {
  // In a fixed buffer: the report is made also when memory has run out.
  char record[160];
  const int len = std::snprintf(record, sizeof record, " ** On entry to %.*s parameter number %lld had an illegal value",
                                static_cast<int>(std::min<size_t>(name.size(), 64)), name.data(),
                                static_cast<long long>(number));
  units::write_record(units::error_unit(), std::string_view(record, static_cast<size_t>(std::clamp(len, 0, 159))));
}

ReportName report_name(std::string_view published) {
  const std::string_view trimmed = text::trim(published);
  char key[sizeof(ReportName::text)];
  const size_t n = std::min(trimmed.size(), sizeof key);
  std::transform(trimmed.begin(), trimmed.begin() + static_cast<std::ptrdiff_t>(n), key,
                 [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  const std::string_view k(key, n);
  ReportName out{};
  const auto it = std::lower_bound(published_names.begin(), published_names.end(), k,
                                   [](const NamePair& p, std::string_view q) { return std::string_view(p.published) < q; });
  if (it != published_names.end() && std::string_view(it->published) == k) {
    out.size = static_cast<size_t>(std::snprintf(out.text, sizeof out.text, "%s/%s", it->library, it->published));
  } else {
    std::copy_n(key, n, out.text);
    out.size = n;
  }
  return out;
}

}  // namespace vek::linalg

extern "C" {

void f06aaz_(const char* srname, const int64_t* info, int64_t srname_len) {
  vek::linalg::argument_error(vek::text::trim(vek::text::view(srname, srname_len)), *info);
}

// The archive's error hook (its calls pass the name's length including any trailing NUL).
void vekob_xerbla_(const char* srname, const int64_t* info, int64_t srname_len) {
  vek::linalg::argument_error(vek::linalg::report_name(vek::text::view(srname, srname_len)).view(), *info);
}

}  // extern "C"
