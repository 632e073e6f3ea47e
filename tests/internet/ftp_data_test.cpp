// SPDX-License-Identifier: MIT
// How data connections are made: passive and active, both families, and what servers and the way between do
// wrong.
#include <nlohmann/json.hpp>

#include "tests/internet/FtpTest.h"

namespace internet_tests {
namespace {

using fixture::ScriptedFtp;
using nlohmann::json;
using namespace nlohmann::literals;

class FtpData : public FtpTest {
 protected:
  static json file() { return {{"/f", "content"}}; }

  // A server with one file and these rules.
  static ScriptedFtp serverWith(const json& rules) {
    return ScriptedFtp(json{{"tree", file()}, {"rules", rules}});
  }

  std::string readFile(CFtpConnection& connection) {
    auto opened = openToRead(connection, "/f");
    const std::string content = readToEnd(*opened);
    EXPECT_TRUE(opened->Close());
    return content;
  }

  std::uint32_t openError(CFtpConnection& connection) {
    return thrownBy([&] { openToRead(connection, "/f"); }).error;
  }
};

TEST_F(FtpData, ServesBothModesInBothFamilies) {
  for (const char* host : {"127.0.0.1", "::1"}) {
    for (const bool passive : {true, false}) {
      ScriptedFtp server(json{{"host", host}, {"tree", file()}});
      auto connection = connect(server, passive);
      EXPECT_EQ(readFile(*connection), "content") << host << passive;
      auto out = openToWrite(*connection, "/up");
      out->Write("abc", 3);
      EXPECT_TRUE(out->Close());
      EXPECT_EQ(server.content("/up"), "abc");
      const auto data = server.dataConnections();
      ASSERT_EQ(data.size(), 2u);
      EXPECT_EQ(data[0].mode, passive ? "passive" : "active");
      EXPECT_EQ(server.commandCount(passive ? "EPSV" : "EPRT"), 2);
      EXPECT_EQ(server.commandCount("PASV") + server.commandCount("PORT"), 0);
      EXPECT_EQ(server.commandCount("TYPE"), 1) << "once per connection";
    }
  }
}

TEST_F(FtpData, FallsBackOnceWhereTheExtendedCommandIsUnknown) {
  for (const char* refusal :
       {"500 Unknown", "501 Bad", "502 No", "504 Not so", "522 Network protocol not supported"}) {
    for (const bool passive : {true, false}) {
      internet::forgetCachedTraits();
      const char* verb = passive ? "EPSV" : "EPRT";
      ScriptedFtp server = serverWith({{{"on", verb}, {"do", {{{"reply", refusal}}}}}});
      for (int i = 0; i < 2; ++i) EXPECT_EQ(readFile(*connect(server, passive)), "content") << refusal;
      EXPECT_EQ(server.commandCount(verb), 1) << "remembered for the next connection";
      EXPECT_EQ(server.commandCount(passive ? "PASV" : "PORT"), 2);
    }
  }
}

// Only the codes of an unknown command led to PASV.
TEST_F(FtpData, FallsBackOnceWhereExtendedPassiveIsForbidden) {
  for (const char* refusal : {"503 Bad sequence", "520 Extended passive is off (|||21|)", "530 Not for you",
                              "550 Permission denied", "553 No"}) {
    internet::forgetCachedTraits();
    ScriptedFtp server = serverWith({{{"on", "EPSV"}, {"do", {{{"reply", refusal}}}}}});
    for (int i = 0; i < 2; ++i) EXPECT_EQ(readFile(*connect(server)), "content") << refusal;
    EXPECT_EQ(server.commandCount("EPSV"), 1) << "remembered for the next connection";
    EXPECT_EQ(server.commandCount("PASV"), 2);
  }
}

TEST_F(FtpData, ExtendedPassiveIsNotBlamedWhereBothCommandsAreRefused) {
  ScriptedFtp server =
      serverWith({{{"on", {"EPSV", "PASV"}}, {"first", 2}, {"do", {{{"reply", "530 Log in again"}}}}}});
  auto connection = connect(server);
  const Thrown thrown = thrownBy([&] { openToRead(*connection, "/f"); });
  EXPECT_EQ(thrown.error, 12003u);
  EXPECT_EQ(thrown.text, "530 Log in again");
  EXPECT_EQ(readFile(*connection), "content");
  EXPECT_EQ(server.commandCount("EPSV"), 2);
  EXPECT_EQ(server.commandCount("PASV"), 1);
}

TEST_F(FtpData, ConnectsToTheServerWhateverAddressItTells) {
  ScriptedFtp server(json{{"tree", file()},
                          {"features", json::array()},
                          {"rules", {{{"on", "PASV"}, {"do", {{{"passive", {{"listen", "trap"}}}}}}}}}});
  EXPECT_EQ(readFile(*connect(server)), "content");
  EXPECT_EQ(server.commandCount("PASV"), 1);
  EXPECT_EQ(server.trapHits(), 0);
}

TEST_F(FtpData, ReadsThePasvPortFromOddReplies) {
  for (const char* text : {"227 Entering Passive Mode {a},{p1},{p2}", "227 =10,0,0,1,{p1},{p2}",
                           "227 Passive v2 (0,0,0,0,{p1},{p2}) ok."}) {
    internet::forgetCachedTraits();
    ScriptedFtp server(json{{"tree", file()},
                            {"features", json::array()},
                            {"rules", {{{"on", "PASV"}, {"do", {{{"passive", {{"text", text}}}}}}}}}});
    EXPECT_EQ(readFile(*connect(server)), "content") << text;
  }
}

TEST_F(FtpData, AnEpsvReplyWithoutAPortMeansPasv) {
  ScriptedFtp server = serverWith({{{"on", "EPSV"}, {"do", {{{"reply", "229 Entering (no port)"}}}}}});
  EXPECT_EQ(readFile(*connect(server)), "content");
  EXPECT_EQ(server.commandCount("PASV"), 1);
}

TEST_F(FtpData, APasvReplyWithoutAPortIs12152) {
  ScriptedFtp server(json{{"tree", file()},
                          {"features", json::array()},
                          {"rules", {{{"on", "PASV"}, {"do", {{{"reply", "227 Entering"}}}}}}}});
  auto connection = connect(server);
  EXPECT_EQ(openError(*connection), 12152u);
  EXPECT_TRUE(works(*connection));
}

TEST_F(FtpData, AnEpsvPortThatCannotBeReachedMeansPasvFromThenOn) {
  for (const char* listen : {"closed", "full"}) {
    internet::forgetCachedTraits();
    session.SetTimeouts(shortTimeouts());
    ScriptedFtp server = serverWith({{{"on", "EPSV"}, {"do", {{{"passive", {{"listen", listen}}}}}}}});
    for (int i = 0; i < 2; ++i) EXPECT_EQ(readFile(*connect(server)), "content") << listen;
    EXPECT_EQ(server.commandCount("EPSV"), 1);
    EXPECT_EQ(server.commandCount("PASV"), 2);
  }
}

TEST_F(FtpData, EpsvIsNotBlamedWhereNoPortCanBeReached) {
  session.SetTimeouts(shortTimeouts());
  ScriptedFtp server =
      serverWith({{{"on", {"EPSV", "PASV"}}, {"first", 2}, {"do", {{{"passive", {{"listen", "closed"}}}}}}}});
  EXPECT_EQ(openError(*connect(server)), 12029u);
  EXPECT_EQ(readFile(*connect(server)), "content");
  EXPECT_EQ(server.commandCount("EPSV"), 2);
  EXPECT_EQ(server.commandCount("PASV"), 1);
}

TEST_F(FtpData, ARefusedDataConnectionIs12029) {
  for (const bool passive : {true, false}) {
    ScriptedFtp server = serverWith({{{"on", "RETR"}, {"do", {{{"normal", {{"connect", "refuse"}}}}}}}});
    auto connection = connect(server, passive);
    EXPECT_EQ(openError(*connection), 12029u) << passive;
    EXPECT_TRUE(connection->LastServerText().starts_with("425 "));
    EXPECT_TRUE(works(*connection));
  }
}

TEST_F(FtpData, AServerThatNeverConnectsBackIsGivenUp) {
  session.SetTimeouts(shortTimeouts());
  ScriptedFtp server = serverWith({{{"on", "RETR"}, {"do", {{{"normal", {{"connect", "never"}}}}}}}});
  auto connection = connect(server, false);
  EXPECT_EQ(openError(*connection), 12002u);
}

TEST_F(FtpData, TakesNoConnectionFromAnotherHost) {
  session.SetTimeouts(shortTimeouts());
  ScriptedFtp server =
      serverWith({{{"on", "RETR"}, {"do", {{{"normal", {{"connect_from", "127.0.0.2"}}}}}}}});
  auto connection = connect(server, false);
  EXPECT_NE(openError(*connection), 0u);
}

TEST_F(FtpData, APassiveCommandThatIsRefusedKeepsItsText) {
  ScriptedFtp server = serverWith({{{"on", "EPSV"}, {"do", {{{"reply", "450 Busy"}}}}}});
  auto connection = connect(server);
  const Thrown thrown = thrownBy([&] { openToRead(*connection, "/f"); });
  EXPECT_EQ(thrown.error, 12003u);
  EXPECT_EQ(thrown.text, "450 Busy");
  EXPECT_TRUE(works(*connection));
}

TEST_F(FtpData, AServerWithoutBinaryTypeIsRefused) {
  ScriptedFtp server = serverWith({{{"on", "TYPE"}, {"do", {{{"reply", "504 Text only"}}}}}});
  auto connection = connect(server);
  const Thrown thrown = thrownBy([&] { openToRead(*connection, "/f"); });
  EXPECT_EQ(thrown.error, 12003u);
  EXPECT_EQ(thrown.text, "504 Text only");
  EXPECT_TRUE(works(*connection)) << "the answer to EPSV has been taken, too";
  EXPECT_EQ(server.commandCount("RETR"), 0);
}

TEST_F(FtpData, TakesATransferWhoseFirstReplyIsTheFinalOne) {
  ScriptedFtp server = serverWith({{{"on", "RETR"}, {"do", {{{"normal", {{"opening", nullptr}}}}}}}});
  auto connection = connect(server);
  auto opened = openToRead(*connection, "/f");
  EXPECT_EQ(readToEnd(*opened), "content");
  session.takeStatuses();
  EXPECT_TRUE(opened->Close());
  EXPECT_EQ(session.takeStatuses(), std::vector<std::uint32_t>{}) << "told by OpenFile already";
  EXPECT_TRUE(works(*connection));
}

TEST_F(FtpData, ADownloadKeepsToSevenReplies) {
  ScriptedFtp server(json{{"tree", file()}});
  auto connection = connect(server);
  EXPECT_EQ(readFile(*connection), "content");
  EXPECT_EQ(server.repliesSent(), 7) << "banner, USER, PASS, TYPE with EPSV, 150, 226";
  EXPECT_EQ(server.commands(),
            (std::vector<std::string>{"USER user", "PASS secret", "TYPE I", "EPSV", "RETR /f"}));
}

}  // namespace
}  // namespace internet_tests
