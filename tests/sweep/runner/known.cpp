#include "known.h"

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

const KnownFailure* find_known(const std::vector<KnownFailure>& list, const std::string& routine,
                               const std::string& kind, const std::string& varied) {
  for (const KnownFailure& k : list)
    if (k.routine == routine && k.kind == kind && (k.varied.empty() || k.varied == varied)) return &k;
  return nullptr;
}

}  // namespace sweep
