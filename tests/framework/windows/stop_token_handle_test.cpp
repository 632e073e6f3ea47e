// SPDX-License-Identifier: MIT
// What socket waits rely on: the token's event is signalled from the raise on.
#include <gtest/gtest.h>

#include "framework/platform/stop_token.h"
#include "framework/windows/windows_api.h"

namespace {

DWORD state(const platform::StopToken& token) {
  return ::WaitForSingleObject(reinterpret_cast<HANDLE>(token.nativeHandle()), 0);
}

TEST(StopTokenHandle, IsSignalledForGoodOnceRaised) {
  platform::StopToken token;
  EXPECT_EQ(state(token), static_cast<DWORD>(WAIT_TIMEOUT));
  token.raise();
  EXPECT_EQ(state(token), WAIT_OBJECT_0);
  EXPECT_TRUE(token.wait(std::chrono::milliseconds(1)));
  EXPECT_EQ(state(token), WAIT_OBJECT_0);
}

}  // namespace
