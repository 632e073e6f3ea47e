// SPDX-License-Identifier: MIT
#include "framework/platform/last_error.h"

#include <gtest/gtest.h>

#include <thread>

namespace {

using platform::lastError;
using platform::setLastError;
using platform::systemErrorText;

TEST(LastError, IsTheThreadsOwn) {
  setLastError(13);
  std::thread([] {
    EXPECT_EQ(lastError(), 0u);
    setLastError(87);
    EXPECT_EQ(lastError(), 87u);
  }).join();
  setLastError(5);
  EXPECT_EQ(lastError(), 5u);
  setLastError(0xFFFFFFFF);
  EXPECT_EQ(lastError(), 0xFFFFFFFFu);
}

TEST(LastError, IsKeptOverAScope) {
  setLastError(18);
  {
    const platform::LastErrorKeeper keeper;
    setLastError(2);
  }
  EXPECT_EQ(lastError(), 18u);
}

TEST(SystemErrorText, EndsWithALineEndAndLeavesTheLastErrorAlone) {
  for (const std::uint32_t error : {0u, 2u, 3u, 5u, 6u, 8u, 18u, 80u, 87u, 112u, 122u, 183u, 206u, 10054u}) {
    setLastError(77);
    const std::string text = systemErrorText(error);
    EXPECT_EQ(lastError(), 77u);
    ASSERT_GT(text.size(), 2u) << error;
    EXPECT_EQ(text.substr(text.size() - 2), "\r\n") << error;
    EXPECT_EQ(text.find_first_of("\r\n"), text.size() - 2) << error;
  }
}

TEST(SystemErrorText, IsEmptyWhereTheSystemHasNone) {
  // 12000 and up are numbers of the internet classes; the last ones nobody's.
  for (const std::uint32_t error : {12001u, 12002u, 12003u, 12007u, 12029u, 12030u, 12175u, 99999u,
                                    0x1FFFFFFFu, 0x2FFFFFFFu, 0xFFFFFFFFu}) {
    setLastError(77);
    EXPECT_EQ(systemErrorText(error), "") << error;
    EXPECT_EQ(lastError(), 77u);
  }
}

}  // namespace
