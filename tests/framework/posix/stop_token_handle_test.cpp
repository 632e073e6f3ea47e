// SPDX-License-Identifier: MIT
// What socket waits rely on: the token's descriptor is readable from the raise on.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>

#include "framework/platform/stop_token.h"

namespace {

bool readable(const platform::StopToken& token) {
  pollfd wait{static_cast<int>(token.nativeHandle()), POLLIN, 0};
  return ::poll(&wait, 1, 0) == 1 && (wait.revents & POLLIN) != 0;
}

TEST(StopTokenHandle, IsReadableForGoodOnceRaised) {
  platform::StopToken token;
  EXPECT_FALSE(readable(token));
  token.raise();
  EXPECT_TRUE(readable(token));
  EXPECT_TRUE(token.wait(std::chrono::milliseconds(1)));
  EXPECT_TRUE(readable(token));
}

TEST(StopTokenHandle, IsNotInheritedByTheHostsPrograms) {
  const platform::StopToken token;
  EXPECT_NE(::fcntl(static_cast<int>(token.nativeHandle()), F_GETFD) & FD_CLOEXEC, 0);
}

}  // namespace
