// SPDX-License-Identifier: MIT
// The entries of the queue and what becomes of them. Knows neither library nor window; one thread at a time.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "hosts/qxbrowse/jobs/Transfer.h"

namespace browse {

struct TransferRow {
  Transfer transfer;
  TransferState state = TransferState::waiting;
  TransferProgressShown progress;
  std::string text;  // why it has not succeeded, and what is left where
};

class TransferList {
 public:
  void add(std::vector<Transfer> transfers);

  [[nodiscard]] std::size_t size() const { return m_rows.size(); }
  [[nodiscard]] const TransferRow& operator[](std::size_t row) const { return m_rows[row]; }
  [[nodiscard]] std::size_t count(TransferState state) const {
    return m_counts[static_cast<std::size_t>(state)];
  }

  // The first one that waits runs from now on; null: none waits. REQUIRES: none runs.
  const Transfer* begin();
  // Of the one that runs.
  void show(const TransferProgressShown& progress);
  // Returns its row.
  std::size_t end(TransferState state, std::string text);
  [[nodiscard]] bool isRunning(std::size_t row) const { return m_rows[row].state == TransferState::running; }
  // The one that runs, or null.
  [[nodiscard]] const TransferRow* running() const {
    return count(TransferState::running) > 0 ? &m_rows[m_running] : nullptr;
  }

  // Of those that wait. `row` may be any.
  void cancelWaiting();
  void cancelWaiting(std::size_t row);
  // What failed or was cancelled.
  [[nodiscard]] bool isEnded(std::size_t row) const;
  [[nodiscard]] std::vector<Transfer> ended() const;
  // Those of them wait again, with what is known of them now.
  void retry(const std::vector<Transfer>& transfers);
  // What is done or cancelled is forgotten.
  void clearDone();

  // What is to be drawn anew since the last call.
  struct Changes {
    bool isAll = false;  // rows came or went
    std::vector<std::size_t> rows;
  };
  Changes takeChanges();

 private:
  void set(std::size_t row, TransferState state);
  void touch(std::size_t row);

  std::vector<TransferRow> m_rows;
  std::array<std::size_t, 5> m_counts{};
  std::size_t m_firstWaiting = 0;  // none waits in front of it
  std::size_t m_running = 0;
  std::uint64_t m_lastNumber = 0;
  Changes m_changes;
};

}  // namespace browse
