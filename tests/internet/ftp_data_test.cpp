// SPDX-License-Identifier: MIT
// How data connections are made: passive and active, both families, and what servers and the way between do
// wrong.
#include <array>
#include <nlohmann/json.hpp>
#include <thread>

#include "framework/internet/FtpFileFind.h"
#include "framework/internet/ftp/FtpControl.h"
#include "tests/internet/FtpTest.h"

namespace internet_tests {
namespace {

using fixture::ScriptedFtp;
using nlohmann::json;
using namespace nlohmann::literals;

class FtpData : public FtpTest {
 protected:
  static json file() { return {{"/f", "content"}, {"/pub/", json::object()}}; }

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

// Only the codes of an unknown command led to PASV and PORT.
TEST_F(FtpData, FallsBackOnceWhereTheExtendedCommandIsForbidden) {
  for (const char* refusal : {"503 Bad sequence", "520 Extended passive is off (|||21|)", "530 Not for you",
                              "550 Permission denied", "553 No"}) {
    for (const bool passive : {true, false}) {
      internet::forgetCachedTraits();
      const char* const extended = passive ? "EPSV" : "EPRT";
      ScriptedFtp server = serverWith({{{"on", extended}, {"do", {{{"reply", refusal}}}}}});
      for (int i = 0; i < 2; ++i) EXPECT_EQ(readFile(*connect(server, passive)), "content") << refusal;
      EXPECT_EQ(server.commandCount(extended), 1) << "remembered for the next connection";
      EXPECT_EQ(server.commandCount(passive ? "PASV" : "PORT"), 2);
    }
  }
}

TEST_F(FtpData, TheExtendedCommandIsNotBlamedWhereBothCommandsAreRefused) {
  for (const bool passive : {true, false}) {
    internet::forgetCachedTraits();
    const std::array commands{passive ? "EPSV" : "EPRT", passive ? "PASV" : "PORT"};
    ScriptedFtp server =
        serverWith({{{"on", commands}, {"first", 2}, {"do", {{{"reply", "530 Log in again"}}}}}});
    auto connection = connect(server, passive);
    const Thrown thrown = thrownBy([&] { openToRead(*connection, "/f"); });
    EXPECT_EQ(thrown.error, 12003u);
    EXPECT_EQ(thrown.text, "530 Log in again");
    EXPECT_EQ(readFile(*connection), "content");
    EXPECT_EQ(server.commandCount(commands[0]), 2);
    EXPECT_EQ(server.commandCount(commands[1]), 1);
  }
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

// Nobody listened to the server any more once it had announced the transfer.
TEST_F(FtpData, ADataConnectionThatTheServerGivesUpIsNotWaitedFor) {
  internet::Timeouts patient;
  patient.connect = std::chrono::hours(1);
  session.SetTimeouts(patient);
  struct Case {
    json ending;
    std::uint32_t error;
    const char* text;
  };
  const Case cases[] = {{{{"reply", "425 Cannot connect"}}, 12029, "425 Cannot connect"},
                        {{{"reply", "426 Broken"}}, 12030, "426 Broken"},
                        {{{"reply", "550 Not any more"}}, 12003, "550 Not any more"},
                        {{{"reply", "350 And then?"}}, 12003, "350 And then?"},
                        {{{"reply", "421 Farewell"}}, 12030, "421 Farewell"},
                        {"close", 12030, ""}};
  for (const bool passive : {true, false}) {
    for (const Case& each : cases) {
      internet::forgetCachedTraits();
      // In passive mode no connection ever comes to stand.
      ScriptedFtp server(
          json{{"features", json::array()},
               {"rules",
                {{{"on", "PASV"}, {"do", {{{"passive", {{"listen", "full"}}}}}}},
                 {{"on", "RETR"}, {"do", {{{"reply", "150 Here"}}, {{"gate", "later"}}, each.ending}}}}}});
      auto connection = connect(server, passive);
      std::thread later([&] {
        server.waitAtGate("later");
        server.release("later");
      });
      EXPECT_EQ(openError(*connection), each.error) << passive << each.ending;
      EXPECT_EQ(connection->LastServerText(), each.text);
      later.join();
    }
  }
}

TEST_F(FtpData, ADataConnectionThatIsGivenUpAtOnceIsNotWaitedForEither) {
  internet::Timeouts patient;
  patient.connect = std::chrono::hours(1);
  session.SetTimeouts(patient);
  ScriptedFtp server =
      serverWith({{{"on", {"RETR", "STOR"}}, {"do", {{{"reply", {"150 Here", "425 Cannot connect"}}}}}}});
  auto connection = connect(server, false);
  session.takeStatuses();
  EXPECT_EQ(openError(*connection), 12029u);
  // TYPE with EPRT, RETR and its end.
  EXPECT_EQ(session.takeStatuses(),
            (std::vector<std::uint32_t>{30, 31, 40, 41, 30, 31, 40, 41, 40, 41, 100}));
  EXPECT_EQ(thrownBy([&] { openToWrite(*connection, "/up"); }).error, 12029u);
  EXPECT_TRUE(works(*connection));
}

TEST_F(FtpData, AnActiveTransferThatEndsWithoutItsDataIsNoWholeFile) {
  internet::Timeouts timeouts;
  timeouts.endOfData = std::chrono::milliseconds(1);
  session.SetTimeouts(timeouts);
  const auto ending = [](const char* opening) {
    return serverWith({{{"on", {"RETR", "STOR"}}, {"do", {{{"reply", {opening, "226 Done"}}}}}}});
  };
  for (const char* opening : {"150 Here (7 bytes)", "150 Here (1 byte)", "150 Here"}) {
    ScriptedFtp server = ending(opening);
    auto connection = connect(server, false);
    EXPECT_EQ(openError(*connection), 12030u) << opening;
    EXPECT_TRUE(works(*connection));
  }
  ScriptedFtp server = ending("150 Here (0 bytes)");
  auto connection = connect(server, false);
  EXPECT_EQ(readFile(*connection), "");
  EXPECT_EQ(thrownBy([&] { openToWrite(*connection, "/up"); }).error, 12030u) << "an upload needs one";
  EXPECT_TRUE(works(*connection));
}

TEST_F(FtpData, AnActiveListingMayEndWithoutData) {
  internet::Timeouts timeouts;
  timeouts.endOfData = std::chrono::milliseconds(1);
  session.SetTimeouts(timeouts);
  for (const char* end : {"226 Done", "550 No files found"}) {
    ScriptedFtp server = serverWith({{{"on", "MLSD"}, {"do", {{{"reply", {"150 Here", end}}}}}}});
    auto connection = connect(server, false);
    CFtpFileFind finder(connection.get());
    EXPECT_EQ(errorOf([&] { return finder.FindFile("/*"); }), platform::kErrorNoMoreFiles) << end;
    EXPECT_TRUE(works(*connection));
  }
}

// What travels by two connections may come in another order than it was sent.
TEST_F(FtpData, TakesAnActiveDataConnectionThatComesBehindTheEnd) {
  internet::Timeouts patient;
  patient.endOfData = std::chrono::minutes(10);
  session.SetTimeouts(patient);
  const json late = {{"normal", {{"opening", nullptr}, {"final", nullptr}}}};
  ScriptedFtp server =
      serverWith({{{"on", "RETR"}, {"do", {{{"reply", {"150 Here (7 bytes)", "226 Done"}}}, late}}}});
  auto connection = connect(server, false);
  EXPECT_EQ(readFile(*connection), "content");
  EXPECT_TRUE(works(*connection));
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

// The preliminary reply was taken for the answer to TYPE, and each later reply for another command's.
TEST_F(FtpData, APreliminaryReplyToALineSentAheadKeepsTheRepliesInStep) {
  ScriptedFtp server =
      serverWith({{{"on", {"TYPE", "OPTS"}}, {"do", {{{"reply", {"110 Wait", "120 Wait", "200 Done"}}}}}},
                  {{"on", "CWD"}, {"argument", "/"}, {"do", {{{"reply", "110 Wait"}}, "normal"}}}});
  auto connection = connect(server);
  const auto& control = connection->Control();
  control->request([&] {
    EXPECT_TRUE(control->traits().utf8);
    internet::FtpControl::DirectoryVisit visit(*control);
    EXPECT_TRUE(visit.enter("/pub").completed());
  });
  EXPECT_EQ(readFile(*connection), "content");
  EXPECT_TRUE(works(*connection));
  EXPECT_EQ(server.commandCount("TYPE"), 1);
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

TEST_F(FtpData, ADownloadKeepsToSevenRoundTrips) {
  ScriptedFtp server(json{{"tree", file()}});
  auto connection = connect(server);
  EXPECT_EQ(readFile(*connection), "content");
  EXPECT_EQ(server.repliesSent(), 8) << "banner, USER, PASS, TYPE and SIZE with EPSV, 150, 226";
  EXPECT_EQ(server.commands(),
            (std::vector<std::string>{"USER user", "PASS secret", "TYPE I", "SIZE /f", "EPSV", "RETR /f"}));
}

}  // namespace
}  // namespace internet_tests
