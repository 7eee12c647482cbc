// The implementation details of this build, as the identification routines report them.
#pragma once

#include <string>
#include <vector>

namespace vek::identification {

// Records are at most this long.
inline constexpr size_t kRecordLength = 132;

// The banner, one record a line: the toolbox block, then the engine block.
std::vector<std::string> banner();

}  // namespace vek::identification
