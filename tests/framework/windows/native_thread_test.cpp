// SPDX-License-Identifier: MIT
// What the system's threads add on Windows: their own way to exit, priorities, messages that wake a kill.
#include <gtest/gtest.h>

#include <atomic>

#include "framework/platform/message_queue.h"
#include "framework/platform/worker_thread.h"
#include "framework/windows/windows_api.h"

namespace {

using platform::WorkerThread;

constexpr std::chrono::milliseconds kLongEnough = std::chrono::minutes(1);

TEST(NativeThread, ACallbackMayExitTheThread) {
  WorkerThread thread;
  ASSERT_TRUE(thread.start([](void*) { ::ExitThread(0); }, nullptr));
  EXPECT_TRUE(thread.ended(kLongEnough));
}

TEST(NativeThread, TakesNormalPriority) {
  struct Worker {
    std::atomic<bool> mayAsk{false};
    int priority = -1;
  } worker;
  WorkerThread thread;
  thread.setNormalPriority();  // nothing to set yet
  ASSERT_TRUE(thread.start(
      [](void* argument) {
        auto* self = static_cast<Worker*>(argument);
        ::SetThreadPriority(::GetCurrentThread(), THREAD_PRIORITY_BELOW_NORMAL);
        self->mayAsk = true;
        while (self->mayAsk) platform::yieldProcessor();
        self->priority = ::GetThreadPriority(::GetCurrentThread());
      },
      &worker));
  while (!worker.mayAsk) platform::yieldProcessor();
  thread.setNormalPriority();
  worker.mayAsk = false;
  ASSERT_TRUE(thread.ended(kLongEnough));
  EXPECT_EQ(worker.priority, THREAD_PRIORITY_NORMAL);
}

// The caller's messages go on while its worker hangs; here the last of them sets the worker free.
TEST(NativeThread, MessagesAreDispatchedDuringAKill) {
  std::atomic<bool> open{false};
  WorkerThread thread;
  ASSERT_TRUE(thread.start(
      [](void* gate) {
        while (!*static_cast<std::atomic<bool>*>(gate)) platform::yieldProcessor();
      },
      &open));
  for (int i = 0; i < 2; ++i) ::PostThreadMessageA(::GetCurrentThreadId(), WM_APP, 0, 0);
  const auto takeOne = [](void* gate) {
    if (platform::messageWaiting()) {
      platform::takeAndDispatchMessage();
    } else {
      *static_cast<std::atomic<bool>*>(gate) = true;
    }
  };
  EXPECT_TRUE(thread.kill(kLongEnough, takeOne, &open));
  EXPECT_FALSE(platform::messageWaiting());
}

}  // namespace
