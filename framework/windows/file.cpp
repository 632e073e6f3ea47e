// SPDX-License-Identifier: MIT
#include "framework/platform/file.h"

#include <algorithm>
#include <utility>

#include "framework/platform/last_error.h"
#include "framework/windows/windows_api.h"

namespace platform {

namespace {

// One call moves less than 4 GiB.
constexpr std::size_t kSlice = std::size_t{1} << 30;

HANDLE handleOf(std::intptr_t handle) noexcept { return reinterpret_cast<HANDLE>(handle); }

bool given(const char* path) noexcept {
  if (path != nullptr && *path != '\0') return true;
  setLastError(kErrorPathNotFound);
  return false;
}

DWORD accessRights(FileAccess access) noexcept {
  switch (access) {
    case FileAccess::read:
      return GENERIC_READ;
    case FileAccess::write:
      return GENERIC_WRITE;
    default:
      return GENERIC_READ | GENERIC_WRITE;
  }
}

DWORD disposition(FileCreation creation) noexcept {
  switch (creation) {
    case FileCreation::createNew:
      return CREATE_NEW;
    case FileCreation::createAlways:
      return CREATE_ALWAYS;
    default:
      return OPEN_EXISTING;
  }
}

}  // namespace

File::~File() { close(); }

File::File(File&& other) noexcept : handle_(std::exchange(other.handle_, kNone)) {}

File& File::operator=(File&& other) noexcept {
  if (this != &other) {
    close();
    handle_ = std::exchange(other.handle_, kNone);
  }
  return *this;
}

bool File::open(const char* path, FileAccess access, FileCreation creation,
                std::uint32_t attributes) noexcept {
  close();
  if (!given(path)) return false;
  const HANDLE handle = CreateFileA(path, accessRights(access), FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                    disposition(creation), attributes, nullptr);
  handle_ = reinterpret_cast<std::intptr_t>(handle);
  return handle_ != kNone;
}

bool File::isOpen() const noexcept { return handle_ != kNone; }

std::int64_t File::read(void* buffer, std::size_t size) noexcept {
  DWORD done = 0;
  const auto wanted = static_cast<DWORD>(std::min(size, kSlice));
  return ReadFile(handleOf(handle_), buffer, wanted, &done, nullptr) ? std::int64_t{done} : -1;
}

bool File::write(const void* data, std::size_t size) noexcept {
  const char* next = static_cast<const char*>(data);
  while (size > 0) {
    DWORD done = 0;
    if (!WriteFile(handleOf(handle_), next, static_cast<DWORD>(std::min(size, kSlice)), &done, nullptr))
      return false;
    if (done == 0) {
      setLastError(kErrorDiskFull);
      return false;
    }
    next += done;
    size -= done;
  }
  return true;
}

std::int64_t File::size() const noexcept {
  LARGE_INTEGER size{};
  return GetFileSizeEx(handleOf(handle_), &size) ? size.QuadPart : -1;
}

std::int64_t File::seekToEnd() noexcept {
  LARGE_INTEGER position{};
  return SetFilePointerEx(handleOf(handle_), LARGE_INTEGER{}, &position, FILE_END) ? position.QuadPart : -1;
}

bool File::close() noexcept {
  if (handle_ == kNone) return true;
  return CloseHandle(handleOf(std::exchange(handle_, kNone))) != FALSE;
}

bool deleteFile(const char* path) noexcept { return given(path) && DeleteFileA(path); }

bool createDirectory(const char* path) noexcept { return given(path) && CreateDirectoryA(path, nullptr); }

bool setFileAttributes(const char* path, std::uint32_t attributes) noexcept {
  return given(path) && SetFileAttributesA(path, attributes);
}

std::size_t temporaryFolder(char* buffer, std::size_t size) noexcept {
  const DWORD length = GetTempPathA(static_cast<DWORD>(size), buffer);
  if (length < size) return length;
  setLastError(kErrorInvalidParameter);
  return 0;
}

}  // namespace platform
