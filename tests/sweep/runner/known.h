// The committed list of failures the sweep tolerates while their fixes are pending: one per line,
// "<routine> <kinds> [<argument>]". <routine> is a name or a shell pattern (f08x*), <kinds> one kind or several
// joined by commas, <argument> the argument the call made hostile ("baseline", "allocation" for the
// allocation-failure sweep), or a text holding '=' that the call's description must contain (UPLO='' ); without
// it every call of those kinds is known.
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
                               const std::string& kind, const std::string& varied, const std::string& call);

}  // namespace sweep
