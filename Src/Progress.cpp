// SPDX-License-Identifier: MIT
#include "Src/Progress.h"

#include <utility>

#include "Src/QXIP.h"

namespace {

constinit thread_local QXFtpThread* t_ownRecord = nullptr;

}  // namespace

WorkerOnThread::WorkerOnThread(QXFtpThread& record) noexcept : m_outer(std::exchange(t_ownRecord, &record)) {}

WorkerOnThread::~WorkerOnThread() { t_ownRecord = m_outer; }

void StoreUploadProgress(TQXIP& client, std::uint64_t transferred, std::uint64_t total) noexcept {
  QXFtpThread* const record = t_ownRecord;
  if (record != nullptr && record->pQXIP == &client) return StoreProgress(*record, transferred, total);
  StoreCounters(client.m_Transfer, transferred, total);
}
