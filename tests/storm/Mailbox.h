// SPDX-License-Identifier: MIT
// Messages of a host: work that any thread posts and that runs when the mailbox's own thread dispatches its
// messages. They are messages of a window on Windows, and idle callbacks of GLib's default context on POSIX.
#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <mutex>

namespace storm {

class Mailbox {
 public:
  using Work = std::function<void()>;

  // On the thread that will dispatch; on POSIX the program's first one.
  Mailbox();
  ~Mailbox();
  Mailbox(const Mailbox&) = delete;
  Mailbox& operator=(const Mailbox&) = delete;

  void post(Work work);

 private:
  struct Bell;  // what rings in the thread's own message queue
  void ring();
  void takeOne();

  // GLib's locks are none that the thread sanitizer knows, so what is posted travels under a lock of our own.
  std::mutex m_mutex;
  std::deque<Work> m_work;
  std::unique_ptr<Bell> m_bell;
};

// Dispatches all messages that wait on the calling thread.
void dispatchAll();

}  // namespace storm
