// SPDX-License-Identifier: MIT
// Whether a storm has left the process as it was.
#pragma once

#include <cstdint>

#include "tests/support/ProcessCounters.h"

namespace storm {

// Takes the counts when it is made.
class Health {
 public:
  Health() : m_before(testing_support::processCounters()) {}

  // Expects threads and handles back, and memory grown by no more than the slack (the allocator keeps some).
  void expectBack(std::uint64_t memorySlack) const;

 private:
  testing_support::ProcessCounters m_before;
};

// Allocates, frees and throws on several threads at once: hangs or dies when the heap was left damaged.
void useHeap();

}  // namespace storm
