// SPDX-License-Identifier: MIT
// What the system's threads add on POSIX: their own way to exit, signals, scheduling, limits.
#include <gtest/gtest.h>
#include <pthread.h>
#include <sched.h>
#include <signal.h>
#include <sys/resource.h>

#include <atomic>
#include <thread>

#include "framework/platform/last_error.h"
#include "framework/platform/worker_thread.h"

namespace {

using platform::WorkerThread;

constexpr std::chrono::milliseconds kLongEnough = std::chrono::minutes(1);

TEST(NativeThread, ACallbackMayExitTheThread) {
  WorkerThread thread;
  ASSERT_TRUE(thread.start([](void*) { pthread_exit(nullptr); }, nullptr));
  EXPECT_TRUE(thread.ended(kLongEnough));
}

sigset_t maskOfAWorker() {
  sigset_t mask;
  sigfillset(&mask);
  WorkerThread thread;
  EXPECT_TRUE(thread.start(
      [](void* target) { pthread_sigmask(SIG_SETMASK, nullptr, static_cast<sigset_t*>(target)); }, &mask));
  EXPECT_TRUE(thread.ended(kLongEnough));
  return mask;
}

TEST(NativeThread, TakesOnlyTheSignalsOfItsOwnFaults) {
  sigset_t before;
  pthread_sigmask(SIG_SETMASK, nullptr, &before);
  const sigset_t workers = maskOfAWorker();
  for (const int signal : {SIGINT, SIGTERM, SIGCHLD, SIGALRM, SIGUSR1, SIGPIPE, SIGWINCH})
    EXPECT_EQ(sigismember(&workers, signal), 1) << signal;
  for (const int signal : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT})
    EXPECT_EQ(sigismember(&workers, signal), 0) << signal;

  sigset_t after;
  pthread_sigmask(SIG_SETMASK, nullptr, &after);
  for (int signal = 1; signal < NSIG; ++signal)
    EXPECT_EQ(sigismember(&after, signal), sigismember(&before, signal)) << signal;
}

// A runtime with a garbage collector waited for ever for a worker that had called a hook: the signal by which
// it stops threads was blocked there.
TEST(NativeThread, TakesTheRealTimeSignalsThatItsStarterTakes) {
  sigset_t before;
  sigset_t one;
  sigemptyset(&one);
  sigaddset(&one, SIGRTMIN + 1);
  pthread_sigmask(SIG_BLOCK, &one, &before);
  const sigset_t workers = maskOfAWorker();
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
  EXPECT_EQ(sigismember(&workers, SIGRTMIN), sigismember(&before, SIGRTMIN));
  EXPECT_EQ(sigismember(&workers, SIGRTMIN + 1), 1);
  EXPECT_EQ(sigismember(&workers, SIGRTMAX), sigismember(&before, SIGRTMAX));
}

int policyOf(pthread_t thread) {
  int policy = -1;
  sched_param parameters{};
  pthread_getschedparam(thread, &policy, &parameters);
  return policy;
}

TEST(NativeThread, TakesNormalPriorityWhateverItsCallerHas) {
  std::thread([] {
    const sched_param none{};
    ASSERT_EQ(pthread_setschedparam(pthread_self(), SCHED_BATCH, &none), 0);
    std::atomic<pthread_t> id{};
    WorkerThread thread;
    thread.setNormalPriority();  // nothing to set yet
    ASSERT_TRUE(thread.start(
        [](void* self) {
          *static_cast<std::atomic<pthread_t>*>(self) = pthread_self();
          platform::stoppableSleep(std::chrono::hours(1));
        },
        &id));
    while (id == pthread_t{}) platform::yieldProcessor();
    EXPECT_EQ(policyOf(id), SCHED_BATCH);
    thread.setNormalPriority();
    EXPECT_EQ(policyOf(id), SCHED_OTHER);
    EXPECT_TRUE(thread.kill(kLongEnough));
    thread.setNormalPriority();  // nothing to set any more
  }).join();
}

TEST(NativeThread, AStartWithoutDescriptorsFails) {
  rlimit usual{};
  ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &usual), 0);
  const rlimit none{0, usual.rlim_max};
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
  WorkerThread thread;
  const bool started = thread.start([](void*) {}, nullptr);
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &usual), 0);
  EXPECT_FALSE(started);
  EXPECT_FALSE(thread.started());
  EXPECT_EQ(platform::lastError(), platform::kErrorNotEnoughMemory);
}

}  // namespace
