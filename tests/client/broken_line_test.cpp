// SPDX-License-Identifier: MIT
// Large files at a real server over a line that breaks every 5 MiB: all that moves is counted on the line.
#include "tests/client/ContentTest.h"

namespace {

using testing_support::Pattern;

constexpr std::uint64_t kMiB = std::uint64_t{1} << 20;
constexpr std::uint64_t kEvery = 5 * kMiB;
constexpr std::uint32_t kRetries = 20;
constexpr std::uint32_t kSeed = 9;

class BrokenLine : public ContentTest, public testing::WithParamInterface<std::uint32_t> {
 protected:
  static constexpr std::uint64_t kSize = 64 * kMiB;

  const fixture::RealServer server{"vsftpd"};
  const fixture::CuttingRelay relay{server, kEvery, GetParam()};

  void SetUp() override {
    client.FTPSetLogin(relay.host().c_str(), server.user().c_str(), server.password().c_str(), relay.port(),
                       1);
  }
  static void serve(const fixture::RealServer& where, std::uint64_t size) {
    where.put(R"({"/pub/a": {"seed": 9, "size": )" + std::to_string(size) + "}}");
  }
  // `bytes` of files have gone over the line, and each way to break it was met.
  void expectLittleMoreMoved(std::uint64_t bytes) const {
    EXPECT_GE(relay.moved(), bytes);
    EXPECT_LE(relay.moved(), bytes * 13 / 10);
    EXPECT_EQ(relay.waysSeen(), 5u);
    EXPECT_GE(relay.cutReplies(), 1u);
  }
};

TEST_P(BrokenLine, ALargeDownloadComesThrough) {
  serve(server, kSize);
  ASSERT_EQ(download("/pub/a", kRetries), 1);
  EXPECT_TRUE(Pattern(kSeed).matchesFile(local, kSize));
  expectLittleMoreMoved(kSize);
}

TEST_P(BrokenLine, ALargeUploadComesThrough) {
  Pattern(kSeed).writeFile(local, kSize);
  ASSERT_EQ(upload("/pub/b", kRetries), 1);
  EXPECT_TRUE(server.matches("/pub/b", kSeed, kSize));
  expectLittleMoreMoved(kSize);
}

TEST_P(BrokenLine, ALargeCopyToTheDiskComesThrough) {
  serve(server, kSize);
  ASSERT_EQ(client.FTPCpyFile("/pub/a", localName(local).c_str(), nullptr, kRetries, 0, 0), 1);
  EXPECT_TRUE(Pattern(kSeed).matchesFile(local, kSize));
  expectLittleMoreMoved(kSize);
}

// The file goes over the line twice, with one retry count for both ways.
TEST_P(BrokenLine, ALargeCopyWithinTheServerComesThrough) {
  serve(server, kSize / 2);
  ASSERT_EQ(client.FTPCpyFile("/pub/a", "/pub/b", nullptr, kRetries, 0, 0), 1);
  EXPECT_TRUE(server.matches("/pub/b", kSeed, kSize / 2));
  EXPECT_EQ(leftInTemporary(), Names{});
  expectLittleMoreMoved(kSize);
}

INSTANTIATE_TEST_SUITE_P(Seeds, BrokenLine, testing::Values(1u));

}  // namespace
