// The record the argument-error routine prints for argument `position` of `name` ("F07AEF/DGETRS").
#pragma once

#include <string>

namespace vek::testing {

inline std::string argument_report(const std::string& name, int position) {
  return " ** On entry to " + name + " parameter number " + std::to_string(position) + " had an illegal value";
}

}  // namespace vek::testing
