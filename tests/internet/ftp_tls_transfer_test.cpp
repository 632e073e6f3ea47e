// SPDX-License-Identifier: MIT
// Data over encrypted connections: whose session they resume, when they shake hands, and how they end.
#include "tests/internet/FtpTlsTransferTest.h"

namespace internet_tests {
namespace {

using fixture::ScriptedFtp;

struct Way {
  const char* newest;
  bool handshakeFirst;
  bool passive;
  bool implicit;
};

class EachWay : public FtpTlsTransfer, public testing::WithParamInterface<Way> {};

TEST_P(EachWay, MovesEverythingOverTheSessionOfTheLogin) {
  const Way way = GetParam();
  const json tls = {
      {"newest", way.newest}, {"handshake_first", way.handshakeFirst}, {"implicit", way.implicit}};
  ScriptedFtp server(script(tls));
  auto connection = connectBy(way.implicit ? "ftps://" : "ftpes://", server, {}, way.passive);
  expectSixTransfers(*connection, server);
  const json data = dataOf(server);
  ASSERT_EQ(data.size(), 6u);
  for (const json& each : data) {
    EXPECT_EQ(each.at("how"), "complete") << each;
    EXPECT_EQ(each.at("mode"), way.passive ? "passive" : "active");
    if (!kResumes) continue;
    EXPECT_EQ(each.at("tls"), std::string("TLSv") + way.newest) << each;
    EXPECT_EQ(each.at("resumed"), true) << each;
  }
  expectNothingPlain(server);
}

INSTANTIATE_TEST_SUITE_P(Ways, EachWay,
                         testing::Values(Way{"1.3", false, true, false}, Way{"1.3", true, true, false},
                                         Way{"1.2", false, true, false}, Way{"1.2", true, true, true},
                                         Way{"1.3", false, false, false}, Way{"1.3", true, false, true},
                                         Way{"1.2", false, false, false}));

TEST_F(FtpTlsTransfer, OneByteRecordsAreBytesAsWell) {
  ScriptedFtp server(script({{"record", 1}}));
  auto connection = connectBy("ftpes://", server);
  std::string content;
  EXPECT_EQ(reading(*connection, content, "/small").error, 0u);
  EXPECT_EQ(content, "text");
  expectLists(*connection);
}

TEST_F(FtpTlsTransfer, EmptyFilesTravelToo) {
  ScriptedFtp server(script(json::object()));
  server.put(R"({"/empty": ""})");
  auto connection = connectBy("ftpes://", server);
  EXPECT_EQ(errorOfReading(*connection, "/empty"), 0u);
  EXPECT_EQ(errorOfWriting(*connection, 0), 0u);
  EXPECT_EQ(server.size("/up"), 0u);
}

TEST_F(FtpTlsTransfer, AnEarlyCloseKeepsTheConnection) {
  ScriptedFtp server(script(json::object()));
  auto connection = connectBy("ftpes://", server);
  auto file = openToRead(*connection, "/big");
  std::vector<char> block(1000);
  EXPECT_EQ(file->Read(block.data(), 1000), 1000u);
  EXPECT_EQ(errorOf([&] { return file->Close(); }), 0u);
  expectReads(*connection);
}

TEST_F(FtpTlsTransfer, ADownloadThatIsCutIsAFailure) {
  ScriptedFtp server(script(json::object(), bent("RETR", {{"close_after", 100'000}})));
  auto connection = connectBy("ftpes://", server);
  EXPECT_NE(errorOfReading(*connection), 0u);
}

TEST_F(FtpTlsTransfer, AWholeDownloadWithoutTheLastWordIsWhole) {
  ScriptedFtp server(script(json::object(), bent("RETR", {{"unsaid", true}})));
  auto connection = connectBy("ftpes://", server);
  expectReads(*connection);
  expectReads(*connection);
}

// Nobody knows whether it is whole.
TEST_F(FtpTlsTransfer, ADownloadOfUnknownSizeWithoutTheLastWordIsCut) {
  json of = script(json::object(), bent("RETR", {{"unsaid", true}, {"opening", "150 Here it comes"}}));
  of["features"] = {"epsv"};
  ScriptedFtp server(of);
  auto connection = connectBy("ftpes://", server);
  EXPECT_EQ(errorOfReading(*connection), 12031u);
}

TEST_F(FtpTlsTransfer, AListingWithoutTheLastWordIsCut) {
  ScriptedFtp server(script(json::object(), bent("MLSD", {{"unsaid", true}})));
  auto connection = connectBy("ftpes://", server);
  CFtpFileFind finder(connection.get());
  const Search found = search(finder, "/dir/*");
  EXPECT_TRUE(found.entries.empty());
  EXPECT_EQ(found.thrown.error, 12031u);
}

TEST_F(FtpTlsTransfer, AnUploadWaitsForNoLastWordOfTheServer) {
  for (const char* end : {"unsaid", "lingers"}) {
    ScriptedFtp server(script(json::object(), bent("STOR", {{end, true}})));
    auto connection = connectBy("ftpes://", server);
    expectWrites(*connection, server);
    expectWrites(*connection, server);
  }
}

TEST_F(FtpTlsTransfer, ARefusedTransferKeepsTheConnection) {
  ScriptedFtp server(script(json::object()));
  auto connection = connectBy("ftpes://", server);
  EXPECT_EQ(errorOfReading(*connection, "/missing"), 12003u);
  EXPECT_EQ(errorOf([&] { return connection->Remove("/missing"); }), 12003u);
  expectReads(*connection);
  EXPECT_EQ(server.connections().size(), 1u);
}

TEST_F(FtpTlsTransfer, ARefusalInTheMiddleOfAnUploadIsTold) {
  const json options = {{"close_after", 100'000}, {"final", "552 Disk full"}};
  ScriptedFtp server(script(json::object(), bent("STOR", options)));
  auto connection = connectBy("ftpes://", server);
  EXPECT_EQ(errorOfWriting(*connection, 20'000'000), 12003u);
  EXPECT_EQ(connection->LastServerText(), "552 Disk full");
}

TEST_F(FtpTlsTransfer, GarbageInTheHandshakeOfDataIsAFailure) {
  for (const char* newest : {"1.2", "1.3"}) {
    const json spoil = {{"stream", "data"}, {"flight", 1}, {"how", "garbage"}};
    ScriptedFtp server(script({{"newest", newest}, {"spoil", spoil}}));
    auto connection = connectBy("ftpes://", server);
    EXPECT_NE(errorOfReading(*connection), 0u);
    EXPECT_NE(errorOfWriting(*connection), 0u);
    expectNothingPlain(server);
  }
}

TEST_F(FtpTlsTransfer, AStalledHandshakeOfDataIs12002) {
  session.SetTimeouts(shortTimeouts());
  const json spoil = {{"stream", "data"}, {"flight", 1}, {"how", "stall"}, {"gate", "never"}};
  ScriptedFtp server(script({{"spoil", spoil}}));
  auto connection = connectBy("ftpes://", server);
  EXPECT_EQ(errorOfReading(*connection), 12002u);
}

TEST_F(FtpTlsTransfer, ACancelLeavesAStalledHandshakeOfData) {
  const json spoil = {{"stream", "data"}, {"flight", 1}, {"how", "stall"}, {"gate", "never"}};
  ScriptedFtp server(script({{"spoil", spoil}}));
  for (const bool upload : {false, true}) {
    int count = 0;
    expectPrompt("data handshake", [&] {
      const int before = static_cast<int>(server.connections().size());
      return latencyMs(
          [&] {
            RecordingSession own;
            const std::string host = hostText("ftpes://", server);
            const std::unique_ptr<CFtpConnection> connection(
                own.GetFtpConnection(host.c_str(), "user", "secret", server.port(), true));
            static_cast<void>(upload ? openToWrite(*connection, "/up") : openToRead(*connection, "/big"));
          },
          [&] {
            server.waitForConnections(before + 1);
            server.waitAtGate("never");
            ++count;
          });
    });
    EXPECT_GT(count, 0);
  }
}

TEST_F(FtpTlsTransfer, ARefusalOfTls12IsTold) {
  ScriptedFtp server(
      script({{"newest", "1.2"}}, bent("RETR", {{"close_after", 0}, {"final", "522 Resume"}})));
  auto connection = connectBy("ftpes://", server);
  std::string content;
  const Thrown thrown = reading(*connection, content);
  EXPECT_EQ(thrown.error, 12003u);
  EXPECT_EQ(thrown.text, "522 Resume");
  EXPECT_EQ(server.connections().size(), 1u);
}

}  // namespace
}  // namespace internet_tests
