// SPDX-License-Identifier: MIT
#include "framework/platform/resolver.h"

#include <arpa/inet.h>
#include <dlfcn.h>
#include <netdb.h>
#include <netinet/in.h>
#include <pthread.h>
#include <signal.h>
#include <sys/socket.h>

#include <memory>
#include <new>

#include "framework/platform/native_address.h"

namespace platform {

namespace {

// A thread cannot unload the code that it runs. So its hold on the library is a thread-specific value whose
// destructor is the system's own dlclose(): that runs once the thread has left the library for good.
class ThreadsHold {
 public:
  ThreadsHold() noexcept {
    using Destructor = void (*)(void*);
    // What dlclose() returns there is nobody's.
    const auto close = reinterpret_cast<void (*)()>(&dlclose);
    made_ = pthread_key_create(&key_, reinterpret_cast<Destructor>(close)) == 0;
  }
  ~ThreadsHold() {
    if (made_) pthread_key_delete(key_);
  }
  ThreadsHold(const ThreadsHold&) = delete;
  ThreadsHold& operator=(const ThreadsHold&) = delete;

  // The calling thread's from here on; for good where the system takes no note of it.
  void give(void* library) const noexcept {
    if (made_ && library) pthread_setspecific(key_, library);
  }

 private:
  pthread_key_t key_{};
  bool made_ = false;
};

const ThreadsHold& threadsHold() noexcept {
  static const ThreadsHold theHold;
  return theHold;
}

// Null in a program that has no library around this code.
void* holdLibrary() noexcept {
  Dl_info self{};
  if (dladdr(reinterpret_cast<const void*>(&holdLibrary), &self) == 0 || !self.dli_fname) return nullptr;
  return dlopen(self.dli_fname, RTLD_LAZY | RTLD_NOLOAD);
}

struct Start {
  void (*entry)(void*);
  void* argument;
  void* library;  // held until the thread has ended
};

void* runDetached(void* start) {
  // The host's signals are for the host's threads.
  sigset_t all;
  sigfillset(&all);
  pthread_sigmask(SIG_SETMASK, &all, nullptr);
  const std::unique_ptr<Start> owned(static_cast<Start*>(start));
  threadsHold().give(owned->library);
  owned->entry(owned->argument);
  return nullptr;
}

}  // namespace

std::vector<SocketAddress> lookUpAddresses(const std::string& host, std::uint16_t port) {
  return nativeLookUp(host, port, 0);
}

std::vector<SocketAddress> numericAddresses(const std::string& host, std::uint16_t port) {
  return nativeLookUp(host, port, AI_NUMERICHOST);
}

bool startDetachedThread(void (*entry)(void*), void* argument) noexcept {
  std::unique_ptr<Start> start(new (std::nothrow) Start{entry, argument, nullptr});
  if (!start) return false;
  start->library = holdLibrary();
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
  pthread_t thread;
  const bool started = pthread_create(&thread, &attributes, runDetached, start.get()) == 0;
  pthread_attr_destroy(&attributes);
  if (!started) {
    if (start->library) dlclose(start->library);
    return false;
  }
  // The thread's own from here on.
  static_cast<void>(start.release());
  return true;
}

}  // namespace platform
