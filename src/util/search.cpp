// Binary search for reals, integers and strings.
#include "util/search.h"

#include "util/rank.h"

namespace vek::util {

int64_t count_not_greater(std::span<const double> v, double item) {
  return count_not_greater(static_cast<int64_t>(v.size()), [&](int64_t i) { return real_less(item, v[static_cast<size_t>(i)]); });
}

int64_t count_not_greater(std::span<const int64_t> v, int64_t item) {
  return count_not_greater(static_cast<int64_t>(v.size()), [&](int64_t i) { return item < v[static_cast<size_t>(i)]; });
}

int64_t count_not_greater(const char* strings, int64_t length, int64_t n, std::string_view item) {
  return count_not_greater(n, [&](int64_t i) {
    return compare_padded(item, std::string_view(strings + i * length, static_cast<size_t>(length))) < 0;
  });
}

int compare_padded(std::string_view a, std::string_view b) {
  const size_t n = std::max(a.size(), b.size());
  for (size_t k = 0; k < n; ++k) {
    const auto x = static_cast<unsigned char>(k < a.size() ? a[k] : ' ');
    const auto y = static_cast<unsigned char>(k < b.size() ? b[k] : ' ');
    if (x != y) return x < y ? -1 : 1;
  }
  return 0;
}

}  // namespace vek::util
