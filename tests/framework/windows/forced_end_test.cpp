// SPDX-License-Identifier: MIT
// The last resort, in a program of its own: whatever a thread held when it was ended by force stays held.
#include <gtest/gtest.h>

#include "framework/platform/worker_thread.h"
#include "framework/windows/windows_api.h"
#include "tests/support/ProcessCounters.h"

namespace {

using platform::WorkerThread;
using testing_support::processCounters;

// Hangs as a callback of the host might, looking at nothing and holding nothing.
void hang(void* started) {
  ::SetEvent(started);
  // allowed: Sleep: the worker that never reacts
  ::Sleep(INFINITE);
}

bool startAndEndByForce(HANDLE started) {
  WorkerThread thread;
  if (!thread.start(&hang, started)) return false;
  ::WaitForSingleObject(started, INFINITE);
  int visits = 0;
  const bool byItself = thread.kill(
      std::chrono::milliseconds(50), [](void* count) { ++*static_cast<int*>(count); }, &visits);
  return !byItself && thread.ended() && visits > 0;
}

// The compiler's run time keeps two handles for a thread that has used a thread-local variable, and closes
// them when the thread leaves by itself. Ours are closed in any case.
constexpr int kRunTimeHandles = 2;

TEST(ForcedEnd, ComesAfterTheBoundAndLeavesNoHandleOfOurs) {
  const HANDLE started = ::CreateEventA(nullptr, FALSE, FALSE, nullptr);
  ASSERT_TRUE(startAndEndByForce(started));
  const auto before = processCounters();
  constexpr int kRounds = 10;
  for (int i = 0; i < kRounds; ++i) ASSERT_TRUE(startAndEndByForce(started)) << i;
  const auto after = processCounters();
  EXPECT_EQ(after.threads, before.threads);
  EXPECT_LE(after.handles, before.handles + kRounds * kRunTimeHandles);
  ::CloseHandle(started);
}

}  // namespace
