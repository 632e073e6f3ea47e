// SPDX-License-Identifier: MIT
// A finder on a connection that the server has closed meanwhile: it logs in again, once, and nobody notices.
#include <nlohmann/json.hpp>

#include "tests/internet/CancelTest.h"
#include "tests/internet/FindTest.h"

namespace internet_tests {
namespace {

using fixture::ScriptedFtp;
using nlohmann::json;
using namespace nlohmann::literals;
using Statuses = std::vector<std::uint32_t>;

// How a server ends a connection: what it says, and how it closes.
struct End {
  const char* name;
  const char* reply;
  const char* how;
};

constexpr End kEnds[] = {{"Fin", "", "fin"},
                         {"Reset", "", "reset"},
                         {"Farewell", "421 Timeout", "fin"},
                         {"Rude", "421 Timeout", "reset"}};

const json kTree = {{"/dir/a", "four"}, {"/dir/sub/", json::object()}, {"/x", "12345"}};

class FtpReopen : public FindTest {
 protected:
  static json script(const json& rules = json::array()) { return {{"tree", kTree}, {"rules", rules}}; }
  // The rule for what a server does in place of answering a command.
  static json instead(const char* verb, const json& step, const json& which = json::object()) {
    json rule{{"on", verb}, {"do", {step}}};
    rule.update(which);
    return json::array({rule});
  }

