// SPDX-License-Identifier: MIT
// For framework/posix/*.cpp: a local path as hosts write it, as the system wants it.
//   "Z:/home/me/f"  -> "/home/me/f"    any letter, either slash behind the colon
//   "Z:\home\me\f"  -> "/home/me/f"    a backslash is a separator
//   "Z:f"           -> "Z:f"           no drive prefix, just a name
#pragma once

#include <climits>

namespace platform {

class LocalPath {
 public:
  // Not valid, with the last error set, for a null, empty or too long path.
  explicit LocalPath(const char* path) noexcept;

  [[nodiscard]] bool valid() const noexcept { return text_[0] != '\0'; }
  [[nodiscard]] const char* text() const noexcept { return text_; }

  // Stores errno as the last error, and returns false for the caller to pass on. A missing file whose folder
  // is missing too is a missing path, as Windows tells them apart.
  bool failed() const noexcept;

 private:
  char text_[PATH_MAX] = {};
};

}  // namespace platform
