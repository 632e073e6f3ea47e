// SPDX-License-Identifier: MIT
// How often one call of an operation may run. OnIPError gives a connected client whose retry counter is spent
// one run more, after every connection that breaks. At a server that breaks all of them that would never end,
// and one that stalls would hold its caller for the time-out of each.
#pragma once

#include <cstdint>

#include "framework/internet/net/InternetErrors.h"

// Runs that are made although the host's own retry count is used up: in all, and after a time-out.
inline constexpr std::uint32_t kMostGrantedRuns = 3;
inline constexpr std::uint32_t kMostGrantedAfterTimeout = 1;

// Why a run has failed, as far as it matters to the next one.
struct RunFailure {
  std::uint32_t error = 0;
  bool connectionLost = false;  // for good: the next run would find it dead
};

class RetryLimit {
 public:
  // `ownRetries`: the host's count, as the call got it. `outer`: of the call that this one is a retry of.
  explicit RetryLimit(std::uint32_t ownRetries, const RetryLimit* outer = nullptr) noexcept
      : m_own(ownRetries), m_granted(outer != nullptr ? outer->m_granted : Granted()) {}

  // Whether a failed run is followed by another, which is taken off the counter.
  [[nodiscard]] bool TakeRun(std::uint32_t& counter, const RunFailure& failure) noexcept {
    if (counter == 0 || !(TakeOwn() || m_granted.Take(failure))) return false;
    --counter;
    return true;
  }

 private:
  struct Granted {
    std::uint32_t left = kMostGrantedRuns;
    std::uint32_t leftAfterTimeout = kMostGrantedAfterTimeout;

    bool Take(const RunFailure& failure) noexcept {
      const bool timedOut = failure.error == internet::kTimeout;
      if (failure.connectionLost || left == 0 || (timedOut && leftAfterTimeout == 0)) return false;
      --left;
      if (timedOut) --leftAfterTimeout;
      return true;
    }
  };

  bool TakeOwn() noexcept {
    if (m_own == 0) return false;
    --m_own;
    return true;
  }

  std::uint32_t m_own;
  Granted m_granted;
};
