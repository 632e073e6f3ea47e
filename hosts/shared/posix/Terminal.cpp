// SPDX-License-Identifier: MIT
#include "hosts/shared/Terminal.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <cstring>

#include "hosts/shared/Interrupt.h"

namespace hosts {
namespace {

// A Ctrl-C that came just before the reading began would not end it: it may come while that waits, and at no
// other moment.
class HeldSignals {
 public:
  HeldSignals() {
    sigset_t held;
    sigemptyset(&held);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) sigaddset(&held, signal);
    pthread_sigmask(SIG_BLOCK, &held, &m_before);
  }
  ~HeldSignals() { pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }
  HeldSignals(const HeldSignals&) = delete;
  HeldSignals& operator=(const HeldSignals&) = delete;

  // Whether there is something to read, or the end of it; false: a signal has come.
  [[nodiscard]] bool waitFor(int handle) const {
    pollfd waited{handle, POLLIN, 0};
    return ppoll(&waited, 1, nullptr, &m_before) == 1;
  }

 private:
  sigset_t m_before;
};

class Tty {
 public:
  Tty() : m_handle(open("/dev/tty", O_RDWR | O_CLOEXEC)) { m_isOpen = tcgetattr(m_handle, &m_before) == 0; }
  ~Tty() {
    if (m_isOpen) tcsetattr(m_handle, TCSAFLUSH, &m_before);
    if (m_handle >= 0) close(m_handle);
  }
  Tty(const Tty&) = delete;
  Tty& operator=(const Tty&) = delete;

  [[nodiscard]] bool isOpen() const { return m_isOpen; }

  void hideWhatIsTyped() const {
    termios hidden = m_before;
    hidden.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    tcsetattr(m_handle, TCSAFLUSH, &hidden);
  }

  void write(const std::string& text) const {
    [[maybe_unused]] const auto written = ::write(m_handle, text.data(), text.size());
  }

  // None at the end and when a signal comes.
  [[nodiscard]] std::optional<char> read() const {
    char c = 0;
    return m_signals.waitFor(m_handle) && ::read(m_handle, &c, 1) == 1 ? std::optional(c) : std::nullopt;
  }

 private:
  const HeldSignals m_signals;
  int m_handle;
  bool m_isOpen;
  termios m_before{};
};

}  // namespace

std::optional<std::string> ask(const std::string& question, Echo echo) {
  const Tty tty;
  if (!tty.isOpen() || isInterrupted()) return {};
  if (echo == Echo::off) tty.hideWhatIsTyped();
  tty.write(question);
  std::string line;
  for (auto c = tty.read(); c && *c != '\n'; c = tty.read()) line += *c;
  if (echo == Echo::off) tty.write("\n");
  return isInterrupted() ? std::nullopt : std::optional(line);
}

bool isTerminal(std::FILE* stream) { return isatty(fileno(stream)) == 1; }

std::size_t columnsOfErrorOutput() {
  if (!isTerminal(stderr)) return 0;
  winsize size{};
  const bool isKnown = ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
  return isKnown ? size.ws_col : 80;
}

bool takesColours(std::FILE* stream) {
  const char* const kind = std::getenv("TERM");
  const char* const unwanted = std::getenv("NO_COLOR");
  const bool isDumb = kind == nullptr || *kind == '\0' || std::strcmp(kind, "dumb") == 0;
  return isTerminal(stream) && !isDumb && (unwanted == nullptr || *unwanted == '\0');
}

// One that is closed gets a handle that refuses what is asked of it as a closed one does: the next file or
// socket would get its number, and with it what is meant for people.
void prepareStreams() {
  for (const int handle : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(handle, F_GETFD) >= 0) continue;
    [[maybe_unused]] const int refusing = open("/dev/null", handle == STDIN_FILENO ? O_WRONLY : O_RDONLY);
  }
}

}  // namespace hosts
