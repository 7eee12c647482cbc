#include "optim/option_lookup.h"

#include <algorithm>

namespace vek::optim {
namespace {

// The entry's first key.size() characters, blank-padded, compared with the key: the order of the
// blank-padded fields of a fixed-width table.
int compare_prefix(std::string_view entry, std::string_view key) {
  for (size_t i = 0; i < key.size(); ++i) {
    const char e = i < entry.size() ? entry[i] : ' ';
    if (e != key[i]) return e < key[i] ? -1 : 1;
  }
  return 0;
}

int scan(std::span<const Keyword> table, std::string_view key) {
  int found = 0;
  for (size_t i = 0; i < table.size(); ++i) {
    const int order = compare_prefix(table[i].name, key);
    if (order > 0) break;  // sorted: nothing further can match
    if (order < 0) continue;
    const int index = static_cast<int>(i) + 1;
    if (found == 0) {
      found = index;
      if (table[i].name.size() == key.size()) break;  // an exact match beats longer keywords
    } else if (table[i].resolved() != table[static_cast<size_t>(found) - 1].resolved()) {
      return -index;
    }
  }
  return found;
}

}  // namespace

int lookup(std::span<const Keyword> table, std::string& token) {
  const std::string_view key = std::string_view(token).substr(0, std::min(token.size(), kKeyLength));
  if (key.empty()) return 0;
  int index = scan(table, key);
  if (index <= 0) return index;
  const Keyword& match = table[static_cast<size_t>(index) - 1];
  if (!match.target.empty()) {
    // An alias: the index is its target's (the table holds every target as a keyword).
    const auto it = std::find_if(table.begin(), table.end(),
                                 [&](const Keyword& k) { return k.target.empty() && k.name == match.target; });
    index = it == table.end() ? 0 : static_cast<int>(it - table.begin()) + 1;
    if (index == 0) return 0;
  }
  token.assign(table[static_cast<size_t>(index) - 1].name);
  return index;
}

}  // namespace vek::optim
