// SPDX-License-Identifier: MIT
#include "framework/internet/ftp/FtpTraits.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <string_view>

namespace internet {

namespace {

struct Cache {
  std::mutex mutex;
  std::map<std::string, FtpTraits> traits;  // guarded by `mutex`
};

Cache& cache() {
  static Cache theCache;
  return theCache;
}

std::string upper(std::string_view text) {
  std::string result(text);
  std::transform(result.begin(), result.end(), result.begin(),
                 [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
  return result;
}

void readFeature(std::string_view line, FtpTraits& traits) {
  const std::string name = upper(line.substr(0, line.find_first_of(" \t\r")));
  if (name == "MLST") traits.mlst = true;
  if (name == "SIZE") traits.size = true;
  if (name == "MDTM") traits.mdtm = true;
  if (name == "UTF8") traits.utf8 = true;
}

}  // namespace

void readFeatures(const std::string& replyText, FtpTraits& traits) {
  traits.mlst = traits.size = traits.mdtm = traits.utf8 = false;
  traits.featuresTold = !replyText.empty();
  std::string_view rest = replyText;
  while (!rest.empty()) {
    const std::size_t end = std::min(rest.find('\n'), rest.size() - 1) + 1;
    std::string_view line = rest.substr(0, end);
    rest.remove_prefix(end);
    // A feature is indented by one blank; servers that repeat the code in every line exist.
    if (line.starts_with("211-")) line.remove_prefix(4);
    const std::size_t name = line.find_first_not_of(" \t");
    if (name != std::string_view::npos) readFeature(line.substr(name), traits);
  }
}

FtpTraits cachedTraits(const std::string& key) {
  Cache& known = cache();
  const std::lock_guard lock(known.mutex);
  const auto found = known.traits.find(key);
  return found == known.traits.end() ? FtpTraits{} : found->second;
}

void changeCachedTraits(const std::string& key, const std::function<void(FtpTraits&)>& change) {
  // Bounded for hosts that talk to ever new servers; forgetting costs a few round trips.
  constexpr std::size_t kMostServers = 1000;
  Cache& known = cache();
  const std::lock_guard lock(known.mutex);
  if (known.traits.size() >= kMostServers && !known.traits.contains(key)) known.traits.clear();
  change(known.traits[key]);
}

void forgetCachedTraits() {
  Cache& known = cache();
  const std::lock_guard lock(known.mutex);
  known.traits.clear();
}

}  // namespace internet
