// SPDX-License-Identifier: MIT
// Uploads whose last bytes travel for longer than the final reply may take.
#include "tests/internet/FtpTransferTest.h"

namespace internet_tests {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

TEST_F(FtpTransferTest, TheFinalRepliesLimitCountsFromTheLastByteThatTheServerHasTaken) {
  internet::Timeouts timeouts;
  timeouts.finalReply = milliseconds(3'000);
  session.SetTimeouts(timeouts);
  // The system takes all at once; the server needs more than three limits for it, but never a tenth of one
  // for a piece.
  ScriptedFtp server = serving({{"pace", {{"bytes", 65'536}, {"ms", 250}}}}, "STOR");
  auto connection = connect(server);
  auto file = openToWrite(*connection, "/up");
  writePattern(*file, kBigSize);
  const auto written = steady_clock::now();
  EXPECT_EQ(errorOf([&] { return file->Close(); }), 0u);
  EXPECT_GT(steady_clock::now() - written, timeouts.finalReply) << "the line was not slow";
  EXPECT_TRUE(server.matches("/up", kSeed, kBigSize));
}

TEST_F(FtpTransferTest, AServerThatTakesTheRestAndSaysNothingIs12002) {
  session.SetTimeouts(shortTimeouts());
  ScriptedFtp server(json{{"rules",
                           {{{"on", "STOR"}, {"do", {{{"normal", {{"final", nullptr}}}}}}},
                            {{"on", "SIZE"}, {"do", {{{"reply", "550 Not told"}}}}}}}});
  auto connection = connect(server);
  auto file = openToWrite(*connection, "/up");
  writePattern(*file, kBigSize);
  EXPECT_EQ(errorOf([&] { return file->Close(); }), 12002u);
}

TEST_F(FtpTransferTest, AServerThatTakesNothingOfTheRestIs12002) {
  session.SetTimeouts(shortTimeouts());
  ScriptedFtp server = serving({{"stall_after", 1}, {"gate", "never"}}, "STOR");
  auto connection = connect(server);
  auto file = openToWrite(*connection, "/up");
  writePattern(*file, 200'000);
  EXPECT_EQ(errorOf([&] { return file->Close(); }), 12002u);
}

}  // namespace
}  // namespace internet_tests
