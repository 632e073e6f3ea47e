// SPDX-License-Identifier: MIT
#include "support/Messages.h"

#include <atomic>
#include <chrono>

namespace {

constexpr std::chrono::milliseconds kThreadWait{100};

bool isSet(const std::uint8_t& flag) {
  return std::atomic_ref<std::uint8_t>(const_cast<std::uint8_t&>(flag)).load(std::memory_order_acquire) != 0;
}

bool waitOver(const platform::WorkerThread* thread) {
  if (thread != nullptr) return thread->ended(kThreadWait);
  platform::yieldProcessor();
  return false;
}

}  // namespace

bool PumpMessages(platform::WindowHandle window, std::uint32_t firstMessage, std::uint32_t lastMessage) {
  const bool ofWindow = window != nullptr && platform::isWindow(window);
  while (ofWindow ? platform::dispatchOneMessage(window, firstMessage, lastMessage)
                  : platform::dispatchOneMessage(nullptr, 0, 0)) {
  }
  return true;
}

bool WaitWithMessages(const platform::WorkerThread* thread, const std::uint8_t* pKeepWaiting) {
  if (pKeepWaiting == nullptr) return false;
  while (!waitOver(thread) && isSet(*pKeepWaiting)) {
    if (platform::messageWaiting()) {
      platform::takeAndDispatchMessage();
    } else {
      PumpMessages(nullptr, 0, 0);
    }
  }
  return true;
}
