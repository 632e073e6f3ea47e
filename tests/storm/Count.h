// SPDX-License-Identifier: MIT
// A number that only rises, and that other threads wait for. (std::atomic has a wait of its own, but the one
// of the MinGW library loses wake-ups.)
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace storm {

class Count {
 public:
  void add() {
    const std::lock_guard lock(m_mutex);
    ++m_value;
    m_changed.notify_all();
  }
  [[nodiscard]] int value() const {
    const std::lock_guard lock(m_mutex);
    return m_value;
  }
  void waitFor(int value) const {
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [&] { return m_value >= value; });
  }
  // The same for `limit` at most. Whether it came.
  bool waitFor(int value, std::chrono::milliseconds limit) const {
    std::unique_lock lock(m_mutex);
    return m_changed.wait_for(lock, limit, [&] { return m_value >= value; });
  }

 private:
  mutable std::mutex m_mutex;
  mutable std::condition_variable m_changed;
  int m_value = 0;
};

}  // namespace storm
