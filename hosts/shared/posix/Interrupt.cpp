// SPDX-License-Identifier: MIT
#include "hosts/shared/Interrupt.h"

#include <csignal>

namespace hosts {

namespace {

void catchSignal(int signal, void (*handler)(int)) {
  struct sigaction action {};
  action.sa_handler = handler;
  sigaction(signal, &action, nullptr);
}

bool isIgnored(int signal) {
  struct sigaction action {};
  return sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

}  // namespace

// The end of the terminal is told by the system and by the shell; whoever has started the program with nohup
// wants it to go on.
void catchInterrupts() {
  for (const int signal : {SIGINT, SIGTERM}) catchSignal(signal, [](int) { interrupt(); });
  if (isIgnored(SIGHUP)) return;
  catchSignal(SIGHUP, [](int) {
    if (!isInterrupted()) interrupt();
  });
}

}  // namespace hosts
