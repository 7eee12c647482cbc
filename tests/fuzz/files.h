// The fuzz targets that read files: the lines a line-oriented reader finds in some bytes, and a scratch file
// of this process holding them.
#pragma once

#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

namespace vek_fuzz {

// The lines of `bytes` without their line ends, a carriage return before a line end dropped too.
inline std::vector<std::string> lines_of(const std::string& bytes) {
  std::vector<std::string> lines;
  for (size_t start = 0; start < bytes.size();) {
    size_t end = bytes.find('\n', start);
    if (end == std::string::npos) end = bytes.size();
    std::string line = bytes.substr(start, end - start);
    if (!line.empty() && line.back() == '\r') line.pop_back();
    lines.push_back(line);
    start = end + 1;
  }
  return lines;
}

// Writes `bytes` to the process's scratch file named after `stem` (in the temporary folder) and returns its
// path, or an empty path when it cannot be written.
inline std::string scratch_file(const std::string& stem, const std::string& bytes) {
  const std::string path =
      (std::filesystem::temp_directory_path() / (stem + "_" + std::to_string(getpid()))).string();
  std::FILE* f = std::fopen(path.c_str(), "wb");
  if (f == nullptr) return {};
  const bool written = std::fwrite(bytes.data(), 1, bytes.size(), f) == bytes.size();
  return std::fclose(f) == 0 && written ? path : std::string();
}

}  // namespace vek_fuzz
