// SPDX-License-Identifier: MIT
#include "hosts/shared/Screen.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdio>

namespace hosts {

std::size_t columnsOfErrorOutput() {
  if (isatty(STDERR_FILENO) == 0) return 0;
  winsize size{};
  const bool isKnown = ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
  return isKnown ? size.ws_col : 80;
}

bool canAsk() { return isatty(STDIN_FILENO) != 0 && isatty(STDERR_FILENO) != 0; }

// Not by the buffered input, which would read on after a signal.
std::optional<std::string> ask(const std::string& question) {
  std::fprintf(stderr, "%s", question.c_str());
  std::fflush(stderr);
  std::string line;
  for (char c = 0; c != '\n';) {
    if (read(STDIN_FILENO, &c, 1) != 1) return {};
    line += c;
  }
  line.pop_back();
  return line;
}

}  // namespace hosts
