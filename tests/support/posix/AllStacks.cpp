// SPDX-License-Identifier: MIT
// Every thread is interrupted by a signal and stores its own return addresses; addr2line then names them.
#include "tests/support/AllStacks.h"

#include <dlfcn.h>
#include <execinfo.h>
#include <semaphore.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <string>

namespace testing_support {
namespace {

constexpr int kMostFrames = 100;
constexpr int kSecondsPerThread = 2;
constexpr unsigned kSecondsForAll = 60;

void* frames[kMostFrames];
int frameCount = 0;
sem_t stored;
// The thread whose stack is wanted; one that answers too late must not write into another's.
std::atomic<long> wanted{0};

int stackSignal() { return SIGRTMAX - 1; }

void storeStack(int) {
  if (syscall(SYS_gettid) != wanted) return;
  const int savedError = errno;
  frameCount = backtrace(frames, kMostFrames);
  sem_post(&stored);
  errno = savedError;
}

// False when the thread does not react (it ended, or its signal is held back).
bool askThread(int thread) {
  wanted = thread;
  if (syscall(SYS_tgkill, getpid(), thread, stackSignal()) != 0) return false;
  timespec until{};
  clock_gettime(CLOCK_REALTIME, &until);
  until.tv_sec += kSecondsPerThread;
  int result = 0;
  while ((result = sem_timedwait(&stored, &until)) != 0 && errno == EINTR) continue;
  wanted = 0;
  return result == 0;
}

// Function and line of an address; empty where addr2line is missing or knows nothing.
std::string sourceLine(const char* module, std::uintptr_t offset) {
  char command[1200];
  std::snprintf(command, sizeof command, "addr2line -Cfipe '%s' 0x%zx 2>/dev/null", module, offset);
  std::string text;
  if (FILE* output = popen(command, "r")) {
    char line[1024];
    while (std::fgets(line, sizeof line, output) != nullptr) text += line;
    pclose(output);
  }
  return text.starts_with("??") ? "" : text;
}

void printFrame(void* address) {
  Dl_info module{};
  if (dladdr(address, &module) == 0 || module.dli_fname == nullptr) {
    std::fprintf(stderr, "    %p\n", address);
    return;
  }
  const auto offset =
      reinterpret_cast<std::uintptr_t>(address) - reinterpret_cast<std::uintptr_t>(module.dli_fbase);
  // A return address belongs to the line after the call, so look one byte earlier.
  const std::string line = sourceLine(module.dli_fname, offset - 1);
  std::fprintf(stderr, "    %s+0x%zx %s%s", module.dli_fname, offset,
               module.dli_sname != nullptr ? module.dli_sname : "", line.empty() ? "\n" : "\n      ");
  if (!line.empty()) std::fputs(line.c_str(), stderr);
}

void printThread(int thread) {
  std::fprintf(stderr, "  thread %d:\n", thread);
  if (!askThread(thread)) {
    std::fputs("    does not answer\n", stderr);
    return;
  }
  for (int index = 0; index < frameCount; ++index) printFrame(frames[index]);
}

}  // namespace

void prepareStackPrinting() {
  sem_init(&stored, 0, 0);
  // The first backtrace() loads a library, which a signal handler must not do.
  backtrace(frames, kMostFrames);
  struct sigaction action {};
  action.sa_handler = storeStack;
  action.sa_flags = SA_RESTART;
  sigaction(stackSignal(), &action, nullptr);
}

void printAllStacks() {
  // Should even the printing hang.
  std::signal(SIGALRM, [](int) { _exit(42); });
  alarm(kSecondsForAll);
  const auto self = static_cast<int>(syscall(SYS_gettid));
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/task"))
    if (const auto thread = static_cast<int>(std::strtol(entry.path().filename().c_str(), nullptr, 10));
        thread != self)
      printThread(thread);
}

void endProcess(int exitCode) { _exit(exitCode); }

int leaveMain(int exitCode) { return exitCode; }

void disableErrorBoxes() {}

}  // namespace testing_support
