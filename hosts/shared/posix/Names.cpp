// SPDX-License-Identifier: MIT
#include "hosts/shared/Names.h"

#include <algorithm>

namespace hosts {

NameRules namesHere() { return NameRules::posix; }

std::string withoutCase(std::string_view path) {
  std::string result(path);
  std::ranges::transform(result, result.begin(),
                         [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
  return result;
}

std::string nameForServer(const std::filesystem::path& name) { return name.string(); }

std::filesystem::path nameFromServer(const std::string& name) { return name; }

std::optional<std::string> pathForLibrary(const std::filesystem::path& path) {
  return std::filesystem::absolute(path).string();
}

std::string shown(const std::filesystem::path& path) { return path.string(); }

}  // namespace hosts
