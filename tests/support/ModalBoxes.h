// SPDX-License-Identifier: MIT
// The message boxes that code under test shows: seen as a user sees them, and answered.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace testing_support {

struct ModalBox {
  std::string caption;
  std::string text;
  bool owned = false;
  int buttons = 0;  // that can be seen; on Windows alone
};

// Runs `work` on the calling thread and returns the boxes that it showed. On POSIX these are the lines of
// standard error, which nothing else may write to meanwhile; a caption ends at the first ": ".
std::vector<ModalBox> modalBoxesOf(const std::function<void()>& work);

}  // namespace testing_support
