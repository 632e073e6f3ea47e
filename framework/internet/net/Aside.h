// SPDX-License-Identifier: MIT
// Calls of the system that may take long and cannot be given up: they run on a thread of their own, which
// cleans up after itself when nobody waits any more.
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <utility>

#include "framework/internet/net/Sock.h"
#include "framework/platform/stop_token.h"

namespace internet {

// Shared by the waiting thread and the errand's own; the last one frees it.
class Errand {
 public:
  virtual ~Errand() = default;
  // On its own thread. What it throws counts as a lack of memory.
  virtual void run() = 0;

  // Runs it and waits for its end. Fails (internet::Failure) with 12002 after the deadline and with 8 when it
  // throws or the system gives no thread. Leaves by platform::OperationStopped. The errand may still run
  // after either.
  static void await(const std::shared_ptr<Errand>& errand, const Deadline& deadline);

 private:
  static void runOnThread(void* argument);

  bool failed_ = false;  // written before, read after `finished_`
  std::atomic<bool> finished_{false};
  platform::StopToken done_;  // wakes the waiting thread
};

// What `work` returns, as Errand::await() waits for it. What it needs it owns.
template <class Result>
Result aside(std::function<Result()> work, const Deadline& deadline) {
  struct Work : Errand {
    explicit Work(std::function<Result()> toDo) : work(std::move(toDo)) {}
    void run() override { result = work(); }
    std::function<Result()> work;
    Result result{};  // written before, read after the end
  };
  const auto errand = std::make_shared<Work>(std::move(work));
  Errand::await(errand, deadline);
  return std::move(errand->result);
}

}  // namespace internet