  std::unique_ptr<CFtpConnection> connectToStay(const ScriptedFtp& server) {
    auto connection = connect(server);
    connection->ReopenOnDemand(true);
    return connection;
  }
  static void end(const ScriptedFtp& server, const End& how = kEnds[0]) {
    server.disconnect(how.reply, how.how);
    server.waitUntilAllClosed();
  }
  static void learnFeatures(CFtpConnection& connection) {
    CFtpFileFind finder(&connection);
    ASSERT_EQ(namesOf(search(finder, "/x").entries), Names{"x"});
  }
  static std::size_t connections(const ScriptedFtp& server) { return server.connections().size(); }
  static bool wasTold(const ScriptedFtp& server, int connection, const std::string& line) {
    const auto lines = server.commands(connection);
    return std::find(lines.begin(), lines.end(), line) != lines.end();
  }
  // What speaks of connections that come and go.
  Statuses takeConnectionStatuses() {
    Statuses statuses = session.takeStatuses();
    std::erase_if(statuses, [](std::uint32_t status) {
      return status != 50 && status != 51 && (status < 10 || status > 21);
    });
    return statuses;
  }
};

class EachEnd : public FtpReopen, public testing::WithParamInterface<std::tuple<End, bool>> {};

// Every search ended with 12030 from then on.
TEST_P(EachEnd, GoesUnnoticed) {
  const auto& [how, withFacts] = GetParam();
  json settings = script();
  if (!withFacts) settings["features"] = {"size", "mdtm", "epsv"};
  const ScriptedFtp server(settings);
  const auto connection = connectToStay(server);
  CFtpFileFind finder(connection.get());
  takeConnectionStatuses();
  for (const auto& [pattern, names] : {std::pair("/dir", Names{"a", "sub"}), std::pair("/x", Names{"x"}),
                                       std::pair("*.*", Names{"dir", "x"})}) {
    for (const char* when : {"before", "after"}) {
      Names found = namesOf(search(finder, pattern).entries);
      std::sort(found.begin(), found.end());
      EXPECT_EQ(found, names) << when;
      if (when == std::string("before")) end(server, how);
    }
  }
  EXPECT_EQ(connections(server), 1u + 3u);
  EXPECT_EQ(takeConnectionStatuses(), Statuses{});
  connection->Close();
  EXPECT_EQ(session.takeStatuses(), (Statuses{50, 51, 70}));
}

INSTANTIATE_TEST_SUITE_P(Ends, EachEnd, testing::Combine(testing::ValuesIn(kEnds), testing::Bool()),
                         [](const auto& instance) {
                           return std::get<0>(instance.param).name +
                                  std::string(std::get<1>(instance.param) ? "Mlst" : "List");
                         });

TEST_F(FtpReopen, AnEndInPlaceOfTheFirstAnswerGoesUnnoticed) {
  for (const json& ending : {json("close"), json("reset"), json{{"reply", "421 Timeout"}}}) {
    const ScriptedFtp server(script(instead("MLST", ending, {{"nth", 2}})));
    const auto connection = connectToStay(server);
    learnFeatures(*connection);
    CFtpFileFind finder(connection.get());
    EXPECT_EQ(namesOf(search(finder, "/x").entries), Names{"x"}) << ending;
    EXPECT_EQ(connections(server), 2u);
    EXPECT_EQ(server.commandCount("MLST"), 3);
  }
}

TEST_F(FtpReopen, LogsInOnceInASearch) {
  const ScriptedFtp server(script(instead("MLST", "close", {{"after", 1}})));
  const auto connection = connectToStay(server);
  learnFeatures(*connection);
  CFtpFileFind finder(connection.get());
  EXPECT_EQ(search(finder, "/x").thrown.error, 12030u);
  EXPECT_EQ(connections(server), 2u);
  const Thrown again = search(finder, "/x").thrown;
  EXPECT_EQ(again.error, 12030u);
  EXPECT_FALSE(again.connectionLost) << "the log-in has succeeded";
  EXPECT_EQ(connections(server), 3u);
}

TEST_F(FtpReopen, WhatHasHadAnAnswerIsNotAskedAnew) {
  const ScriptedFtp server(script(instead("MLSD", "close")));
  const auto connection = connectToStay(server);
  CFtpFileFind finder(connection.get());
  EXPECT_EQ(search(finder, "/dir").thrown.error, 12030u);
  EXPECT_EQ(connections(server), 1u);
  EXPECT_EQ(server.commandCount("MLSD"), 1);
}

TEST_F(FtpReopen, ASilentServerHasNotClosed) {
  const ScriptedFtp server(script(instead("MLST", "silent", {{"nth", 2}})));
  session.SetTimeouts(shortTimeouts());
  const auto connection = connectToStay(server);
  learnFeatures(*connection);
  CFtpFileFind finder(connection.get());
  EXPECT_EQ(search(finder, "/x").thrown.error, 12002u);
  EXPECT_EQ(connections(server), 1u);
  EXPECT_EQ(namesOf(search(finder, "/x").entries), Names{"x"}) << "the next search finds it closed";
  EXPECT_EQ(connections(server), 2u);
}

TEST_F(FtpReopen, ReturnsToTheCurrentDirectory) {
  const ScriptedFtp server(script());
  const auto connection = connectToStay(server);
  ASSERT_TRUE(connection->SetCurrentDirectory("/dir"));
  end(server);
  CFtpFileFind finder(connection.get());
  EXPECT_EQ(namesOf(search(finder, "a").entries), Names{"a"});
  EXPECT_TRUE(wasTold(server, 2, "CWD /dir"));
}

TEST_F(FtpReopen, DoesNotTakeAnotherDirectoryForTheCurrentOne) {
  const ScriptedFtp server(script(instead("CWD", {{"reply", "550 Gone"}}, {{"after", 1}})));
  const auto connection = connectToStay(server);
  ASSERT_TRUE(connection->SetCurrentDirectory("/dir"));
  end(server);
  CFtpFileFind finder(connection.get());
  const Thrown thrown = search(finder, "a").thrown;
  ASSERT_EQ(thrown.error, 12030u);
  EXPECT_TRUE(thrown.connectionLost);
  server.waitUntilAllClosed();
}

TEST_F(FtpReopen, ADirectoryThatNobodyKnowsIsNotReturnedTo) {
  for (const bool asked : {false, true}) {
    const ScriptedFtp server(script());
    const auto connection = connectToStay(server);
    ASSERT_TRUE(connection->SetCurrentDirectory("dir"));
    std::string directory;
    EXPECT_TRUE(!asked || connection->GetCurrentDirectory(directory));
    end(server);
    CFtpFileFind finder(connection.get());
    EXPECT_EQ(search(finder, "a").thrown.error, asked ? 0u : 12030u);
    EXPECT_EQ(connections(server), asked ? 2u : 1u);
  }
}

// UTF-8 and the type belong to the connection.
TEST_F(FtpReopen, TellsTheNewConnectionWhatTheOldOneWasTold) {
  const ScriptedFtp server(script());
  const auto connection = connectToStay(server);
  CFtpFileFind finder(connection.get());
  for (const int number : {1, 2}) {
    EXPECT_EQ(namesOf(search(finder, "/dir").entries).size(), 2u);
    for (const char* line : {"OPTS UTF8 ON", "TYPE I"})
      EXPECT_TRUE(wasTold(server, number, line)) << line << number;
    end(server);
  }
}

TEST_F(FtpReopen, AsksForATimeAnew) {
  json settings = script();
  settings["features"] = {"size", "mdtm", "epsv"};
  const ScriptedFtp server(settings);
  const auto connection = connectToStay(server);
  CFtpFileFind finder(connection.get());
  ASSERT_TRUE(finder.FindFile("/x"));
  static_cast<void>(finder.FindNextFile());
  end(server);
  EXPECT_NE(finder.GetLastWriteTime(), 0);
  EXPECT_EQ(connections(server), 2u);
}

struct Refusal {
  json change;
  std::uint32_t error;
};

TEST_F(FtpReopen, TheFailureOfTheLogInIsThatOfTheSearch) {
  const Refusal refusals[] = {
      {{{"password", "another"}}, 12014},
      {{{"rules", instead("USER", {{"reply", "501 No"}})}}, 12015},
      {{{"rules", instead("CONNECT", {{"reply", "421 Too many"}})}}, 12030},
      {{{"rules", instead("CONNECT", "close")}}, 12030},
      {{{"rules", instead("PASS", "silent")}}, 12002},
  };
  for (const auto& [change, error] : refusals) {
    const ScriptedFtp server(script());
    session.SetTimeouts(shortTimeouts());
    const auto connection = connectToStay(server);
    learnFeatures(*connection);
    takeConnectionStatuses();
    end(server);
    server.reconfigure(change.dump());
    CFtpFileFind finder(connection.get());
    const Thrown thrown = search(finder, "/x").thrown;
    EXPECT_EQ(thrown.error, error) << change;
    EXPECT_TRUE(thrown.connectionLost) << change;
    EXPECT_EQ(connections(server), 2u);
    server.waitUntilAllClosed();
    server.reconfigure(R"({"password": "secret", "rules": []})");
    EXPECT_EQ(namesOf(search(finder, "/x").entries), Names{"x"}) << "the next search tries again";
    EXPECT_EQ(takeConnectionStatuses(), Statuses{});
  }
}

TEST_F(FtpReopen, AServerThatIsGoneIs12029) {
  auto server = std::make_unique<ScriptedFtp>(script());
  const auto connection = connectToStay(*server);
  end(*server);
  server.reset();
  CFtpFileFind finder(connection.get());
  takeConnectionStatuses();
  EXPECT_EQ(search(finder, "/x").thrown.error, 12029u);
  EXPECT_EQ(takeConnectionStatuses(), Statuses{});
}

// What changes things might be done twice.
TEST_F(FtpReopen, IsForFindersAlone) {
  const ScriptedFtp server(script());
  const auto connection = connectToStay(server);
  CFtpFileFind finder(connection.get());
  end(server);
  EXPECT_EQ(errorOf([&] { return connection->Remove("/x"); }), 12030u);
  EXPECT_EQ(connections(server), 1u);
  EXPECT_EQ(namesOf(search(finder, "/x").entries), Names{"x"});
  EXPECT_TRUE(connection->Remove("/x"));
  EXPECT_EQ(connections(server), 2u);
}

TEST_F(FtpReopen, IsForConnectionsThatAreToReopenAndNotClosedByUs) {
  const ScriptedFtp server(script());
  const auto connection = connectToStay(server);
  CFtpFileFind finder(connection.get());
  connection->ReopenOnDemand(false);
  end(server);
  EXPECT_EQ(search(finder, "/x").thrown.error, 12030u);
  connection->ReopenOnDemand(true);
  connection->Close();
  EXPECT_EQ(search(finder, "/x").error, 12019u);
  EXPECT_EQ(connections(server), 1u);
}

TEST_F(FtpReopen, AnEndThatWasReportedIsNotReportedAgain) {
  const ScriptedFtp server(script());
  const auto connection = connectToStay(server);
  CFtpFileFind finder(connection.get());
  end(server);
  EXPECT_TRUE(connection->WaitIdle(std::chrono::hours(1)));
  takeConnectionStatuses();
  EXPECT_EQ(namesOf(search(finder, "/x").entries), Names{"x"});
  EXPECT_FALSE(connection->WaitIdle(std::chrono::milliseconds(1)));
  connection->Close();
  EXPECT_EQ(takeConnectionStatuses(), Statuses{});
}

TEST_F(FtpReopen, AStopInTheLogInEndsTheNewConnection) {
  for (const char* verb : {"CONNECT", "USER", "PASS"}) {
    const ScriptedFtp server(script(instead(verb, {{"gate", "stop"}}, {{"connection", 2}})));
    const auto connection = connectToStay(server);
    CFtpFileFind finder(connection.get());
    end(server);
    static_cast<void>(
        latencyMs([&] { static_cast<void>(finder.FindFile("/x")); }, [&] { server.waitAtGate("stop"); }));
    server.waitFor(R"({"connections": 2, "open": 0})");
    EXPECT_EQ(namesOf(search(finder, "/x").entries), Names{"x"}) << verb;
  }
}

}  // namespace
}  // namespace internet_tests
