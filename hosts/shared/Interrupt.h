// SPDX-License-Identifier: MIT
// Ctrl-C as people expect it of a program that moves files: the first asks it to stop, the second ends it.
//
//   hosts::catchInterrupts();
//   client.use({.poll = [](const qx::Progress&) {
//     return hosts::isInterrupted() ? qx::Poll::cancel : qx::Poll::goOn;
//   }});
//   const hosts::OnInterrupt onInterrupt([&] { endableClient.end(); });
#pragma once

#include <atomic>
#include <functional>
#include <thread>

namespace hosts {

// What a program that was interrupted ends with, as shells have it.
inline constexpr int kInterruptedExitCode = 130;

// From now on the first Ctrl-C (also SIGTERM; on Windows also Ctrl-Break) only asks to stop, and any further
// one ends the process at once. On Linux the end of the terminal asks to stop as well, and ends nothing at
// once; it does neither where the process has been started to outlive it. System calls that wait are
// interrupted.
void catchInterrupts();

// Whether there was one. Any thread.
[[nodiscard]] bool isInterrupted() noexcept;

// Lets `act` run on a thread of its own behind the first Ctrl-C, at once where that has been. One at a time.
class OnInterrupt {
 public:
  explicit OnInterrupt(std::function<void()> act);
  // Waits for an `act` that runs; none begins any more.
  ~OnInterrupt();
  OnInterrupt(const OnInterrupt&) = delete;
  OnInterrupt& operator=(const OnInterrupt&) = delete;

 private:
  void run();

  const std::function<void()> m_act;
  std::atomic<bool> m_isOver = false;
  std::thread m_thread;  // last: all else is there when it starts
};

// Called by the system's handlers: the first call asks to stop, a second one ends the process. Safe in a
// handler of a signal.
void interrupt() noexcept;

// For tests: as if there had been none.
void forgetInterrupt() noexcept;

}  // namespace hosts
