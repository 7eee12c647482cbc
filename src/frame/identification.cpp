#include "frame/identification.h"

#include "frame/build_info.h"

namespace vek::identification {

std::vector<std::string> banner() {
  namespace b = vek::build_info;
  const std::string hardware = std::string("     hardware - ") + b::kHardware;
  const std::string os = std::string("     op. sys. - ") + b::kKernel;
  const std::string compiler = std::string("     compiler - ") + b::kCompiler;
  std::vector<std::string> lines = {
      " *** Start of VEK Toolbox for MATLAB implementation details ***",
      "",
      std::string(" Implementation title: ") + b::kPlatform,
      std::string("            Precision: ") + b::kPrecision,
      std::string("         Product Code: ") + b::kProductCode,
      std::string("                 Mark: ") + b::kMark + " (self-contained)",
      "",
      " Created using:",
      hardware,
      os,
      compiler,
      "",
      "",
      " Applicable to:",
      hardware,
      os,
      compiler,
      " and compatible systems.",
      "",
      " *** End of VEK Toolbox for MATLAB implementation details ***",
      " *** Start of VEK Engine implementation details ***",
      "",
      std::string(" Precision: ") + b::kPrecision,
      std::string(" Built on: ") + b::kDate,
      " Hardware:",
      std::string("  ") + b::kHardware,
      " Operating system:",
      std::string("  ") + b::kKernel,
      " C++ compiler:",
      std::string("  ") + b::kCompiler,
      " C++ compiler flags:",
      std::string("  ") + b::kFlags,
      " *** End of VEK Engine implementation details ***",
  };
  for (std::string& line : lines)
    if (line.size() > kRecordLength) line.resize(kRecordLength);
  return lines;
}

}  // namespace vek::identification
