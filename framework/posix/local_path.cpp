// SPDX-License-Identifier: MIT
#include "framework/posix/local_path.h"

#include <sys/stat.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <string_view>

#include "framework/platform/last_error.h"
#include "framework/posix/errno_map.h"

namespace platform {
namespace {

bool isSeparator(char c) noexcept { return c == '/' || c == '\\'; }

std::string_view withoutDrive(std::string_view path) noexcept {
  const bool hasDrive = path.size() > 2 && std::isalpha(static_cast<unsigned char>(path[0])) != 0 &&
                        path[1] == ':' && isSeparator(path[2]);
  return hasDrive ? path.substr(2) : path;
}

bool folderIsMissing(const char* path) noexcept {
  std::string_view folder(path);
  while (folder.size() > 1 && folder.back() == '/') folder.remove_suffix(1);
  const std::size_t separator = folder.rfind('/');
  if (separator == std::string_view::npos || separator == 0) return false;  // the current folder, or the root
  char text[PATH_MAX] = {};
  folder.copy(text, separator);
  struct stat status;
  return ::stat(text, &status) != 0 || !S_ISDIR(status.st_mode);
}

}  // namespace

LocalPath::LocalPath(const char* path) noexcept {
  const std::string_view given = withoutDrive(path != nullptr ? path : "");
  if (given.empty()) {
    setLastError(kErrorPathNotFound);
  } else if (given.size() >= sizeof text_) {
    setLastError(kErrorNameTooLong);
  } else {
    std::ranges::replace_copy(given, text_, '\\', '/');
  }
}

bool LocalPath::failed() const noexcept {
  const int reason = errno;
  const std::uint32_t error =
      reason == ENOENT && folderIsMissing(text_) ? kErrorPathNotFound : lastErrorFromErrno(reason);
  setLastError(error);
  return false;
}

}  // namespace platform
