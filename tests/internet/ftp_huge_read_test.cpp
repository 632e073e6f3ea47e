// SPDX-License-Identifier: MIT
// More bytes than 32 bits can count.
#include "tests/internet/FtpTransferTest.h"

namespace internet_tests {
namespace {

TEST_F(FtpTransferTest, AFileOfFiveGibibytesIsReadInFull) {
  constexpr std::uint64_t kHuge = (std::uint64_t{5} << 30) + 1;
  const ScriptedFtp server(json{{"tree", {{"/huge", {{"size", kHuge}, {"zeros", true}}}}}});
  auto connection = connect(server);
  auto file = openToRead(*connection, "/huge");
  std::vector<char> buffer(1 << 20);
  std::uint64_t total = 0;
  while (const std::uint32_t count = file->Read(buffer.data(), 1 << 20)) total += count;
  EXPECT_EQ(total, kHuge);
  EXPECT_EQ(errorOf([&] { return file->Close(); }), 0u);
  EXPECT_EQ(server.dataConnections().at(0).how, "complete");
}

}  // namespace
}  // namespace internet_tests
