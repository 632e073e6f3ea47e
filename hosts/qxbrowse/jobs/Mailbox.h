// SPDX-License-Identifier: MIT
// Hands work to the thread that made the box, as messages of a window that nobody sees: whoever dispatches
// that thread's messages, the main loop, a dialog or the library in an operation, has it done.
#pragma once

#include <functional>
#include <memory>

namespace browse {

class Mailbox {
 public:
  using Letter = std::function<void()>;

  // Throws std::runtime_error where the system makes no window.
  Mailbox();
  // Letters that have not been read are thrown away. On the thread that made it.
  ~Mailbox();
  Mailbox(const Mailbox&) = delete;
  Mailbox& operator=(const Mailbox&) = delete;

  // On any thread. Letters are read in their order, one in a message, so that other messages come between
  // them. A letter throws nothing.
  void post(Letter letter);
  // Dispatches this thread's messages, all of them, until a letter has made this true, or until the thread's
  // loop is told to end.
  static void readUntil(const std::function<bool()>& isOver);

 private:
  struct Letters;
  const std::shared_ptr<Letters> m_letters;
};

}  // namespace browse
