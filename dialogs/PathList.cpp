// SPDX-License-Identifier: MIT
#include "dialogs/PathList.h"

#include <algorithm>

#include "framework/ui/NarrowText.h"
#include "support/Paths.h"

PathList MakePathList(const std::string& folder, const std::vector<std::string>& names) {
  auto list = std::make_unique<char[]>((names.size() + 1) * kHostPathCapacity);
  char* entry = list.get();
  for (const std::string& name : names) {
    std::string path = folder;
    if (!folder.empty()) path.push_back('\\');
    path += name;
    if (path.size() >= kHostPathCapacity) return nullptr;
    std::copy(path.begin(), path.end(), entry);  // the rest of the entry is zeros
    entry += kHostPathCapacity;
  }
  return list;
}

bool NormaliseFolder(const std::string& folder, HostPathText& result) {
  // A backslash byte may be the second half of the last character, which the normaliser would cut: it gets a
  // real separator to drop.
  const bool halved = folder.ends_with('\\') && !endsWith(folder, '\\');
  std::string text = folder;
  if (halved) text.push_back('\\');
  if (text.size() > kHostPathCapacity) return false;
  text.push_back('\0');
  TrimSlashes(text.data());
  return result.assign(text.c_str());
}
