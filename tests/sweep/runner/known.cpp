#include "known.h"

#include <fnmatch.h>

#include <fstream>
#include <sstream>

namespace sweep {

std::vector<KnownFailure> read_known_failures(const std::string& path) {
  std::vector<KnownFailure> out;
  std::ifstream in(path);
  std::string line;
  while (std::getline(in, line)) {
    if (auto hash = line.find('#'); hash != std::string::npos) line.erase(hash);
    std::istringstream words(line);
    KnownFailure k;
    if (!(words >> k.routine >> k.kind)) continue;
    std::getline(words >> std::ws, k.varied);
    while (!k.varied.empty() && k.varied.back() == ' ') k.varied.pop_back();
    out.push_back(k);
  }
  return out;
}

namespace {
bool kind_listed(const std::string& kinds, const std::string& kind) {
  std::istringstream in(kinds);
  std::string k;
  while (std::getline(in, k, ','))
    if (k == kind) return true;
  return false;
}
}  // namespace

const KnownFailure* find_known(const std::vector<KnownFailure>& list, const std::string& routine,
                               const std::string& kind, const std::string& varied, const std::string& call) {
  for (const KnownFailure& k : list) {
    if (fnmatch(k.routine.c_str(), routine.c_str(), 0) != 0 || !kind_listed(k.kind, kind)) continue;
    const bool value = k.varied.find('=') != std::string::npos;
    if (k.varied.empty() || (value ? call.find(k.varied) != std::string::npos : k.varied == varied)) return &k;
  }
  return nullptr;
}

}  // namespace sweep
