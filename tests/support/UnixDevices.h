// SPDX-License-Identifier: MIT
// The files of a Unix that fail in ways of their own. A Windows program has them below Wine, on drive Z:.
#pragma once

#include <filesystem>

namespace testing_support {

inline bool hasUnixDevices() {
  // Wine has them where it shows the folder; of a device itself it tells nothing.
  return std::filesystem::exists("/dev/full") || std::filesystem::is_directory("Z:/dev");
}

}  // namespace testing_support
