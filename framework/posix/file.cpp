// SPDX-License-Identifier: MIT
#include "framework/platform/file.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <utility>

#include "framework/platform/last_error.h"
#include "framework/posix/descriptor.h"
#include "framework/posix/errno_map.h"
#include "framework/posix/local_path.h"
#include "framework/posix/pipe.h"

namespace platform {
namespace {

constexpr mode_t kWriteBits = S_IWUSR | S_IWGRP | S_IWOTH;

int openFlags(FileAccess access, FileCreation creation) noexcept {
  int flags = O_CLOEXEC;
  if (access == FileAccess::read) flags |= O_RDONLY;
  if (access == FileAccess::write) flags |= O_WRONLY;
  if (access == FileAccess::readWrite) flags |= O_RDWR;
  if (creation == FileCreation::createNew) flags |= O_CREAT | O_EXCL;
  if (creation == FileCreation::createAlways) flags |= O_CREAT | O_TRUNC;
  return flags;
}

// The answer of a system call whose failure is told by -1, with the last error set then.
template <class Result>
std::int64_t noted(Result result) noexcept {
  if (result < 0) setLastErrorFromErrno();
  return result;
}

// The same for a transfer, where an open file refuses the access that it is not open for as no descriptor at
// all.
template <class Result>
std::int64_t notedTransfer(const File& file, Result result) noexcept {
  const bool refused = result < 0 && errno == EBADF && file.isOpen();
  if (noted(result) < 0 && refused) setLastError(kErrorAccessDenied);
  return result;
}

// Some failures of a write come with a signal that ends a host without a handler for it: beyond the limit on
// file sizes (RLIMIT_FSIZE), and where nobody reads a pipe any more. While the object lives the calling
// thread does not get it.
class WriteSignalHeld {
 public:
  WriteSignalHeld() noexcept {
    ::sigemptyset(&m_signals);
    for (const int signal : {SIGXFSZ, SIGPIPE}) ::sigaddset(&m_signals, signal);
    ::pthread_sigmask(SIG_BLOCK, &m_signals, &m_before);
  }
  ~WriteSignalHeld() {
    const int error = errno;
    if (m_came != 0 && ::sigismember(&m_before, m_came) == 0) Take(m_came);
    ::pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
    errno = error;
  }
  WriteSignalHeld(const WriteSignalHeld&) = delete;
  WriteSignalHeld& operator=(const WriteSignalHeld&) = delete;

  // REQUIRES: a write has failed.
  void NoteFailure() noexcept {
    if (errno == EFBIG) m_came = SIGXFSZ;
    if (errno == EPIPE) m_came = SIGPIPE;
  }

 private:
  static void Take(int signal) noexcept {
    constexpr timespec kAtOnce{};
    sigset_t pending;
    ::sigemptyset(&pending);
    ::sigaddset(&pending, signal);
    ::sigtimedwait(&pending, nullptr, &kAtOnce);
  }

