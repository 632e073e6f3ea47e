// SPDX-License-Identifier: MIT
// Downloads that are given up half-way, and what servers make of it.
#include <thread>

#include "tests/internet/FtpTransferTest.h"

namespace internet_tests {
namespace {

TEST_F(FtpTransferTest, AnEarlyCloseOfAReadKeepsTheConnection) {
  for (const std::uint32_t block : {0u, 1000u, 1'000'000u}) {
    ScriptedFtp server = serving(json::object());
    auto connection = connect(server);
    auto file = openToRead(*connection, "/big");
    std::vector<char> buffer(1'000'000);
    EXPECT_EQ(file->Read(buffer.data(), block), block);
    EXPECT_EQ(errorOf([&] { return file->Close(); }), 0u);
    EXPECT_TRUE(works(*connection));
    EXPECT_EQ(server.connections().size(), 1u);
  }
}

// Some servers do not see a break that comes before they have sent anything.
TEST_F(FtpTransferTest, AnEarlyCloseBreaksOffOnlyOnceTheServerSends) {
  ScriptedFtp server = serving({{"stall_after", 0}, {"gate", "data"}});
  auto connection = connect(server);
  std::uint64_t sent = 0;
  // The close waits a moment only; on a busy machine the data may come later than that.
  for (int attempt = 0; attempt < 20 && sent == 0; ++attempt) {
    server.hold("data");
    auto file = openToRead(*connection, "/big");
    server.waitAtGate("data");
    std::thread sender([&] { server.release("data"); });
    EXPECT_EQ(errorOf([&] { return file->Close(); }), 0u);
    sender.join();
    EXPECT_TRUE(works(*connection));
    sent = server.dataConnections().back().bytes;
  }
  EXPECT_GT(sent, 0u);
}

TEST_F(FtpTransferTest, AnEarlyCloseTakesASecondOpeningForTheEnd) {
  // As pure-ftpd does it; and with the real final reply behind it after all.
  for (const json& ending : {json("150 0.006 seconds"), json{"150 0.006 seconds", "426 Aborted"}}) {
    ScriptedFtp server = serving({{"final", ending}});
    auto connection = connect(server);
    auto file = openToRead(*connection, "/big");
    EXPECT_EQ(errorOf([&] { return file->Close(); }), 0u);
    EXPECT_EQ(server.commandCount("NOOP"), 1);
    EXPECT_TRUE(works(*connection));
    EXPECT_TRUE(connection->Remove("/big")) << "in step";
  }
}

TEST_F(FtpTransferTest, AnEarlyCloseThatAskedForTheEndWaitsForThatAnswer) {
  ScriptedFtp server(json{
      {"tree", {{"/big", {{"size", kBigSize}, {"seed", kSeed}}}}},
      {"rules",
       {{{"on", "RETR"}, {"do", {{{"normal", {{"final", "150 0.006 seconds"}}}}}}},
        {{"on", "NOOP"}, {"do", {{{"reply", "426 Aborted"}}, {{"delay_ms", 30}}, {{"reply", "200 OK"}}}}}}}});
  auto connection = connect(server);
  auto file = openToRead(*connection, "/big");
  EXPECT_EQ(errorOf([&] { return file->Close(); }), 0u);
  EXPECT_TRUE(works(*connection));
}

// A server that looks at its connections in turn can answer the question before it sees the break.
TEST_F(FtpTransferTest, AnEarlyCloseTakesAnEndThatComesAfterTheAnswer) {
  ScriptedFtp server(json{
      {"tree", {{"/big", {{"size", kBigSize}, {"seed", kSeed}}}}},
      {"rules",
       {{{"on", "RETR"}, {"do", {{{"normal", {{"final", nullptr}}}}}}},
        {{"on", "NOOP"}, {"do", {{{"reply", "200 OK"}}, {{"delay_ms", 30}}, {{"reply", "426 Aborted"}}}}}}}});
  auto connection = connect(server);
  auto file = openToRead(*connection, "/big");
  EXPECT_EQ(errorOf([&] { return file->Close(); }), 0u);
  EXPECT_TRUE(works(*connection));
}

TEST_F(FtpTransferTest, AnEarlyCloseAsksAServerThatStaysSilent) {
  ScriptedFtp server = serving({{"final", nullptr}});
  auto connection = connect(server);
  auto file = openToRead(*connection, "/big");
  EXPECT_EQ(errorOf([&] { return file->Close(); }), 0u);
  EXPECT_EQ(server.commands().back(), "NOOP");
  EXPECT_TRUE(works(*connection));
}

TEST_F(FtpTransferTest, AnEarlyCloseThatTheServerIgnoresEndsTheConnection) {
  session.SetTimeouts(shortTimeouts());
  ScriptedFtp server(json{{"tree", {{"/big", {{"size", kBigSize}, {"seed", kSeed}}}}},
                          {"rules",
                           {{{"on", "RETR"}, {"do", {{{"normal", {{"final", nullptr}}}}}}},
                            {{"on", "NOOP"}, {"do", {"silent"}}}}}});
  auto connection = connect(server);
  auto file = openToRead(*connection, "/big");
  session.takeStatuses();
  EXPECT_EQ(errorOf([&] { return file->Close(); }), 12030u);
  EXPECT_EQ(session.takeStatuses(), (Statuses{30, 31}));
  EXPECT_EQ(errorOf([&] { return connection->Remove("/x"); }), 12030u);
}

}  // namespace
}  // namespace internet_tests
