// The licence gate every worker passes first, with its worker name. This build is self-contained and needs
// no licence server: the gate always grants. Refusal, where a build has one, is error number -399.
#pragma once

namespace vek::licence {

inline bool granted(const char* /*worker*/) { return true; }

// The record printed for a refused call.
inline constexpr const char* kRefusedRecord = "** The licence for this VEK Library routine is not valid.";

}  // namespace vek::licence
