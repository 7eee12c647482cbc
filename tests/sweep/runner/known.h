// The committed list of failures the sweep tolerates while their fixes are pending: one per line,
// "<routine> <kind> [<argument>]", where <argument> is the argument the call made hostile ("baseline" for the
// baseline call); without it every call of that kind fails known.
#pragma once

#include <string>
#include <vector>

namespace sweep {

struct KnownFailure {
  std::string routine, kind, varied;
  mutable int seen = 0;
};

std::vector<KnownFailure> read_known_failures(const std::string& path);
const KnownFailure* find_known(const std::vector<KnownFailure>& list, const std::string& routine,
                               const std::string& kind, const std::string& varied);

}  // namespace sweep
