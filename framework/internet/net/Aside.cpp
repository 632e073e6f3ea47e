// SPDX-License-Identifier: MIT
#include "framework/internet/net/Aside.h"

#include <cstdint>

#include "framework/internet/net/Failure.h"
#include "framework/internet/net/InternetErrors.h"
#include "framework/platform/last_error.h"
#include "framework/platform/resolver.h"

namespace internet {

void Errand::runOnThread(void* argument) {
  const std::unique_ptr<std::shared_ptr<Errand>> owner(static_cast<std::shared_ptr<Errand>*>(argument));
  Errand& errand = **owner;
  try {
    errand.run();
  } catch (...) {
    errand.failed_ = true;
  }
  errand.finished_.store(true, std::memory_order_release);
  errand.done_.raise();
}

void Errand::await(const std::shared_ptr<Errand>& errand, const Deadline& deadline) {
  const std::intptr_t done = errand->done_.nativeHandle();
  if (done == platform::StopToken::kNoHandle) fail(platform::kErrorNotEnoughMemory);
  auto argument = std::make_unique<std::shared_ptr<Errand>>(errand);
  if (!platform::startDetachedThread(runOnThread, argument.get())) fail(platform::kErrorNotEnoughMemory);
  // The thread's own from here on.
  static_cast<void>(argument.release());

  while (!errand->finished_.load(std::memory_order_acquire)) {
    if (!wait({}, deadline, done)) fail(kTimeout);
  }
  if (errand->failed_) fail(platform::kErrorNotEnoughMemory);
}

}  // namespace internet
