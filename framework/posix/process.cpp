// SPDX-License-Identifier: MIT
#include "framework/platform/process.h"

#include <dlfcn.h>

namespace platform {

void* processModule() noexcept {
  // Asked once: each call would count one more user of the handle.
  static void* const program = ::dlopen(nullptr, RTLD_LAZY);
  return program;
}

void initCommonControls() noexcept {}

// Nothing to start. A peer that went away must not end the host by SIGPIPE; since signals are the host's
// business, each send says so itself (MSG_NOSIGNAL).
bool startSockets() noexcept { return true; }

}  // namespace platform
