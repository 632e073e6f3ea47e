// SPDX-License-Identifier: MIT
// The ownership of a file's handle, which no platform differs in.
#include "framework/platform/file.h"

#include <utility>

#include "framework/platform/last_error.h"

namespace platform {

File::~File() {
  const LastErrorKeeper keeper;
  close();
}

File::File(File&& other) noexcept : handle_(std::exchange(other.handle_, kNone)) {}

File& File::operator=(File&& other) noexcept {
  if (this != &other) {
    const LastErrorKeeper keeper;
    close();
    handle_ = std::exchange(other.handle_, kNone);
  }
  return *this;
}

bool File::isOpen() const noexcept { return handle_ != kNone; }

}  // namespace platform
