// SPDX-License-Identifier: MIT
#include "framework/platform/file.h"

#include <algorithm>
#include <utility>

#include "framework/platform/last_error.h"
#include "framework/windows/local_path.h"
#include "framework/windows/native_handle.h"

namespace platform {
namespace {

// What one call of the system takes: its sizes are 32-bit.
constexpr std::size_t kLargestPiece = 0x40000000;

DWORD accessRights(FileAccess access) noexcept {
  if (access == FileAccess::read) return GENERIC_READ;
  if (access == FileAccess::write) return GENERIC_WRITE;
  return GENERIC_READ | GENERIC_WRITE;
}

DWORD disposition(FileCreation creation) noexcept {
  if (creation == FileCreation::createNew) return CREATE_NEW;
  if (creation == FileCreation::createAlways) return CREATE_ALWAYS;
  return OPEN_EXISTING;
}

// The value of a closed file is, for the system, the handle of the process itself.
bool refusedClosed(const File& file) noexcept {
  if (!file.isOpen()) setLastError(kErrorInvalidHandle);
  return !file.isOpen();
}

}  // namespace

bool File::open(const char* path, FileAccess access, FileCreation creation,
                std::uint32_t attributes) noexcept {
  close();
  // Others may read and write meanwhile, as they may on the other systems.
  constexpr DWORD kSharing = FILE_SHARE_READ | FILE_SHARE_WRITE;
  handle_ =
      reinterpret_cast<std::intptr_t>(::CreateFileW(LocalPath(path).text(), accessRights(access), kSharing,
                                                    nullptr, disposition(creation), attributes, nullptr));
  return isOpen();
}

std::int64_t File::read(void* buffer, std::size_t size) noexcept {
  if (refusedClosed(*this)) return -1;
  DWORD got = 0;
  const auto piece = static_cast<DWORD>(std::min(size, kLargestPiece));
  return ::ReadFile(handleOf(handle_), buffer, piece, &got, nullptr) ? std::int64_t{got} : -1;
}

bool File::write(const void* data, std::size_t size) noexcept {
  if (refusedClosed(*this)) return false;
  const char* next = static_cast<const char*>(data);
  while (size != 0) {
    DWORD written = 0;
    const auto piece = static_cast<DWORD>(std::min(size, kLargestPiece));
    if (!::WriteFile(handleOf(handle_), next, piece, &written, nullptr)) return false;
    if (written == 0) {  // no error and no progress: asking again would go on for ever
      setLastError(kErrorDiskFull);
      return false;
    }
    next += written;
    size -= written;
  }
  return true;
}

std::int64_t File::size() const noexcept {
  LARGE_INTEGER size;
  return !refusedClosed(*this) && ::GetFileSizeEx(handleOf(handle_), &size) ? size.QuadPart : -1;
}

namespace {

std::int64_t seek(const File& file, std::int64_t offset, DWORD from) noexcept {
  LARGE_INTEGER position;
  position.QuadPart = offset;
  if (refusedClosed(file)) return -1;
  const HANDLE handle = handleOf(file.nativeHandle());
  return ::SetFilePointerEx(handle, position, &position, from) ? position.QuadPart : -1;
}

}  // namespace

std::int64_t File::seekToEnd() noexcept { return seek(*this, 0, FILE_END); }

std::int64_t File::seekTo(std::uint64_t position) noexcept {
  return seek(*this, static_cast<std::int64_t>(position), FILE_BEGIN);
}

bool File::close() noexcept { return !isOpen() || ::CloseHandle(handleOf(std::exchange(handle_, kNone))); }

bool File::keepToOwner() noexcept { return !refusedClosed(*this); }

bool deleteFile(const char* path) noexcept { return ::DeleteFileW(LocalPath(path).text()) != FALSE; }

bool createOwnDirectory(const char* path) noexcept {
  return ::CreateDirectoryW(LocalPath(path).text(), nullptr) != FALSE || lastError() == kErrorAlreadyExists;
}

bool setFileAttributes(const char* path, std::uint32_t attributes) noexcept {
  return ::SetFileAttributesW(LocalPath(path).text(), attributes) != FALSE;
}

std::optional<FileStamp> fileStamp(const char* path) noexcept {
  const LastErrorKeeper keeper;
  WIN32_FILE_ATTRIBUTE_DATA data;
  if (!::GetFileAttributesExW(LocalPath(path).text(), GetFileExInfoStandard, &data)) return std::nullopt;
  const auto whole = [](DWORD high, DWORD low) { return std::uint64_t{high} << 32U | low; };
  const FILETIME& written = data.ftLastWriteTime;
  return FileStamp{whole(data.nFileSizeHigh, data.nFileSizeLow),
                   static_cast<std::int64_t>(whole(written.dwHighDateTime, written.dwLowDateTime))};
}

std::size_t temporaryFolder(char* buffer, std::size_t size) noexcept {
  const auto room = static_cast<DWORD>(std::min<std::size_t>(size, MAXDWORD));
  const DWORD length = ::GetTempPathA(room, buffer);
  if (length < room) return length;  // 0 when it failed
  setLastError(kErrorInsufficientBuffer);
  return 0;
}

}  // namespace platform
