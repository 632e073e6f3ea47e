// SPDX-License-Identifier: MIT
// Without a driver for windows every dialog looks like one that the user cancelled: this comes first in each
// program of dialog tests.
#include <gtest/gtest.h>

#include "framework/windows/windows_api.h"

namespace {

TEST(AWindow, CanBeMade) {
  const HWND window = CreateWindowExA(0, "STATIC", "test", WS_OVERLAPPEDWINDOW, 0, 0, 100, 100, nullptr,
                                      nullptr, GetModuleHandleA(nullptr), nullptr);
  ASSERT_NE(window, nullptr) << "error " << GetLastError();
  EXPECT_TRUE(DestroyWindow(window));
}

}  // namespace