  sigset_t m_signals;
  sigset_t m_before;
  int m_came = 0;
};

ssize_t writeSome(int descriptor, const char* data, std::size_t size) noexcept {
  WriteSignalHeld held;
  const ssize_t written = writeOrWait(descriptor, data, size);
  if (written < 0) held.NoteFailure();
  return written;
}

// Whether there is a folder of the user's own, no link, which then is nobody else's.
bool makeOwn(const char* folder) noexcept {
  const int descriptor = ::open(folder, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
  if (descriptor < 0) return false;
  struct stat status {};
  const bool own = ::fstat(descriptor, &status) == 0 && status.st_uid == ::geteuid() &&
                   ((status.st_mode & 07777) == 0700 || ::fchmod(descriptor, 0700) == 0);
  ::close(descriptor);
  return own;
}

// Of what is open by O_PATH, whatever it allows. Systems that are still in use know neither fchmod() for that
// nor fchmodat() without following links; the name that the kernel gives the descriptor follows none.
bool setReadOnly(int descriptor, bool readOnly) noexcept {
  struct stat status {};
  if (::fstat(descriptor, &status) != 0) return false;
  // The attribute means nothing for a folder's content, and a link has none.
  if (S_ISDIR(status.st_mode) || S_ISLNK(status.st_mode)) return true;
  const mode_t wanted = readOnly ? status.st_mode & ~kWriteBits : status.st_mode | S_IWUSR;
  if (wanted == status.st_mode) return true;
  char name[32];
  std::snprintf(name, sizeof name, "/proc/self/fd/%d", descriptor);
  return ::chmod(name, wanted & 07777) == 0;
}

}  // namespace

bool File::open(const char* path, FileAccess access, FileCreation creation,
                std::uint32_t attributes) noexcept {
  close();
  const LocalPath local(path);
  if (!local.valid()) return false;
  const bool readOnly = (attributes & kFileAttributeReadOnly) != 0;
  const mode_t mode = readOnly ? 0444 : 0666;
  const int descriptor = aboveStandard(openOrWait(local.text(), openFlags(access, creation), mode));
  if (descriptor < 0) return local.failed();

  struct stat status {};
  ::fstat(descriptor, &status);
  if (S_ISDIR(status.st_mode)) {  // the system opens one for reading
    ::close(descriptor);
    setLastError(kErrorAccessDenied);
    return false;
  }
  // A file that was there before becomes the new file, its attributes included.
  if (readOnly && creation == FileCreation::createAlways) ::fchmod(descriptor, status.st_mode & ~kWriteBits);
  handle_ = descriptor;
  return true;
}

std::int64_t File::read(void* buffer, std::size_t size) noexcept {
  return notedTransfer(*this, readOrWait(static_cast<int>(handle_), buffer, size));
}

bool File::write(const void* data, std::size_t size) noexcept {
  const char* next = static_cast<const char*>(data);
  do {
    const std::int64_t written = notedTransfer(*this, writeSome(static_cast<int>(handle_), next, size));
    if (written < 0) return false;
    if (written == 0 && size != 0) {  // no error and no progress: asking again would go on for ever
      setLastError(kErrorDiskFull);
      return false;
    }
    next += written;
    size -= static_cast<std::size_t>(written);
  } while (size != 0);
  return true;
}

std::int64_t File::size() const noexcept {
  struct stat status {};
  return noted(::fstat(static_cast<int>(handle_), &status)) < 0 ? -1 : std::int64_t{status.st_size};
}

std::int64_t File::seekToEnd() noexcept { return noted(::lseek(static_cast<int>(handle_), 0, SEEK_END)); }

std::int64_t File::seekTo(std::uint64_t position) noexcept {
  return noted(::lseek(static_cast<int>(handle_), static_cast<off_t>(position), SEEK_SET));
}

bool File::close() noexcept {
  if (!isOpen()) return true;
  // The descriptor is gone even when the call says that it was interrupted.
  if (::close(static_cast<int>(std::exchange(handle_, kNone))) == 0 || errno == EINTR) return true;
  setLastErrorFromErrno();
  return false;
}

bool File::keepToOwner() noexcept { return noted(::fchmod(static_cast<int>(handle_), 0600)) == 0; }

bool deleteFile(const char* path) noexcept {
  const LocalPath local(path);
  return local.valid() && (::unlink(local.text()) == 0 || local.failed());
}

bool createOwnDirectory(const char* path) noexcept {
  const LocalPath local(path);
  if (!local.valid()) return false;
  if (::mkdir(local.text(), 0700) == 0) return true;
  if (errno != EEXIST) return local.failed();
  if (makeOwn(local.text())) return true;
  setLastError(kErrorAccessDenied);
  return false;
}

bool setFileAttributes(const char* path, std::uint32_t attributes) noexcept {
  const LocalPath local(path);
  if (!local.valid()) return false;
  const int descriptor = ::open(local.text(), O_PATH | O_NOFOLLOW | O_CLOEXEC);
  if (descriptor < 0) return local.failed();
  const bool set = setReadOnly(descriptor, (attributes & kFileAttributeReadOnly) != 0) || local.failed();
  ::close(descriptor);
  return set;
}

std::optional<FileStamp> fileStamp(const char* path) noexcept {
  const LastErrorKeeper keeper;
  const LocalPath local(path);
  struct stat status {};
  if (!local.valid() || ::stat(local.text(), &status) != 0) return std::nullopt;
  return FileStamp{static_cast<std::uint64_t>(status.st_size),
                   std::int64_t{status.st_mtim.tv_sec} * 1'000'000'000 + status.st_mtim.tv_nsec};
}

std::size_t temporaryFolder(char* buffer, std::size_t size) noexcept {
  char own[64];
  const char* folder = ::secure_getenv("TMPDIR");
  if (folder == nullptr || *folder == '\0') {
    std::snprintf(own, sizeof own, "/tmp/zrm-qxkt-%u", static_cast<unsigned>(::geteuid()));
    if (!createOwnDirectory(own)) return 0;
    folder = own;
  }
  const char* const separator = std::string_view(folder).ends_with('/') ? "" : "/";
  const int length = std::snprintf(buffer, size, "%s%s", folder, separator);
  if (length > 0 && static_cast<std::size_t>(length) < size) return static_cast<std::size_t>(length);
  setLastError(kErrorInsufficientBuffer);
  return 0;
}

}  // namespace platform
