// SPDX-License-Identifier: MIT
// Transfers, commands and cancels on real servers of every kind, in both modes.
#include <nlohmann/json.hpp>
#include <thread>

#include "framework/platform/stop_token.h"
#include "tests/internet/FtpTest.h"
#include "tests/support/Pattern.h"

namespace internet_tests {
namespace {

using fixture::RealServer;
using testing_support::Pattern;

constexpr std::uint32_t kSeed = 21;
constexpr std::uint32_t kSize = 5'000'000;

class RealServerTest : public FtpTest, public ::testing::WithParamInterface<const char*> {
 protected:
  RealServerTest() : server(GetParam()) {
    server.put(
        R"({"/pub/big": {"size": 5000000, "seed": 21}, "/pub/empty": "", "/pub/old": "x", "/pub/in/": {}})");
  }

  std::unique_ptr<CFtpConnection> login(bool passive = true) {
    return std::unique_ptr<CFtpConnection>(session.GetFtpConnection(
        server.host().c_str(), server.user().c_str(), server.password().c_str(), server.port(), passive));
  }

  // Whether the data connection still delivers the pattern in full.
  static bool reads(CFtpConnection& connection) {
    auto file = openToRead(connection, "/pub/big");
    std::vector<char> content(kSize + 1);
    const std::uint32_t count = file->Read(content.data(), kSize + 1);
    return file->Close() && count == kSize && Pattern(kSeed).matches(0, content.data(), count);
  }

  RealServer server;
  const testing_support::ScratchFolder folder;
  const std::string local = folder.file("local");
};

TEST_P(RealServerTest, CopiesFilesInBothModes) {
  for (const bool passive : {true, false}) {
    auto connection = login(passive);
    EXPECT_EQ(errorOf([&] { return connection->GetFile("/pub/big", local.c_str(), false); }), 0u);
    EXPECT_TRUE(Pattern(kSeed).matchesFile(local, kSize));
    EXPECT_EQ(errorOf([&] { return connection->PutFile(local.c_str(), "/pub/up"); }), 0u);
    EXPECT_TRUE(server.matches("/pub/up", kSeed, kSize));
    EXPECT_TRUE(connection->Remove("/pub/up"));
    EXPECT_EQ(errorOf([&] { return connection->GetFile("/pub/empty", local.c_str(), false); }), 0u);
    EXPECT_EQ(errorOf([&] { return connection->PutFile(local.c_str(), "/pub/up"); }), 0u);
    EXPECT_EQ(server.size("/pub/up"), 0u);
    EXPECT_TRUE(connection->Remove("/pub/up"));
  }
}

TEST_P(RealServerTest, ReadsAndWritesInBlocks) {
  auto connection = login();
  const Pattern pattern(kSeed);
  std::vector<char> block(4096);
  auto out = openToWrite(*connection, "/pub/up");
  for (std::uint32_t at = 0; at < kSize; at += 4096) {
    const std::uint32_t count = std::min<std::uint32_t>(4096, kSize - at);
    pattern.fill(at, block.data(), count);
    out->Write(block.data(), count);
  }
  EXPECT_EQ(errorOf([&] { return out->Close(); }), 0u);
  EXPECT_TRUE(server.matches("/pub/up", kSeed, kSize));
  for (int i = 0; i < 20; ++i) EXPECT_TRUE(reads(*connection));
}

TEST_P(RealServerTest, AnEarlyCloseKeepsTheConnection) {
  auto connection = login();
  for (const std::uint32_t count : {0u, 1000u, 1'000'000u}) {
    auto file = openToRead(*connection, "/pub/big");
    std::vector<char> content(1'000'000);
    EXPECT_EQ(file->Read(content.data(), count), count);
    EXPECT_EQ(errorOf([&] { return file->Close(); }), 0u);
    EXPECT_TRUE(reads(*connection));
  }
}

TEST_P(RealServerTest, DoesWhatItIsToldToAndRefusesTheRest) {
  auto connection = login();
  EXPECT_TRUE(connection->CreateDirectory("/pub/new"));
  EXPECT_TRUE(connection->Rename("/pub/old", "/pub/new/name"));
  EXPECT_TRUE(server.exists("/pub/new/name"));
  EXPECT_EQ(errorOf([&] { return connection->RemoveDirectory("/pub/new"); }), 12003u) << "not empty";
  EXPECT_TRUE(connection->Remove("/pub/new/name"));
  EXPECT_TRUE(connection->RemoveDirectory("/pub/new"));
  EXPECT_EQ(errorOf([&] { return connection->Remove("/pub/missing"); }), 12003u);
  EXPECT_TRUE(connection->LastServerText().starts_with("55"));
  EXPECT_EQ(thrownBy([&] { openToRead(*connection, "/pub/missing"); }).error, 12003u);
  EXPECT_EQ(thrownBy([&] { openToWrite(*connection, "/pub/missing/up"); }).error, 12003u);
  EXPECT_TRUE(connection->SetCurrentDirectory("/pub/in"));
  std::string directory;
  EXPECT_TRUE(connection->GetCurrentDirectory(directory));
  EXPECT_EQ(directory, "/pub/in");
}

TEST_P(RealServerTest, ACancelledReadLeavesTheServerFit) {
  for (int i = 0; i < 5; ++i) {
    platform::StopToken token;
    std::thread worker([&] {
      const platform::StopToken::Scope scope(&token);
      try {
        RecordingSession own;
        const std::unique_ptr<CFtpConnection> connection(own.GetFtpConnection(
            server.host().c_str(), server.user().c_str(), server.password().c_str(), server.port(), true));
        for (;;) static_cast<void>(reads(*connection));
      } catch (const platform::OperationStopped&) {
      }
    });
    EXPECT_TRUE(reads(*login()));
    token.raise();
    worker.join();
  }
}

INSTANTIATE_TEST_SUITE_P(Servers, RealServerTest,
                         ::testing::Values("pyftpdlib", "vsftpd", "proftpd", "pure-ftpd", "inetutils-ftpd"),
                         [](const auto& tested) {
                           std::string name = tested.param;
                           std::replace(name.begin(), name.end(), '-', '_');
                           return name;
                         });

}  // namespace
}  // namespace internet_tests
