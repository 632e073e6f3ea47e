// SPDX-License-Identifier: MIT
#include "tests/support/ModalBoxes.h"

#include <gtest/gtest.h>

#include <sstream>

namespace testing_support {

std::vector<ModalBox> modalBoxesOf(const std::function<void()>& work) {
  testing::internal::CaptureStderr();
  work();
  std::istringstream lines(testing::internal::GetCapturedStderr());
  std::vector<ModalBox> boxes;
  for (std::string line; std::getline(lines, line);) {
    const auto colon = line.find(": ");
    ModalBox box;
    box.caption = line.substr(0, colon);
    if (colon != std::string::npos) box.text = line.substr(colon + 2);
    boxes.push_back(box);
  }
  return boxes;
}

}  // namespace testing_support
