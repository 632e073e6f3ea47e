// SPDX-License-Identifier: MIT
// Answers dialogs as a user would: from a second thread, by what the dialogs' windows show and take.
//
//   const bool result = drive([&] { return RunDialog(...); }, [](Driver& user) {
//     const HWND dialog = user.waitForDialog();
//     user.press(dialog, IDOK);
//   });
//
// Every wait has a limit. What does not come in time fails the test with a picture of the windows in words,
// and all dialogs are closed by force, so that nothing hangs.
#pragma once

#include <atomic>
#include <functional>
#include <stdexcept>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

#include "framework/windows/windows_api.h"

namespace dialog_test {

// Thrown by a wait; drive() makes a failed test of it.
struct TooLate : std::runtime_error {
  using std::runtime_error::runtime_error;
};

struct Box {
  std::string caption;
  std::string text;
  HICON icon = nullptr;  // IDI_HAND's is LoadIconA(nullptr, IDI_HAND)
  int buttons = 0;
};

class Driver {
 public:
  explicit Driver(DWORD thread) noexcept : m_thread(thread) {}

  // Polls until `holds`; `what` names it in the failure.
  void waitUntil(const std::string& what, const std::function<bool()>& holds) const;

  // The visible dialog of the driven thread that no other dialog owns.
  [[nodiscard]] HWND waitForDialog() const;
  [[nodiscard]] HWND waitForDialog(const std::string& title) const;
  // The visible dialog or message box over `owner`; null: over none.
  [[nodiscard]] HWND waitForBox(HWND owner) const;
  void waitUntilGone(HWND window) const;
  // Waits for a message box over `owner`, presses its OK and waits until it is gone.
  Box answerBox(HWND owner) const;

  // The first visible or hidden descendant of this class; waits for it.
  [[nodiscard]] HWND child(HWND window, const char* className) const;
  [[nodiscard]] HWND control(HWND dialog, int id) const;
  [[nodiscard]] std::string textOf(HWND window) const;
  void type(HWND window, const std::string& text) const;
  // Presses a button of the dialog; returns at once.
  void press(HWND dialog, int id) const;

  // SendMessage that gives up at the limit.
  LRESULT send(HWND window, UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const;

  // The list of a file dialog, once it has `count` items or more.
  [[nodiscard]] HWND waitForList(HWND dialog, std::size_t count) const;
  // The same, once it shows exactly these names, in any order.
  [[nodiscard]] HWND waitForList(HWND dialog, std::vector<std::string> names) const;
  [[nodiscard]] std::vector<std::string> items(HWND list) const;
  void select(HWND list, const std::string& name) const;
  void selectAll(HWND list) const;
  void doubleClick(HWND list, const std::string& name) const;
  // Types into the name box of a file dialog, of either kind.
  void typeName(HWND dialog, const std::string& name) const;

 private:
  friend class Session;

  [[nodiscard]] HWND find(const std::function<bool(HWND)>& wanted) const;
  [[nodiscard]] HWND waitForList(HWND dialog, const std::string& what,
                                 const std::function<bool(HWND)>& wanted) const;
  [[nodiscard]] int indexOf(HWND list, const std::string& name) const;
  [[nodiscard]] std::string picture() const;
  void closeAll() const;
  void follow(const std::function<void(Driver&)>& user);

  DWORD m_thread;
  std::atomic<bool> m_over{false};  // the work has returned
};

// The thread that drives; its destructor waits until the user's part is over.
class Session {
 public:
  explicit Session(std::function<void(Driver&)> user);
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

 private:
  Driver m_driver;
  std::thread m_thread;
};

// Runs `work` on the calling thread and `user` on another one; returns when both are over.
template <typename Work>
auto drive(Work&& work, std::function<void(Driver&)> user) -> std::invoke_result_t<Work> {
  const Session session(std::move(user));
  return work();
}

}  // namespace dialog_test
