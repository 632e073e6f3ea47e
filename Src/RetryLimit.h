// SPDX-License-Identifier: MIT
// How often one call of an operation may run. OnIPError gives a connected client whose retry counter is spent
// one run more, after every connection that breaks. At a server that breaks all of them, or on a connection
// that is dead already, that would never end.
#pragma once

#include <cstdint>

// Runs that are made although the host's own retry count is used up.
inline constexpr std::uint32_t kMostGrantedRuns = 10;

class RetryLimit {
 public:
  // `ownRetries`: the host's count, as the call got it. `outer`: of the call that this one is a retry of.
  explicit RetryLimit(std::uint32_t ownRetries, const RetryLimit* outer = nullptr) noexcept
      : m_own(ownRetries), m_granted(outer != nullptr ? outer->m_granted : kMostGrantedRuns) {}

  // Whether a failed run is followed by another, which is taken off the counter.
  [[nodiscard]] bool TakeRun(std::uint32_t& counter) noexcept {
    std::uint32_t& left = m_own > 0 ? m_own : m_granted;
    if (counter == 0 || left == 0) return false;
    --left;
    --counter;
    return true;
  }

 private:
  std::uint32_t m_own;
  std::uint32_t m_granted;
};
