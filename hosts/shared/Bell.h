// SPDX-License-Identifier: MIT
// How a handler of a signal, which may not lock, wakes a thread.
#pragma once

#include <functional>
#include <thread>

namespace hosts {

class Bell {
 public:
  Bell();
  ~Bell();
  Bell(const Bell&) = delete;
  Bell& operator=(const Bell&) = delete;

  // Safe in a handler of a signal.
  void ring() noexcept;
  // Until it rings; at once where it has rung since the last wait. One thread at a time, which has to look
  // why.
  void wait() noexcept;

 private:
  void* m_handle;  // the system's
};

// The signals of the process come to other threads: there they interrupt what waits.
std::thread threadWithoutSignals(std::function<void()> work);

}  // namespace hosts
