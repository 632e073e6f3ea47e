// SPDX-License-Identifier: MIT
// Command lines that travel together, and servers that cannot cope with them: over a network in memory, where
// a packet is what one call has sent and time is counted exactly.
#include "tests/internet/FtpMemoryTest.h"

namespace internet_tests {
namespace {

using testing_support::MemoryFtp;

using FtpLines = FtpMemory;

// It was noticed only when the time for the next reply had run out.
TEST_F(FtpLines, WhatIsNoReplyBehindTheReplyToALineSentAlongIsNoticedAtOnce) {
  for (const char* line : {"hello", "620 What", "999 What", "2x0 What"}) {
    Far far;
    far.server.answers["TYPE"] = std::string("200 Binary\r\n") + line + "\r\n";
    auto connection = login();
    const auto before = far.network.now();
    EXPECT_EQ(thrownBy([&] { openToRead(*connection, "/f"); }).error, 12152u) << line;
    EXPECT_EQ(far.network.now(), before) << line;
    EXPECT_EQ(errorOf([&] { return connection->Remove("/f"); }), 12030u) << line;
  }
}

}  // namespace
}  // namespace internet_tests
