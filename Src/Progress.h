// SPDX-License-Identifier: MIT
// The transfer counters that OnPoll may read while a worker moves data.
#pragma once

#include <atomic>
#include <cstdint>

#include "Src/FtpThread.h"
#include "Src/SharedFlag.h"

// Bytes that a worker moves between two looks at what the host wants.
inline constexpr std::uint32_t kChunk = 4096;

// Under the updating flag, while which the waiting thread does not ask OnPoll. An OnPoll that is running
// already sees each counter whole, and the total before what belongs to it.
inline void StoreProgress(QXFtpThread& record, std::uint64_t transferred, std::uint64_t total) noexcept {
  SetFlag(record.bUpdating, true);
  QXTransfer& counters = *record.pTransfer;
  std::atomic_ref(counters.nTotal).store(total, std::memory_order_release);
  std::atomic_ref(counters.nTransferred).store(transferred, std::memory_order_release);
  std::atomic_ref(counters.bValid).store(1, std::memory_order_release);
  SetFlag(record.bUpdating, false);
}
