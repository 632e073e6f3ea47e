// SPDX-License-Identifier: MIT
#include "Src/SameFile.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include "Src/RemotePath.h"
#include "framework/text/AsciiText.h"

namespace {

using Parts = std::vector<std::string_view>;

// The names on the way to the file. Above the root, and above where a relative path starts, is no way.
Parts partsOf(std::string_view path) {
  Parts parts;
  while (!path.empty()) {
    const std::size_t end = path.find('/');
    const std::string_view name = path.substr(0, end);
    path.remove_prefix(end == std::string_view::npos ? path.size() : end + 1);
    if (name == "..") {
      if (!parts.empty()) parts.pop_back();
    } else if (!name.empty() && name != ".") {
      parts.push_back(name.substr(0, name.find_last_not_of(" .") + 1));
    }
  }
  return parts;
}

// Of a relative path the directories above it are unknown.
bool endsWith(const Parts& whole, const Parts& end) noexcept {
  if (end.size() > whole.size()) return false;
  return std::equal(end.rbegin(), end.rend(), whole.rbegin(), &ascii::equalBlindToCase);
}

}  // namespace

bool MayBeSameFile(const char* first, const char* second) {
  PathText firstPath;
  PathText secondPath;
  if (!MakeFtpPath(first, firstPath) || !MakeFtpPath(second, secondPath)) return false;
  const Parts left = partsOf(firstPath.c_str());
  const Parts right = partsOf(secondPath.c_str());
  const bool leftAbsolute = *firstPath.c_str() == '/';
  if (leftAbsolute == (*secondPath.c_str() == '/'))
    return left.size() == right.size() && endsWith(left, right);
  return leftAbsolute ? endsWith(left, right) : endsWith(right, left);
}
