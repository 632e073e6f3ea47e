// SPDX-License-Identifier: MIT
#include "framework/platform/lock_file.h"

#include "framework/platform/last_error.h"
#include "framework/windows/local_path.h"
#include "framework/windows/native_handle.h"

namespace platform {

LockFile::~LockFile() {
  const LastErrorKeeper keeper;
  if (held()) ::CloseHandle(handleOf(handle_));
}

// The system deletes the file with its last handle, however that ends.
bool LockFile::take(const char* path) {
  constexpr DWORD kShareNone = 0;
  HANDLE file = ::CreateFileW(LocalPath(path).text(), GENERIC_WRITE | DELETE, kShareNone, nullptr,
                              OPEN_ALWAYS, FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr);
  if (file == INVALID_HANDLE_VALUE) return false;
  if (::GetFileType(file) != FILE_TYPE_DISK) {  // a device, such as "NUL": anybody gets that
    ::CloseHandle(file);
    setLastError(kErrorAccessDenied);
    return false;
  }
  handle_ = reinterpret_cast<std::intptr_t>(file);
  return true;
}

}  // namespace platform
