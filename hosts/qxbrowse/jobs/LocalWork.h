// SPDX-License-Identifier: MIT
// Reads local folders on a thread of its own: one on a network that does not answer must not hold the window.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <variant>

#include "hosts/qxbrowse/lists/ItemList.h"

namespace browse {

class LocalWork {
 public:
  using Letter = std::function<void()>;
  // Runs a letter on the window's thread, later.
  using Post = std::function<void(Letter)>;
  // What is in the folder, or why nobody knows.
  using Answer = std::variant<ItemList, std::wstring>;
  using Then = std::function<void(const std::wstring& path, Answer answer)>;

  // `then` runs on the window's thread.
  LocalWork(Post post, Then then);
  // Nothing comes from it any more. Waits a moment for the thread, and leaves it to the system after that.
  ~LocalWork();
  LocalWork(const LocalWork&) = delete;
  LocalWork& operator=(const LocalWork&) = delete;

  // Takes the place of a folder that has not been begun.
  void read(const std::wstring& path, Sorting sorting);

 private:
  struct State;
  static void runJobs(const std::shared_ptr<State>& state);

  const std::shared_ptr<State> m_state;
};

}  // namespace browse
