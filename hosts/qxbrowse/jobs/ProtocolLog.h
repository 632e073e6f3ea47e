// SPDX-License-Identifier: MIT
// The protocol's lines on their way to the window: taken on whatever thread, read on the window's.
#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "hosts/qxbrowse/jobs/Mailbox.h"

namespace browse {

class ProtocolLog {
 public:
  // Lines come to `read` many at a time, on the mailbox's thread.
  using Read = std::function<void(std::vector<std::string> lines)>;

  ProtocolLog(Mailbox& mailbox, Read read) : m_mailbox(mailbox), m_read(std::move(read)) {}
  ProtocolLog(const ProtocolLog&) = delete;
  ProtocolLog& operator=(const ProtocolLog&) = delete;

  // On any thread.
  void add(const char* line) {
    const std::lock_guard lock(m_lock);
    m_lines.emplace_back(line);
    if (m_lines.size() > 1) return;  // they are waited for already
    m_mailbox.post([this, alive = std::weak_ptr(m_alive)] {
      if (alive.lock() != nullptr) m_read(take());
    });
  }

 private:
  std::vector<std::string> take() {
    const std::lock_guard lock(m_lock);
    return std::exchange(m_lines, {});
  }

  Mailbox& m_mailbox;
  const Read m_read;
  std::mutex m_lock;
  std::vector<std::string> m_lines;
  const std::shared_ptr<int> m_alive = std::make_shared<int>();
};

}  // namespace browse
