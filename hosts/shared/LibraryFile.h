// SPDX-License-Identifier: MIT
// What is different about the library's file on each system.
#pragma once

#include <filesystem>
#include <optional>
#include <vector>

namespace hosts {

// The parts that a file tells of its version. The one for Linux tells its major number alone, in the name
// that it has given itself.
struct FileVersion {
  int major = 0;
  std::optional<int> minor;
};

[[nodiscard]] std::filesystem::path programFolder();

// Where the library may be, the best place first.
[[nodiscard]] std::vector<std::filesystem::path> libraryPlaces();

// Of the loaded library. None: it tells none.
[[nodiscard]] std::optional<FileVersion> versionOf(void* library);

}  // namespace hosts
