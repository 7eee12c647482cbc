// Keyword lookup with abbreviation and synonyms.
//
// A table is a list of entries sorted by name; an entry is a keyword (target empty) or an alias that stands
// for the keyword `target` of the same table. A token matches every entry whose first L characters it
// equals, L being its length cut to 16: any unambiguous prefix is accepted ("ITER" for "ITERATIONS"), a token
// exactly as long as a keyword takes that keyword at once ("LINE" rather than "LINEAR"), and matches that
// lead to the same keyword (an alias and its target) are one match.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace vek::optim {

inline constexpr size_t kKeyLength = 16;

struct Keyword {
  std::string_view name;
  std::string_view target;  // the keyword an alias stands for; empty for a keyword

  constexpr std::string_view resolved() const { return target.empty() ? name : target; }
};

// The 1-based index of the keyword `token` names, with `token` rewritten as that keyword; 0 when no entry
// matches (token unchanged); minus the index of the second, conflicting match when the token is ambiguous
// (token unchanged).
int lookup(std::span<const Keyword> table, std::string& token);

}  // namespace vek::optim
