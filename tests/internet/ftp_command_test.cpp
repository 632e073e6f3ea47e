// SPDX-License-Identifier: MIT
// Commands on the control connection: arguments, refusals and their numbers, replies of every kind, what
// happens when the connection ends.
#include <nlohmann/json.hpp>

#include "framework/internet/ftp/FtpControl.h"
#include "framework/internet/net/InternetLimits.h"
#include "tests/internet/FtpTest.h"
#include "tests/internet/ListedText.h"
#include "tests/support/RepliesWaitedFor.h"

namespace internet_tests {
namespace {

using fixture::ScriptedFtp;
using nlohmann::json;
using namespace nlohmann::literals;
using testing_support::repliesWaitedFor;
using testing_support::roundTrips;
using Statuses = std::vector<std::uint32_t>;

class FtpCommand : public FtpTest {
 protected:
  // A server that answers DELE by these steps.
  static ScriptedFtp answering(const json& steps) {
    return ScriptedFtp(json{{"rules", {{{"on", "DELE"}, {"do", steps}}}}});
  }

  static std::string repeated(std::string_view line, unsigned count) {
    std::string all;
    for (unsigned i = 0; i < count; ++i) all += line;
    return all;
  }
};

TEST_F(FtpCommand, DoesWhatItIsToldTo) {
  ScriptedFtp server(R"({"tree": {"/dir/": {}, "/old": "x", "/gone": "y"}})"_json);
  auto connection = connect(server);
  EXPECT_TRUE(connection->CreateDirectory("/dir/new"));
  EXPECT_TRUE(connection->Rename("/old", "/dir/name"));
  EXPECT_TRUE(connection->Remove("/gone"));
  EXPECT_TRUE(connection->RemoveDirectory("/dir/new"));
  EXPECT_TRUE(connection->SetCurrentDirectory("/dir"));
  std::string directory;
  EXPECT_TRUE(connection->GetCurrentDirectory(directory));
  EXPECT_EQ(directory, "/dir");
  EXPECT_EQ(server.names("/dir"), std::vector<std::string>{"name"});
  EXPECT_FALSE(server.exists("/gone"));
}

TEST_F(FtpCommand, RefusesArgumentsBeforeAnythingIsSent) {
  ScriptedFtp server(R"({"tree": {"/victim": "x"}})"_json);
  auto connection = connect(server);
  const std::string tooLong(internet::kMaxArgument + 1, 'x');
  for (const char* path : {static_cast<const char*>(nullptr), "", "a\r\nDELE /victim", "a\nb", "a\tb",
                           "a\x7f", "\x1f", tooLong.c_str()}) {
    EXPECT_EQ(errorOf([&] { return connection->Remove(path); }), 87u);
    EXPECT_EQ(errorOf([&] { return connection->CreateDirectory(path); }), 87u);
    EXPECT_EQ(errorOf([&] { return connection->RemoveDirectory(path); }), 87u);
    EXPECT_EQ(errorOf([&] { return connection->Rename(path, "b"); }), 87u);
    EXPECT_EQ(errorOf([&] { return connection->Rename("/victim", path); }), 87u);
    EXPECT_EQ(errorOf([&] { return connection->SetCurrentDirectory(path); }), 87u);
    EXPECT_EQ(errorOf([&] { return connection->GetFile(path, "local"); }), 87u);
    EXPECT_EQ(errorOf([&] { return connection->PutFile("local", path); }), 87u);
    EXPECT_EQ(thrownBy([&] { openToRead(*connection, path); }).error, 87u);
  }
  EXPECT_EQ(errorOf([&] { return connection->GetFile("/victim", nullptr); }), 87u);
  EXPECT_EQ(errorOf([&] { return connection->PutFile(nullptr, "/victim"); }), 87u);
  EXPECT_EQ(thrownBy([&] { connection->OpenFile("/victim", 0); }).error, 87u);
  EXPECT_EQ(server.commands().size(), 2u) << "USER and PASS alone";
  EXPECT_TRUE(server.exists("/victim"));
}

TEST_F(FtpCommand, SendsEveryOtherNameByteForByte) {
  ScriptedFtp server(R"({"encoding": "latin-1"})"_json);
  auto connection = connect(server);
  for (const char* name : {" leading", "trailing ", "a b", "%41", "a#b", "a?b", "a*b", "[x]", "a;b", "-l",
                           "\"q\"", "gr\xc3\xbc\xc3\x9f", "gr\xfc\xdf", "\xff", "a\\b"}) {
    EXPECT_TRUE(connection->CreateDirectory(name)) << name;
    EXPECT_TRUE(connection->RemoveDirectory(name)) << name;
  }
  EXPECT_EQ(server.commandCount("RMD"), 15);
}

TEST_F(FtpCommand, GivesEachRefusalItsNumberAndKeepsItsText) {
  const std::pair<const char*, std::uint32_t> refusals[] = {
      {"425 No data", 12029},   {"426 Gone", 12030},     {"450 Busy", 12003},   {"451 Local error", 12003},
      {"500 Unknown", 12003},   {"502 Not here", 12003}, {"530 Log in", 12003}, {"550 No such file", 12003},
      {"552 Disk full", 12003}, {"553 Bad name", 12003}};
  for (const auto& [line, error] : refusals) {
    ScriptedFtp server = answering({{{"reply", line}}});
    auto connection = connect(server);
    EXPECT_EQ(connection->LastServerText(), "");
    EXPECT_EQ(errorOf([&] { return connection->Remove("/x"); }), error) << line;
    EXPECT_EQ(connection->LastServerText(), line);
    EXPECT_TRUE(works(*connection)) << line;
  }
}

TEST_F(FtpCommand, AServerThatSaysFarewellIs12030) {
  ScriptedFtp server = answering({{{"reply", "421 Timeout"}}});
  auto connection = connect(server);
  session.takeStatuses();
  EXPECT_EQ(errorOf([&] { return connection->Remove("/x"); }), 12030u);
  EXPECT_EQ(connection->LastServerText(), "421 Timeout");
  EXPECT_EQ(session.takeStatuses(), (Statuses{30, 31, 40}));
  EXPECT_EQ(errorOf([&] { return connection->Remove("/x"); }), 12030u) << "dead from now on";
  EXPECT_EQ(session.takeStatuses(), Statuses{});
}

// Who asked whether there was a connection, once told of the failure, was answered no.
TEST_F(FtpCommand, ABrokenConnectionIsReportedClosedOnceItIsGivenUp) {
  session.SetTimeouts(shortTimeouts());
  for (const json& end : {json("close"), json("reset"), json("silent"), json{{"reply", "421 Timeout"}}}) {
    ScriptedFtp server = answering(json::array({end}));
    auto connection = connect(server);
    EXPECT_NE(errorOf([&] { return connection->Remove("/x"); }), 0u);
    EXPECT_EQ(session.takeStatuses().back(), 40u) << end;
    connection->Close();
    EXPECT_EQ(session.takeStatuses(), (Statuses{50, 51, 70})) << end;
    connection.reset();
    EXPECT_EQ(session.takeStatuses(), Statuses{});
  }
}

TEST_F(FtpCommand, WaitIdleReportsAConnectionThatBrokeBefore) {
  ScriptedFtp server = answering({"close"});
  auto connection = connect(server);
  EXPECT_EQ(errorOf([&] { return connection->Remove("/x"); }), 12030u);
  session.takeStatuses();
  EXPECT_TRUE(connection->WaitIdle(std::chrono::hours(1)));
  EXPECT_EQ(session.takeStatuses(), (Statuses{50, 51}));
  connection->Close();
  EXPECT_EQ(session.takeStatuses(), Statuses{70});
}

TEST_F(FtpCommand, TakesLongRepliesAndOddOnes) {
  for (const json& step :
       {json{{"raw", "250-Deleting\r\n251 decoy\r\n 250 decoy\r\n250-\r\n250 done\r\n"}},
        json{{"raw", "250 ok\n"}}, json{{"raw", std::string("250 a\0b\r\n", 9)}},
        json{{"raw", "\r\n\r\n250 ok\r\n"}}, json{{"raw", "150 working\r\n250 ok\r\n"}},
        json{{"long_line", {{"code", "250"}, {"bytes", 60'000}}}}, json{{"set", {{"reply_drip_ms", 0}}}}}) {
    json steps = json::array({step});
    if (step.contains("set")) steps.push_back({{"reply", {"250-dripping", "250 ok"}}});
    ScriptedFtp server = answering(steps);
    auto connection = connect(server);
    EXPECT_TRUE(connection->Remove("/x"))
        << step.dump(-1, ' ', true, json::error_handler_t::replace).substr(0, 100);
    EXPECT_TRUE(works(*connection));
  }
}

TEST_F(FtpCommand, GivesUpOnRepliesWithoutEnd) {
  for (const json& step :
       {json{{"endless_line", "250"}}, json{{"endless_reply", "250"}},
        json{{"long_line", {{"code", "250"}, {"bytes", 70'000}}}}, json{{"raw", "hello\r\n"}}}) {
    ScriptedFtp server = answering(json::array({step}));
    auto connection = connect(server);
    EXPECT_EQ(errorOf([&] { return connection->Remove("/x"); }), 12152u) << step;
    EXPECT_EQ(errorOf([&] { return connection->Remove("/x"); }), 12030u) << step;
  }
}

// Such a server was listened to for ever.
TEST_F(FtpCommand, GivesUpOnAServerThatNeverComesToAnAnswer) {
  for (const unsigned more : {0u, 1u}) {
    const std::string waits = repeated("110 Wait\r\n", internet::kMaxPreliminaryReplies + more);
    ScriptedFtp server(json{{"rules",
                             {{{"on", "DELE"}, {"do", {{{"raw", waits + "250 Done\r\n"}}}}},
                              {{"on", "TYPE"}, {"do", {{{"raw", waits + "200 Binary\r\n"}}}}}}}});
    const std::uint32_t error = more == 0 ? 0u : 12152u;
    EXPECT_EQ(errorOf([&, connection = connect(server)] { return connection->Remove("/x"); }), error);
    const auto connection = connect(server);
    EXPECT_EQ(thrownBy([&] { openToRead(*connection, "/x"); }).error, more == 0 ? 12003u : 12152u);
    EXPECT_EQ(works(*connection), more == 0);
  }
}

TEST_F(FtpCommand, GivesUpOnAServerThatSpeaksUnaskedWithoutEnd) {
  for (const unsigned more : {0u, 1u}) {
    const std::string unasked = repeated("200 Unasked\r\n", internet::kMaxStrayReplies + more);
    ScriptedFtp server = answering({{{"raw", "250 Done\r\n" + unasked}}});
    auto connection = connect(server);
    EXPECT_TRUE(connection->Remove("/x"));
    EXPECT_EQ(errorOf([&] { return works(*connection); }), more == 0 ? 0u : 12152u);
    connection = connect(server);
    EXPECT_TRUE(connection->Remove("/x"));
    EXPECT_EQ(connection->WaitIdle(std::chrono::milliseconds(1)), more != 0);
  }
}

TEST_F(FtpCommand, ASilentServerIs12002AndLeavesNoAnswerForTheNextCommand) {
  ScriptedFtp server = answering({"silent"});
  session.SetTimeouts(shortTimeouts());
  auto connection = connect(server);
  session.takeStatuses();
  EXPECT_EQ(errorOf([&] { return connection->Remove("/x"); }), 12002u);
  EXPECT_EQ(session.takeStatuses(), (Statuses{30, 31, 40}));
  EXPECT_EQ(errorOf([&] { return connection->Remove("/x"); }), 12030u);
}

TEST_F(FtpCommand, AClosedConnectionIs12030AndABrokenOne12031) {
  for (const auto& [how, error] : {std::pair("close", 12030u), std::pair("reset", 12031u)}) {
    ScriptedFtp server = answering({how});
    auto connection = connect(server);
    EXPECT_EQ(errorOf([&] { return connection->Remove("/x"); }), error) << how;
  }
}

TEST_F(FtpCommand, NoticesAConnectionThatEndedBetweenCommands) {
  for (const char* farewell : {"", "421 Idle for too long"}) {
    ScriptedFtp server;
    auto connection = connect(server);
    server.disconnect(farewell);
    server.waitUntilAllClosed();
    EXPECT_EQ(errorOf([&] { return connection->Remove("/x"); }), 12030u);
    EXPECT_EQ(server.commandCount("DELE"), 0);
  }
}

TEST_F(FtpCommand, AReplyThatNobodyAskedForIsNotTakenForAnAnswer) {
  ScriptedFtp server = answering({{{"raw", "250 Deleted\r\n550 And once more\r\n"}}});
  auto connection = connect(server);
  EXPECT_TRUE(connection->Remove("/x"));
  EXPECT_TRUE(works(*connection));
}

TEST_F(FtpCommand, AReplyThatNobodyAskedForIsNotTakenForAnAnswerToALineInWaiting) {
  // OPTS waits for the next command while the server speaks unasked.
  ScriptedFtp server(R"({"rules": [{"on": "FEAT", "do": ["normal", {"reply": "200 Unasked"}]}]})"_json);
  auto connection = connect(server);
  const auto& control = connection->Control();
  control->request([&] { EXPECT_TRUE(control->traits().utf8); });
  EXPECT_FALSE(connection->WaitIdle(std::chrono::milliseconds(20)));
  EXPECT_TRUE(works(*connection));
  EXPECT_EQ(errorOf([&] { return connection->Remove("/missing"); }), 12003u);
}

TEST_F(FtpCommand, WaitIdleReportsTheServersCloseOnce) {
  ScriptedFtp server;
  auto connection = connect(server);
  session.takeStatuses();
  EXPECT_FALSE(connection->WaitIdle(std::chrono::milliseconds(20)));
  EXPECT_EQ(session.takeStatuses(), Statuses{});
  server.disconnect();
  while (!connection->WaitIdle(std::chrono::milliseconds(100))) {
  }
  EXPECT_EQ(session.takeStatuses(), (Statuses{50, 51}));
  EXPECT_TRUE(connection->WaitIdle(std::chrono::hours(1)));
  EXPECT_EQ(session.takeStatuses(), Statuses{});
}

TEST_F(FtpCommand, WaitIdleTakesAFarewellForTheEnd) {
  ScriptedFtp server(R"({"rules": [{"on": "NOOP", "do": [{"reply": "200 OK"}]}]})"_json);
  auto connection = connect(server);
  server.disconnect("421 Idle");
  while (!connection->WaitIdle(std::chrono::milliseconds(100))) {
  }
  EXPECT_EQ(errorOf([&] { return connection->Remove("/x"); }), 12030u);
}

TEST_F(FtpCommand, ADirectoryThatTheServerTellsBadlyIsARefusal) {
  for (const char* line :
       {"257 no quotes", "257 \"/a\tb\"", "257 \"\"", "257 \"/open", "200 \"/pub\"", "550 No"}) {
    ScriptedFtp server(json{{"rules", {{{"on", "PWD"}, {"do", {{{"raw", std::string(line) + "\r\n"}}}}}}}});
    auto connection = connect(server);
    std::string directory = "untouched";
    EXPECT_EQ(errorOf([&] { return connection->GetCurrentDirectory(directory); }), 12003u) << line;
    EXPECT_EQ(directory, "untouched");
  }
}

TEST_F(FtpCommand, IsRefusedAfterClose) {
  ScriptedFtp server;
  auto connection = connect(server);
  connection->Close();
  EXPECT_EQ(errorOf([&] { return connection->Remove("/x"); }), 12019u);
  EXPECT_EQ(thrownBy([&] { openToRead(*connection, "/x"); }).error, 12019u);
  EXPECT_TRUE(connection->WaitIdle(std::chrono::hours(1)));
}

TEST_F(FtpCommand, CloseKeepsTheLastErrorAndDoesNotWaitForTheAnswer) {
  ScriptedFtp server(R"({"rules": [{"on": "QUIT", "do": ["silent"]}]})"_json);
  auto connection = connect(server);
  platform::setLastError(4711);
  connection->Close();
  EXPECT_EQ(platform::lastError(), 4711u);
  server.waitForCommand("QUIT");
  server.waitUntilAllClosed();
}

TEST_F(FtpCommand, ACallbackMayReEnterAndIsRefused) {
  ScriptedFtp server(R"({"tree": {"/a": "x", "/b": "y"}})"_json);
  auto connection = connect(server);
  std::uint32_t inner = 0;
  session.onStatus = [&](std::uint32_t status) {
    if (status == 31 && inner == 0) inner = errorOf([&] { return connection->Remove("/b"); });
  };
  EXPECT_TRUE(connection->Remove("/a"));
  EXPECT_EQ(inner, 12110u);
  EXPECT_TRUE(server.exists("/b"));
}

TEST_F(FtpCommand, ACallbackMayCloseOrDeleteTheConnection) {
  for (const std::uint32_t at : {30u, 31u, 40u, 41u, 100u}) {
    ScriptedFtp server(R"({"tree": {"/a": "x"}})"_json);
    auto connection = connect(server);
    session.onStatus = [&](std::uint32_t status) {
      if (status == at) connection.reset();
    };
    const std::uint32_t error = errorOf([raw = connection.get()] { return raw->Remove("/a"); });
    EXPECT_EQ(error, at < 41 ? 12030u : 0u) << at;
    session.onStatus = nullptr;
    server.waitUntilAllClosed();
  }
}

TEST_F(FtpCommand, AsksForFeaturesOncePerServerAndSwitchesUtf8OnInPassing) {
  ScriptedFtp server(R"({"tree": {"/a": "x"}})"_json);
  for (const int connections : {1, 2}) {
    auto connection = connect(server);
    const auto& control = connection->Control();
    control->request([&] {
      EXPECT_TRUE(control->traits().mlst);
      EXPECT_EQ(control->command("MLST", "/a").code, 250);
    });
    EXPECT_EQ(server.commandCount("FEAT"), 1);
    EXPECT_EQ(server.commandCount("OPTS"), connections);
    if (connections == 1) {
      EXPECT_EQ(roundTrips(server), 5) << "banner, USER, PASS, FEAT, OPTS with MLST";
    }
  }
  EXPECT_EQ(server.commands(2).at(2), "OPTS UTF8 ON") << "known from the first connection";
}

TEST_F(FtpCommand, GoesOnWhateverTheAnswerToUtf8Is) {
  for (const char* answer : {"504 No", "550 Never", "200 Fine"}) {
    internet::forgetCachedTraits();
    ScriptedFtp server(json{{"rules", {{{"on", "OPTS"}, {"do", {{{"reply", answer}}}}}}}});
    auto connection = connect(server);
    const auto& control = connection->Control();
    control->request([&] { EXPECT_TRUE(control->traits().utf8); });
    EXPECT_TRUE(works(*connection)) << answer;
  }
}

TEST_F(FtpCommand, AServerWithoutFeaturesIsKnownToHaveNone) {
  ScriptedFtp server(R"({"rules": [{"on": "FEAT", "do": [{"reply": "500 Unknown"}]}]})"_json);
  auto connection = connect(server);
  const auto& control = connection->Control();
  control->request([&] {
    EXPECT_FALSE(control->traits().mlst);
    EXPECT_FALSE(control->traits().utf8);
  });
  EXPECT_EQ(server.commandCount("FEAT"), 1);
}

TEST_F(FtpCommand, AVisitToADirectoryReturnsWithoutWaiting) {
  ScriptedFtp server(R"({"tree": {"/home/": {}, "/pub/": {}}, "home": "/home"})"_json);
  auto connection = connect(server);
  const auto& control = connection->Control();
  control->request([&] {
    internet::FtpControl::DirectoryVisit visit(*control);
    EXPECT_TRUE(visit.enter("/pub").completed());
    EXPECT_TRUE(visit.enter("/missing").refused());
  });
  std::string directory;
  EXPECT_TRUE(connection->GetCurrentDirectory(directory));
  EXPECT_EQ(directory, "/home");
  EXPECT_EQ(server.commandCount("PWD"), 2);
}

TEST_F(FtpCommand, AWayBackThatIsRefusedEndsTheConnection) {
  // A relative name must not be looked up in the wrong directory.
  ScriptedFtp server(
      R"({"tree": {"/pub/": {}}, "rules": [{"on": "CWD", "argument": "/", "do": [{"reply": "550 No"}]}]})"_json);
  auto connection = connect(server);
  const auto& control = connection->Control();
  control->request([&] {
    internet::FtpControl::DirectoryVisit visit(*control);
    EXPECT_TRUE(visit.enter("/pub").completed());
  });
  EXPECT_EQ(errorOf([&] { return connection->Remove("relative"); }), 12030u);
  EXPECT_EQ(server.commandCount("DELE"), 0);
}

TEST_F(FtpCommand, AListingComesWithItsFinalReply) {
  ScriptedFtp server(R"({"tree": {"/a": "x", "/b": "y"}})"_json);
  auto connection = connect(server);
  const auto& control = connection->Control();
  control->request([&] {
    const auto listed = listedBy(*control, "NLST");
    EXPECT_EQ(listed.text, "a\r\nb\r\n");
    EXPECT_EQ(listed.reply.code, 226);
    EXPECT_EQ(listedBy(*control, "NLST", "/missing").reply.code, 550);
    EXPECT_EQ(listedBy(*control, "NLST").text, "a\r\nb\r\n") << "still in step";
  });
}

TEST_F(FtpCommand, AListingKeepsToSevenReplies) {
  ScriptedFtp server(R"({"tree": {"/a": "x"}})"_json);
  auto connection = connect(server);
  const auto& control = connection->Control();
  control->request([&] {
    EXPECT_TRUE(control->traits().mlst);
    EXPECT_EQ(listedBy(*control, "MLSD", "/").reply.code, 226);
  });
  connection->Close();
  server.waitUntilAllClosed();
  EXPECT_EQ(repliesWaitedFor(server), 7) << "banner, USER, PASS, FEAT, EPSV, MLSD and its end";
}

TEST_F(FtpCommand, AListingRefusedAfterItBeganIsTheCallersToJudge) {
  ScriptedFtp server(
      R"({"rules": [{"on": "LIST", "do": [{"normal": {"lines": [], "final": "550 No files"}}]}]})"_json);
  auto connection = connect(server);
  const auto& control = connection->Control();
  control->request([&] {
    const auto listed = listedBy(*control, "LIST");
    EXPECT_EQ(listed.reply.code, 550);
    EXPECT_EQ(listed.text, "");
  });
  EXPECT_TRUE(works(*connection));
}

}  // namespace
}  // namespace internet_tests
