// SPDX-License-Identifier: MIT
#include "framework/platform/lock_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "framework/platform/last_error.h"
#include "framework/posix/local_path.h"

namespace platform {
namespace {

// Whether `path` still names what is open: a holder deletes the file when it gives it up.
bool isNamed(int descriptor, const char* path) noexcept {
  struct stat opened {};
  struct stat named {};
  return ::fstat(descriptor, &opened) == 0 && ::lstat(path, &named) == 0 && opened.st_dev == named.st_dev &&
         opened.st_ino == named.st_ino;
}

}  // namespace

LockFile::~LockFile() {
  if (!held()) return;
  ::unlink(path_.c_str());  // while nobody else can have it
  ::close(static_cast<int>(handle_));
}

bool LockFile::take(const char* path) {
  const LocalPath local(path);
  if (!local.valid()) return false;
  path_ = local.text();
  for (;;) {
    const int descriptor = ::open(local.text(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600);
    if (descriptor < 0) return local.failed();
    const bool locked = ::flock(descriptor, LOCK_EX | LOCK_NB) == 0;
    if (locked && isNamed(descriptor, local.text())) {
      handle_ = descriptor;
      return true;
    }
    const bool elsewhere = !locked && errno == EWOULDBLOCK;
    if (elsewhere) setLastError(kErrorSharingViolation);
    if (!locked && !elsewhere) local.failed();
    ::close(descriptor);
    if (!locked) return false;
  }
}

}  // namespace platform
