// SPDX-License-Identifier: MIT
#include "framework/platform/resolver.h"

#include <arpa/inet.h>
#include <dlfcn.h>
#include <netdb.h>
#include <netinet/in.h>
#include <pthread.h>
#include <signal.h>
#include <sys/socket.h>

#include "framework/platform/native_address.h"

namespace platform {

namespace {

struct Start {
  void (*entry)(void*);
  void* argument;
};

void* runDetached(void* start) {
  // The host's signals are for the host's threads.
  sigset_t all;
  sigfillset(&all);
  pthread_sigmask(SIG_SETMASK, &all, nullptr);
  const std::unique_ptr<Start> owned(static_cast<Start*>(start));
  owned->entry(owned->argument);
  return nullptr;
}

// A thread cannot unload the code that it runs, so the library stays for good once it has left a thread
// behind.
void keepLibraryLoaded() noexcept {
  Dl_info self{};
  if (dladdr(reinterpret_cast<const void*>(&keepLibraryLoaded), &self) == 0 || !self.dli_fname) return;
  // Never closed again: that is the purpose.
  static_cast<void>(dlopen(self.dli_fname, RTLD_LAZY | RTLD_NOLOAD | RTLD_NODELETE));
}

}  // namespace

std::vector<SocketAddress> lookUpAddresses(const std::string& host, std::uint16_t port) {
  return nativeLookUp(host, port, 0);
}

std::vector<SocketAddress> numericAddresses(const std::string& host, std::uint16_t port) {
  return nativeLookUp(host, port, AI_NUMERICHOST);
}

bool startDetachedThread(void (*entry)(void*), void* argument) noexcept {
  keepLibraryLoaded();
  const auto start = new (std::nothrow) Start{entry, argument};
  if (!start) return false;
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
  pthread_t thread;
  const bool started = pthread_create(&thread, &attributes, runDetached, start) == 0;
  pthread_attr_destroy(&attributes);
  if (!started) delete start;
  return started;
}

}  // namespace platform
