// SPDX-License-Identifier: MIT
#include "hosts/shared/Interrupt.h"

#include <csignal>

namespace hosts {

void catchInterrupts() {
  struct sigaction action {};
  action.sa_handler = [](int) { interrupt(); };
  for (const int signal : {SIGINT, SIGTERM}) sigaction(signal, &action, nullptr);
}

}  // namespace hosts
