// SPDX-License-Identifier: MIT
// What the system's threads add on Windows: their own way to exit, priorities, messages that wake a kill.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

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

// A worker that goes on until its gate opens.
class HeldWorker {
 public:
  HeldWorker() {
    const bool started = thread.start(
        [](void* gate) {
          while (!*static_cast<std::atomic<bool>*>(gate)) platform::yieldProcessor();
        },
        &open);
    EXPECT_TRUE(started);
  }
  ~HeldWorker() {
    open = true;
    EXPECT_TRUE(thread.ended(kLongEnough));
  }
  HeldWorker(const HeldWorker&) = delete;
  HeldWorker& operator=(const HeldWorker&) = delete;

  std::atomic<bool> open{false};
  WorkerThread thread;
};

// Callers that had nothing to ask looked for messages all the time, each time at Wine's server, which their
// workers then waited for.
TEST(NativeThread, ATurnWithoutAMessageSleeps) {
  while (platform::messageWaiting()) platform::takeAndDispatchMessage();
  HeldWorker worker;
  const auto before = std::chrono::steady_clock::now();
  EXPECT_FALSE(worker.thread.messageBeforeEnd());
  EXPECT_GE(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(4))
      << "or a tick too little";
}

TEST(NativeThread, AMessageEndsATurn) {
  HeldWorker worker;
  ::PostThreadMessageA(::GetCurrentThreadId(), WM_APP, 0, 0);
  EXPECT_TRUE(worker.thread.messageBeforeEnd());
  static_cast<void>(platform::messageWaiting());  // what has been seen and left counts as well
  EXPECT_TRUE(worker.thread.messageBeforeEnd());
  platform::takeAndDispatchMessage();
  const DWORD caller = ::GetCurrentThreadId();
  std::thread([&] { ::PostThreadMessageA(caller, WM_APP, 0, 0); }).join();
  EXPECT_TRUE(worker.thread.messageBeforeEnd());
  platform::takeAndDispatchMessage();
}

TEST(NativeThread, TheEndOfTheWorkerEndsATurn) {
  HeldWorker worker;
  worker.open = true;
  while (!worker.thread.ended()) EXPECT_FALSE(worker.thread.messageBeforeEnd());
  EXPECT_FALSE(worker.thread.messageBeforeEnd());
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
