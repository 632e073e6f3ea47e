// SPDX-License-Identifier: MIT
// Who wants a turn while a thread waits for the network. A host that keeps its windows alive on the thread
// that waits gets its turns like this.
#pragma once

#include <chrono>
#include <functional>

namespace platform {

// As long as it lives, a wait for the network on the thread that made it calls `look` every `interval`; waits
// that end sooner count together. What `look` throws leaves the wait. A wait within `look` calls nothing.
class WaitWatch {
 public:
  WaitWatch(std::chrono::milliseconds interval, std::function<void()> look);
  ~WaitWatch();
  WaitWatch(const WaitWatch&) = delete;
  WaitWatch& operator=(const WaitWatch&) = delete;

  // For the waits: how long the calling thread may sleep until its watch wants to look, at most `limit`.
  [[nodiscard]] static std::chrono::milliseconds sleepAtMost(std::chrono::milliseconds limit) noexcept;
  // For the waits: looks, when it is time for that.
  static void lookIfDue();

 private:
  const std::chrono::milliseconds interval_;
  const std::function<void()> look_;
  std::chrono::steady_clock::time_point due_;
  WaitWatch* const outer_;
};

}  // namespace platform
