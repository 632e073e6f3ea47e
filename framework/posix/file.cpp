// SPDX-License-Identifier: MIT
#include "framework/platform/file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>
#include <utility>

#include "framework/platform/last_error.h"
#include "framework/posix/errno_map.h"

namespace platform {

namespace {

// The path as this system has it: a drive prefix names the root, a backslash separates.
std::string nativePath(const char* path) {
  const bool drive = path[0] != '\0' && path[1] == ':' &&
                     ((path[0] >= 'A' && path[0] <= 'Z') || (path[0] >= 'a' && path[0] <= 'z'));
  const char* rest = drive ? path + 2 : path;
  const bool needsRoot = drive && *rest != '/' && *rest != '\\';
  std::string native(needsRoot ? 1 : 0, '/');
  native += rest;
  for (char& c : native) {
    if (c == '\\') c = '/';
  }
  return native;
}

// Runs `work` on the native path; false with the last error set when there is no path, or when `work` fails
// with an errno.
template <typename Work>
bool withPath(const char* path, Work&& work) noexcept {
  if (path == nullptr || *path == '\0') {
    setLastError(kErrorPathNotFound);
    return false;
  }
  try {
    if (work(nativePath(path).c_str())) return true;
    setLastErrorFromErrno();
  } catch (const std::bad_alloc&) {
    setLastError(kErrorNotEnoughMemory);
  }
  return false;
}

int openFlags(FileAccess access, FileCreation creation) noexcept {
  int flags = O_CLOEXEC;
  flags |= access == FileAccess::read ? O_RDONLY : access == FileAccess::write ? O_WRONLY : O_RDWR;
  if (creation == FileCreation::createNew) flags |= O_CREAT | O_EXCL;
  if (creation == FileCreation::createAlways) flags |= O_CREAT | O_TRUNC;
  return flags;
}

int openNative(const char* path, int flags, mode_t mode) noexcept {
  int descriptor = -1;
  do {
    descriptor = ::open(path, flags, mode);
  } while (descriptor < 0 && errno == EINTR);
  struct stat info {};
  if (descriptor >= 0 && fstat(descriptor, &info) == 0 && S_ISDIR(info.st_mode)) {
    ::close(descriptor);
    errno = EISDIR;
    return -1;
  }
  return descriptor;
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
  const mode_t mode = (attributes & kFileAttributeReadOnly) != 0 ? 0444 : 0666;
  return withPath(path, [&](const char* native) {
    handle_ = openNative(native, openFlags(access, creation), mode);
    return handle_ != kNone;
  });
}

bool File::isOpen() const noexcept { return handle_ != kNone; }

std::int64_t File::read(void* buffer, std::size_t size) noexcept {
  ssize_t done = 0;
  do {
    done = ::read(static_cast<int>(handle_), buffer, size);
  } while (done < 0 && errno == EINTR);
  if (done < 0) setLastErrorFromErrno();
  return done;
}

bool File::write(const void* data, std::size_t size) noexcept {
  const char* next = static_cast<const char*>(data);
  while (size > 0) {
    const ssize_t done = ::write(static_cast<int>(handle_), next, size);
    if (done < 0 && errno == EINTR) continue;
    if (done < 0) {
      setLastErrorFromErrno();
      return false;
    }
    next += done;
    size -= static_cast<std::size_t>(done);
  }
  return true;
}

std::int64_t File::size() const noexcept {
  struct stat info {};
  if (fstat(static_cast<int>(handle_), &info) == 0) return info.st_size;
  setLastErrorFromErrno();
  return -1;
}

std::int64_t File::seekToEnd() noexcept {
  const off_t position = lseek(static_cast<int>(handle_), 0, SEEK_END);
  if (position < 0) setLastErrorFromErrno();
  return position;
}

bool File::close() noexcept {
  if (handle_ == kNone) return true;
  const int descriptor = static_cast<int>(std::exchange(handle_, kNone));
  // After EINTR the descriptor is closed all the same.
  if (::close(descriptor) == 0 || errno == EINTR) return true;
  setLastErrorFromErrno();
  return false;
}

bool deleteFile(const char* path) noexcept {
  return withPath(path, [](const char* native) { return unlink(native) == 0; });
}

bool createDirectory(const char* path) noexcept {
  return withPath(path, [](const char* native) { return mkdir(native, 0777) == 0; });
}

bool setFileAttributes(const char* path, std::uint32_t attributes) noexcept {
  return withPath(path, [&](const char* native) {
    struct stat info {};
    if (stat(native, &info) != 0) return false;
    const bool readOnly = (attributes & kFileAttributeReadOnly) != 0;
    const mode_t mode = info.st_mode & 07777;
    return chmod(native, readOnly ? mode & ~static_cast<mode_t>(0222) : mode | S_IWUSR) == 0;
  });
}

std::size_t temporaryFolder(char* buffer, std::size_t size) noexcept {
  const char* folder = std::getenv("TMPDIR");
  if (folder == nullptr || *folder == '\0') folder = "/tmp";
  const std::size_t length = std::strlen(folder);
  const bool ended = folder[length - 1] == '/';
  const std::size_t total = length + (ended ? 0 : 1);
  if (total >= size) {
    setLastError(kErrorInvalidParameter);
    return 0;
  }
  std::memcpy(buffer, folder, length);
  if (!ended) buffer[length] = '/';
  buffer[total] = '\0';
  return total;
}

}  // namespace platform
