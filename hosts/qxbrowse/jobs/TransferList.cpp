// SPDX-License-Identifier: MIT
#include "hosts/qxbrowse/jobs/TransferList.h"

#include <algorithm>
#include <utility>

namespace browse {

void TransferList::add(std::vector<Transfer> transfers) {
  m_rows.reserve(m_rows.size() + transfers.size());
  for (Transfer& transfer : transfers) {
    transfer.number = ++m_lastNumber;
    m_rows.push_back({std::move(transfer), {}, {}, {}});
  }
  m_counts[static_cast<std::size_t>(TransferState::waiting)] += transfers.size();
  m_changes.isAll = true;
}

void TransferList::set(std::size_t row, TransferState state) {
  TransferState& now = m_rows[row].state;
  --m_counts[static_cast<std::size_t>(now)];
  ++m_counts[static_cast<std::size_t>(state)];
  now = state;
  if (state == TransferState::waiting) m_firstWaiting = std::min(m_firstWaiting, row);
  touch(row);
}

void TransferList::touch(std::size_t row) {
  if (m_changes.rows.empty() || m_changes.rows.back() != row) m_changes.rows.push_back(row);
}

const Transfer* TransferList::begin() {
  for (; m_firstWaiting < m_rows.size(); ++m_firstWaiting) {
    if (m_rows[m_firstWaiting].state != TransferState::waiting) continue;
    m_running = m_firstWaiting;
    set(m_running, TransferState::running);
    m_rows[m_running].progress = {};
    m_rows[m_running].text.clear();
    return &m_rows[m_running].transfer;
  }
  return nullptr;
}

void TransferList::show(const TransferProgressShown& progress) {
  m_rows[m_running].progress = progress;
  touch(m_running);
}

std::size_t TransferList::end(TransferState state, std::string text) {
  set(m_running, state);
  m_rows[m_running].text = std::move(text);
  return m_running;
}

void TransferList::cancelWaiting() {
  for (std::size_t row = m_firstWaiting; row < m_rows.size(); ++row) cancelWaiting(row);
}

void TransferList::cancelWaiting(std::size_t row) {
  if (row < m_rows.size() && m_rows[row].state == TransferState::waiting) set(row, TransferState::cancelled);
}

bool TransferList::isEnded(std::size_t row) const {
  const TransferState state = m_rows[row].state;
  return state == TransferState::failed || state == TransferState::cancelled;
}

std::vector<Transfer> TransferList::ended() const {
  std::vector<Transfer> transfers;
  for (std::size_t row = 0; row < m_rows.size(); ++row) {
    if (isEnded(row)) transfers.push_back(m_rows[row].transfer);
  }
  return transfers;
}

// Rows come and go, and stand in the order of their numbers.
void TransferList::retry(const std::vector<Transfer>& transfers) {
  for (const Transfer& transfer : transfers) {
    const auto found = std::ranges::lower_bound(m_rows, transfer.number, {},
                                                [](const TransferRow& each) { return each.transfer.number; });
    const auto row = static_cast<std::size_t>(found - m_rows.begin());
    if (row == m_rows.size() || found->transfer.number != transfer.number || !isEnded(row)) continue;
    found->transfer = transfer;
    set(row, TransferState::waiting);
  }
}

void TransferList::clearDone() {
  std::vector<TransferRow> kept;
  for (std::size_t row = 0; row < m_rows.size(); ++row) {
    const TransferState state = m_rows[row].state;
    if (state == TransferState::done || state == TransferState::cancelled) {
      --m_counts[static_cast<std::size_t>(state)];
      continue;
    }
    if (row == m_running) m_running = kept.size();
    kept.push_back(std::move(m_rows[row]));
  }
  m_rows = std::move(kept);
  m_firstWaiting = 0;
  m_changes.isAll = true;
}

TransferList::Changes TransferList::takeChanges() { return std::exchange(m_changes, {}); }

}  // namespace browse
