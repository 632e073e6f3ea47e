// SPDX-License-Identifier: MIT
// A new empty folder that is removed with all its content.
#pragma once

#include <filesystem>
#include <string>

namespace testing_support {

// The folder of the fixture that the program runs under, as this system names it; empty without one.
std::filesystem::path fixtureFolder();

class ScratchFolder {
 public:
  // Throws std::filesystem::filesystem_error.
  ScratchFolder();
  ~ScratchFolder();
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  [[nodiscard]] const std::filesystem::path& path() const { return path_; }
  // The narrow native name of a file in the folder: "/tmp/x/name" or "Z:\tmp\x\name".
  [[nodiscard]] std::string file(const std::string& name) const { return (path_ / name).string(); }

 private:
  std::filesystem::path path_;
};

// A native name as the client's rule for local paths wants it: "Z:/tmp/x/name" on Linux.
inline std::string localName(const std::string& native) {
  return native.starts_with('/') ? "Z:" + native : native;
}

}  // namespace testing_support
