// SPDX-License-Identifier: MIT
#include "framework/platform/worker_thread.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <stdexcept>
#include <thread>
#include <type_traits>
#include <utility>

#include "framework/platform/last_error.h"

namespace {

using platform::StopToken;
using platform::WorkerThread;
using std::chrono::hours;
using std::chrono::milliseconds;

constexpr milliseconds kAmple = std::chrono::minutes(1);

void sleepUntilStopped(void*) { platform::stoppableSleep(hours(1)); }

// A worker that looks at nothing but its gate, as one that hangs in a callback of the host.
struct Gate {
  std::atomic<bool> open{false};
  std::atomic<int> visits{0};
  static void waitAt(void* gate) {
    while (!static_cast<Gate*>(gate)->open) platform::yieldProcessor();
  }
  static void visit(void* gate) {
    auto* self = static_cast<Gate*>(gate);
    if (++self->visits == 5) self->open = true;
  }
};

TEST(WorkerThread, RunsTheEntryWithItsArgumentOnAnotherThread) {
  std::thread::id ranOn;
  WorkerThread thread;
  EXPECT_FALSE(thread.started());
  EXPECT_TRUE(thread.ended());
  ASSERT_TRUE(thread.start([](void* id) { *static_cast<std::thread::id*>(id) = std::this_thread::get_id(); },
                           &ranOn));
  EXPECT_TRUE(thread.started());
  EXPECT_TRUE(thread.ended(kAmple));
  EXPECT_TRUE(thread.ended());
  thread.close();
  EXPECT_FALSE(thread.started());
  EXPECT_NE(ranOn, std::thread::id());
  EXPECT_NE(ranOn, std::this_thread::get_id());
}

TEST(WorkerThread, HasATokenOfItsOwnAndNoLastError) {
  struct Seen {
    StopToken* token = nullptr;
    std::uint32_t lastError = 77;
  } seen;
  StopToken callers;
  const StopToken::Scope scope(&callers);
  WorkerThread thread;
  ASSERT_TRUE(thread.start(
      [](void* argument) {
        *static_cast<Seen*>(argument) = {StopToken::current(), platform::lastError()};
        platform::setLastError(5);
      },
      &seen));
  platform::setLastError(13);
  ASSERT_TRUE(thread.ended(kAmple));
  EXPECT_NE(seen.token, nullptr);
  EXPECT_NE(seen.token, &callers);
  EXPECT_EQ(seen.lastError, 0u);
  EXPECT_EQ(platform::lastError(), 13u);
}

TEST(WorkerThread, WhatLeavesTheEntryEndsTheThreadAlone) {
  for (const WorkerThread::Entry entry : {
           +[](void*) { throw platform::OperationStopped{}; },
           +[](void*) { throw std::runtime_error("a worker's own"); },
           +[](void*) { throw 1; },
       }) {
    WorkerThread thread;
    ASSERT_TRUE(thread.start(entry, nullptr));
    EXPECT_TRUE(thread.ended(kAmple));
  }
}

TEST(WorkerThread, HasNotEndedWhileItsEntryRuns) {
  Gate gate;
  WorkerThread thread;
  ASSERT_TRUE(thread.start(&Gate::waitAt, &gate));
  EXPECT_FALSE(thread.ended());
  EXPECT_FALSE(thread.ended(milliseconds(5)));
  gate.open = true;
  EXPECT_TRUE(thread.ended(milliseconds::max()));
}

// The host's callbacks may leave thread-local objects behind, and their destructors are code of the thread,
// too.
TEST(WorkerThread, HasNotEndedWhileItsThreadLocalDestructorsRun) {
  static Gate atEntry;
  static Gate atExit;
  struct Slow {
    bool used = false;
    ~Slow() { Gate::waitAt(&atExit); }
  };
  WorkerThread thread;
  ASSERT_TRUE(thread.start(
      [](void*) {
        static thread_local Slow slow;
        slow.used = true;
        atEntry.open = true;
      },
      nullptr));
  Gate::waitAt(&atEntry);
  EXPECT_FALSE(thread.ended());
  EXPECT_FALSE(thread.ended(milliseconds(20)));
  atExit.open = true;
  EXPECT_TRUE(thread.ended(kAmple));
}

TEST(WorkerThread, StartsAgainAfterItsEndOnly) {
  Gate gate;
  WorkerThread thread;
  ASSERT_TRUE(thread.start(&Gate::waitAt, &gate));
  EXPECT_FALSE(thread.start(&Gate::waitAt, &gate));
  EXPECT_EQ(platform::lastError(), platform::kErrorInvalidParameter);
  gate.open = true;
  ASSERT_TRUE(thread.ended(kAmple));
  EXPECT_TRUE(thread.start(&Gate::waitAt, &gate));
  EXPECT_TRUE(thread.ended(kAmple));
}

TEST(WorkerThread, MovesWithItsThread) {
  static_assert(!std::is_copy_constructible_v<WorkerThread>);
  WorkerThread first;
  ASSERT_TRUE(first.start(&sleepUntilStopped, nullptr));
  WorkerThread second(std::move(first));
  EXPECT_FALSE(first.started());
  WorkerThread& alias = second;
  second = std::move(alias);
  EXPECT_TRUE(second.started());
  EXPECT_FALSE(second.ended());
  first = std::move(second);
  EXPECT_TRUE(first.kill(kAmple));
}

TEST(WorkerThread, AssigningEndsWhatWasThere) {
  WorkerThread thread;
  ASSERT_TRUE(thread.start(&sleepUntilStopped, nullptr));
  thread = WorkerThread();
  EXPECT_FALSE(thread.started());
}

TEST(WorkerThread, LeavesNothingRunningBehindItsDestructor) {
  std::atomic<bool> left{false};
  {
    WorkerThread thread;
    ASSERT_TRUE(thread.start(
        [](void* flag) {
          struct Leave {
            std::atomic<bool>& left;
            ~Leave() { left = true; }
          } const leave{*static_cast<std::atomic<bool>*>(flag)};
          platform::stoppableSleep(hours(1));
        },
        &left));
  }
  EXPECT_TRUE(left);
}

TEST(WorkerThread, AnyThreadMayRequestTheStop) {
  WorkerThread thread;
  thread.requestStop();
  ASSERT_TRUE(thread.start(&sleepUntilStopped, nullptr));
  std::thread one([&thread] { thread.requestStop(); });
  std::thread two([&thread] { EXPECT_TRUE(thread.ended(kAmple)); });
  EXPECT_TRUE(thread.kill(kAmple));
  one.join();
  two.join();
}

TEST(WorkerThreadKill, OfNothingIsDone) {
  WorkerThread thread;
  EXPECT_TRUE(thread.kill(milliseconds(0)));
  ASSERT_TRUE(thread.start([](void*) {}, nullptr));
  ASSERT_TRUE(thread.ended(kAmple));
  EXPECT_TRUE(thread.kill(kAmple));
  EXPECT_TRUE(thread.kill(kAmple));
}

TEST(WorkerThreadKill, UnwindsTheWorkerAndReturnsBehindItsEnd) {
  struct Unwound {
    bool done = false;
    bool behind = false;
  } seen;
  WorkerThread thread;
  ASSERT_TRUE(thread.start(
      [](void* argument) {
        auto* unwound = static_cast<Unwound*>(argument);
        const std::unique_ptr<bool, void (*)(bool*)> owner(&unwound->done, [](bool* done) { *done = true; });
        platform::stoppableSleep(hours(1));
        unwound->behind = true;
      },
      &seen));
  EXPECT_TRUE(thread.kill(kAmple));
  EXPECT_TRUE(seen.done);
  EXPECT_FALSE(seen.behind);
}

TEST(WorkerThreadKill, CallsTheCallerWhileTheWorkerHangs) {
  Gate gate;
  WorkerThread thread;
  ASSERT_TRUE(thread.start(&Gate::waitAt, &gate));
  EXPECT_TRUE(thread.kill(kAmple, &Gate::visit, &gate));
  EXPECT_GE(gate.visits, 5);
}

TEST(WorkerThreadKill, IsFinishedWhateverTheCallerThrows) {
  Gate gate;
  WorkerThread thread;
  ASSERT_TRUE(thread.start(&Gate::waitAt, &gate));
  const auto visitAndThrow = [](void* context) {
    Gate::visit(context);
    throw std::runtime_error("a message handler's own");
  };
  EXPECT_TRUE(thread.kill(kAmple, visitAndThrow, &gate));
  EXPECT_GE(gate.visits, 5);
}

TEST(WorkerThreadKill, MayBeEnteredAgainAndLoseItsObject) {
  struct Host {
    Gate gate;
    std::unique_ptr<WorkerThread> thread = std::make_unique<WorkerThread>();
    bool endedInside = false;
  } host;
  ASSERT_TRUE(host.thread->start(&Gate::waitAt, &host.gate));
  const auto handler = [](void* context) {
    auto* inside = static_cast<Host*>(context);
    if (!inside->thread) return;
    inside->endedInside = inside->thread->kill(kAmple, &Gate::visit, &inside->gate);
    inside->thread.reset();
  };
  EXPECT_TRUE(host.thread->kill(kAmple, handler, &host));
  EXPECT_TRUE(host.endedInside);
  EXPECT_EQ(host.thread, nullptr);
}

// A worker that waits for a worker of its own: the stop reaches the outer one, which ends the inner one.
TEST(WorkerThreadKill, TravelsIntoANestedWorker) {
  std::atomic<bool> innerRuns{false};
  WorkerThread outer;
  ASSERT_TRUE(outer.start(
      [](void* flag) {
        WorkerThread inner;
        ASSERT_TRUE(inner.start(
            [](void* runs) {
              *static_cast<std::atomic<bool>*>(runs) = true;
              platform::stoppableSleep(hours(1));
            },
            flag));
        while (!inner.ended(milliseconds(1))) platform::throwIfStopped();
      },
      &innerRuns));
  while (!innerRuns) platform::yieldProcessor();
  EXPECT_TRUE(outer.kill(kAmple));
}

}  // namespace
