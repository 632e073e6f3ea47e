// SPDX-License-Identifier: MIT
// Uploads whose line is cut while the last bytes are on their way. For the server that is their end: its
// "complete" was believed.
#include "tests/client/BrokenLines.h"
#include "tests/client/TransferTest.h"

namespace {

using testing_support::Pattern;

class CutUpload : public TransferTest {};

TEST_F(CutUpload, IsNotBelieved) {
  const std::size_t size = 100'000;
  const auto server =
      broken_lines::serving({broken_lines::rule("STOR", {{"normal", {{"close_after", 20'480}}}}, 1)}, size);
  loginAt(server);
  Pattern(6).writeFile(local, size);
  EXPECT_EQ(upload("/a", 1), 1);
  EXPECT_TRUE(server.matches("/a", 6, size));
}

}  // namespace
