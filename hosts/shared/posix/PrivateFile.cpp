// SPDX-License-Identifier: MIT
#include "hosts/shared/PrivateFile.h"

#include <sys/stat.h>

#include <cstdlib>

namespace hosts {

bool isPrivate(const std::filesystem::path& file) {
  struct stat status {};
  if (stat(file.c_str(), &status) != 0) return false;
  return !S_ISREG(status.st_mode) || (status.st_mode & (S_IRWXG | S_IRWXO)) == 0;
}

std::string howToMakePrivate(const std::filesystem::path& file) { return "chmod 600 " + file.string(); }

std::filesystem::path usualNetrc() {
  const char* const home = std::getenv("HOME");
  return home != nullptr && *home != '\0' ? std::filesystem::path(home) / ".netrc" : std::filesystem::path();
}

}  // namespace hosts
