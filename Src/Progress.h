// SPDX-License-Identifier: MIT
// The transfer counters that OnPoll may read while data moves.
#pragma once

#include <atomic>
#include <cstdint>

#include "Src/FtpThread.h"
#include "Src/SharedFlag.h"

// Bytes that a worker moves between two looks at what the host wants.
inline constexpr std::uint32_t kChunk = 4096;

// Whoever reads meanwhile sees each counter whole, and the total before what belongs to it.
inline void StoreCounters(QXTransfer& counters, std::uint64_t transferred, std::uint64_t total) noexcept {
  std::atomic_ref(counters.nTotal).store(total, std::memory_order_release);
  std::atomic_ref(counters.nTransferred).store(transferred, std::memory_order_release);
  std::atomic_ref(counters.bValid).store(1, std::memory_order_release);
}

// Under the updating flag, while which the waiting thread does not ask OnPoll; one may be running already.
inline void StoreProgress(QXFtpThread& record, std::uint64_t transferred, std::uint64_t total) noexcept {
  SetFlag(record.bUpdating, true);
  StoreCounters(*record.pTransfer, transferred, total);
  SetFlag(record.bUpdating, false);
}

// The calling thread is the worker of this record as long as this lives.
class WorkerOnThread {
 public:
  explicit WorkerOnThread(QXFtpThread& record) noexcept;
  ~WorkerOnThread();
  WorkerOnThread(const WorkerOnThread&) = delete;
  WorkerOnThread& operator=(const WorkerOnThread&) = delete;

 private:
  QXFtpThread* const m_outer;
};

// Of an upload, which is an operation of its own, or a part of the one whose worker the calling thread is.
void StoreUploadProgress(TQXIP& client, std::uint64_t transferred, std::uint64_t total) noexcept;
