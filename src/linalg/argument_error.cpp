// F06AAZ, the argument-error routine of chapters F06, F07 and F08, and the error hook of the OpenBLAS linked
// into the library. OpenBLAS and its LAPACK report an illegal argument by calling xerbla_ with the routine's
// published name and the argument number; the archive's symbols are renamed with the prefix vekob_ and its
// own xerbla member is removed at link time, so the call arrives here, is labelled with both names
// ("F07ADF/DGETRF") and printed without stopping; the routine itself has already set INFO.
#include "linalg/argument_error.h"

#include <algorithm>
#include <cctype>
#include <string>

#include "frame/text.h"
#include "frame/units.h"
#include "layers/f06.h"
#include "linalg/name_map.h"

namespace vek::linalg {

void argument_error(std::string_view name, int64_t number) {
  std::string record = " ** On entry to ";
  record += name;
  record += " parameter number ";
  record += text::int_text(number);
  record += " had an illegal value";
  units::write_record(units::error_unit(), record);
}

std::string report_name(std::string_view published) {
  std::string key(text::trim(published));
  std::transform(key.begin(), key.end(), key.begin(), [](unsigned char c) { return std::toupper(c); });
  const auto it = std::lower_bound(published_names.begin(), published_names.end(), key,
                                   [](const NamePair& p, const std::string& k) { return p.published < k; });
  if (it == published_names.end() || it->published != key) return key;
  return std::string(it->library) + "/" + key;
}

}  // namespace vek::linalg

extern "C" {

void f06aaz_(const char* srname, const int64_t* info, int64_t srname_len) {
  vek::linalg::argument_error(vek::text::trim(vek::text::view(srname, srname_len)), *info);
}

// The archive's error hook (its calls pass the name's length including any trailing NUL).
void vekob_xerbla_(const char* srname, const int64_t* info, int64_t srname_len) {
  vek::linalg::argument_error(vek::linalg::report_name(vek::text::view(srname, srname_len)), *info);
}

}  // extern "C"
