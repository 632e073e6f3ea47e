// SPDX-License-Identifier: MIT
// Contract: a file that one holder has at a time, among all threads and processes. It lies there while it is
// held; what a process leaves behind that died with it stands in nobody's way.
#pragma once

#include <cstdint>
#include <string>

namespace platform {

class LockFile {
 public:
  LockFile() noexcept = default;
  ~LockFile();  // gives it up, leaving the last error alone
  LockFile(const LockFile&) = delete;
  LockFile& operator=(const LockFile&) = delete;

  // False with the last error set: 32 while another one holds it. Follows no link. Once per object.
  [[nodiscard]] bool take(const char* path);
  [[nodiscard]] bool held() const noexcept { return handle_ != kNone; }

 private:
  static constexpr std::intptr_t kNone = -1;
  std::intptr_t handle_ = kNone;
  std::string path_;  // where the holder has to delete it
};

}  // namespace platform
