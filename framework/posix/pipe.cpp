// SPDX-License-Identifier: MIT
#include "framework/posix/pipe.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>

#include "framework/platform/stop_token.h"

namespace platform {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds kLook{20};  // at whether somebody has come to read a pipe: the system tells no event
constexpr milliseconds kLongWait{1000};  // a token without a handle is looked at that often

bool isPipe(const char* path) noexcept {
  struct stat status {};
  return ::stat(path, &status) == 0 && S_ISFIFO(status.st_mode);
}

bool stopped() noexcept {
  if (stopRequested()) errno = ECANCELED;
  return stopRequested();
}

// Until the pipe is ready for `events`, or will never be. False with ECANCELED when the thread has to stop.
bool waitForPipe(int descriptor, short events) noexcept {
  const StopToken* const stop = StopToken::current();
  pollfd watched[] = {{descriptor, events, 0},
                      {stop != nullptr ? static_cast<int>(stop->nativeHandle()) : -1, POLLIN, 0}};
  int ready = 0;
  while (!stopped()) {
    ready = ::poll(watched, 2, static_cast<int>(kLongWait.count()));
    if (ready > 0 && watched[0].revents != 0) return true;
    if (ready < 0 && errno != EINTR) return true;
  }
  return false;
}

// Repeats `call` until it is neither interrupted nor kept waiting by a pipe.
template <class Call>
ssize_t callOrWait(int descriptor, short events, Call call) noexcept {
  for (;;) {
    const ssize_t result = call();
    if (result >= 0 || (errno != EINTR && errno != EAGAIN)) return result;
    if (errno == EAGAIN && !waitForPipe(descriptor, events)) return -1;
  }
}

// The system refuses to open one for writing while nobody reads.
int openPipe(const char* path, int flags) noexcept {
  const StopToken* const stop = StopToken::current();
  for (;;) {
    const int descriptor = ::open(path, flags | O_NONBLOCK);
    if (descriptor >= 0 || (errno != ENXIO && errno != EINTR)) return descriptor;
    if (stop == nullptr) {
      ::poll(nullptr, 0, static_cast<int>(kLook.count()));
    } else if (stop->wait(kLook)) {
      errno = ECANCELED;
      return -1;
    }
  }
}

}  // namespace

int openOrWait(const char* path, int flags, mode_t mode) noexcept {
  if ((flags & O_EXCL) != 0 || !isPipe(path)) {
    int descriptor = ::open(path, flags, mode);
    while (descriptor < 0 && errno == EINTR) descriptor = ::open(path, flags, mode);
    return descriptor;
  }
  const int descriptor = openPipe(path, flags & ~(O_CREAT | O_TRUNC));
  if (descriptor < 0 || (flags & O_ACCMODE) != O_RDONLY || waitForPipe(descriptor, POLLIN)) return descriptor;
  ::close(descriptor);
  errno = ECANCELED;
  return -1;
}

ssize_t readOrWait(int descriptor, void* buffer, std::size_t size) noexcept {
  return callOrWait(descriptor, POLLIN, [&] { return ::read(descriptor, buffer, size); });
}

ssize_t writeOrWait(int descriptor, const void* data, std::size_t size) noexcept {
  return callOrWait(descriptor, POLLOUT, [&] { return ::write(descriptor, data, size); });
}

}  // namespace platform
