// SPDX-License-Identifier: MIT
// The test program once more, in a process of its own beside this one.
#pragma once

#include <string>

namespace testing_support {

// Runs the tests that `filter` selects, disabled ones too, and waits for their end. True when they passed.
bool passesInAnotherProcess(const std::string& filter);

}  // namespace testing_support
