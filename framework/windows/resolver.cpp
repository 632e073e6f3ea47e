// SPDX-License-Identifier: MIT
#include "framework/platform/resolver.h"

#include "framework/windows/windows_api.h"
// After the wrapper, which brings winsock2.h.
#include <ws2tcpip.h>

#include "framework/platform/native_address.h"
#include "framework/platform/process.h"

namespace platform {

namespace {

struct Start {
  void (*entry)(void*);
  void* argument;
  HMODULE library;  // held until the thread has ended
};

DWORD WINAPI runDetached(void* parameter) {
  HMODULE library = nullptr;
  {
    const std::unique_ptr<Start> start(static_cast<Start*>(parameter));
    library = start->library;
    start->entry(start->argument);
  }
  // Lets go of the library and ends the thread in one call, which runs outside the library.
  FreeLibraryAndExitThread(library, 0);
}

}  // namespace

std::vector<SocketAddress> lookUpAddresses(const std::string& host, std::uint16_t port) {
  if (!startSockets()) return {};
  return nativeLookUp(host, port, 0);
}

std::vector<SocketAddress> numericAddresses(const std::string& host, std::uint16_t port) {
  if (!startSockets()) return {};
  return nativeLookUp(host, port, AI_NUMERICHOST);
}

bool startDetachedThread(void (*entry)(void*), void* argument) noexcept {
  std::unique_ptr<Start> start(new (std::nothrow) Start{entry, argument, nullptr});
  if (!start) return false;
  if (!GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS, reinterpret_cast<const char*>(&runDetached),
                          &start->library)) {
    return false;
  }
  const HANDLE thread = CreateThread(nullptr, 0, runDetached, start.get(), 0, nullptr);
  if (!thread) {
    FreeLibrary(start->library);
    return false;
  }
  CloseHandle(thread);
  // The thread's own from here on.
  static_cast<void>(start.release());
  return true;
}

}  // namespace platform
