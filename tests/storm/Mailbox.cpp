// SPDX-License-Identifier: MIT
#include "tests/storm/Mailbox.h"

#include "framework/platform/message_queue.h"

namespace storm {

void Mailbox::post(Work work) {
  {
    const std::lock_guard lock(m_mutex);
    m_work.push_back(std::move(work));
  }
  ring();
}

void Mailbox::takeOne() {
  Work work;
  {
    const std::lock_guard lock(m_mutex);
    if (m_work.empty()) return;
    work = std::move(m_work.front());
    m_work.pop_front();
  }
  work();
}

void dispatchAll() {
  while (platform::messageWaiting()) platform::takeAndDispatchMessage();
}

}  // namespace storm
