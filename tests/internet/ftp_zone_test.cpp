// SPDX-License-Identifier: MIT
// A listing by LIST shows clocks of the server's own zone: the time of one file, asked by MDTM, tells it.
#include <algorithm>
#include <nlohmann/json.hpp>

#include "tests/internet/FindTest.h"

namespace internet_tests {
namespace {

using fixture::ScriptedFtp;
using nlohmann::json;
using namespace nlohmann::literals;

// 2024-01-02 03:04, as the rows of this server show it.
constexpr std::int64_t kShown = 1704164640;
constexpr std::int64_t kHour = 3600;

json scriptWith(const std::string& reply, json features = {"size", "mdtm"}) {
  json script = R"({"listing": "dos", "tree": {"/pub/a": "a", "/pub/b": "b", "/pub/sub/": {}, "/e/": {},
    "/dirs/only/": {}}})"_json;
  script["features"] = std::move(features);
  script["rules"] = {{{"on", "MDTM"}, {"do", {{{"reply", reply}}}}}};
  return script;
}

std::size_t questions(const ScriptedFtp& server) {
  const auto commands = server.commands();
  return static_cast<std::size_t>(std::count_if(
      commands.begin(), commands.end(), [](const std::string& line) { return line.starts_with("MDTM"); }));
}

class ServerZone : public FindTest {
 protected:
  // How far the times that are told are behind those that are shown; the same for all entries.
  std::int64_t ahead(const ScriptedFtp& server, const std::string& path = "/pub") {
    const Entries entries = searchAt(server, path).entries;
    EXPECT_FALSE(entries.empty());
    for (const Entry& entry : entries) EXPECT_EQ(entry.modified, entries.front().modified) << entry.name;
    return entries.empty() ? -1 : kShown - entries.front().modified;
  }
};

TEST_F(ServerZone, IsToldByOneFile) {
  struct Case {
    const char* reply;
    std::int64_t ahead;
  };
  for (const Case& each :
       {Case{"213 20240102010455", 2 * kHour}, Case{"213 20240102030400", 0}, Case{"213 20240102030459", 0},
        Case{"213 20240102120405.250", -9 * kHour}, Case{"213 20240101213405", 5 * kHour + 1800},
        Case{"213 20240101211905", 5 * kHour + 2700}, Case{"213 20240101130401", 14 * kHour},
        Case{"213 20240102150401", -12 * kHour}}) {
    const ScriptedFtp server(scriptWith(each.reply));
    EXPECT_EQ(ahead(server), each.ahead) << each.reply;
    EXPECT_EQ(questions(server), 1u);
  }
}

TEST_F(ServerZone, IsAskedOnceForAServer) {
  const ScriptedFtp server(scriptWith("213 20240102010405"));
  for (int i = 0; i < 3; ++i) EXPECT_EQ(ahead(server), 2 * kHour);
  EXPECT_EQ(ahead(server, "/dirs"), 2 * kHour);
  EXPECT_EQ(questions(server), 1u);
}

TEST_F(ServerZone, IsAskedInTheListedDirectory) {
  const ScriptedFtp server(scriptWith("213 20240102010405"));
  EXPECT_EQ(ahead(server), 2 * kHour);
  const auto commands = server.commands();
  const auto question = std::find(commands.begin(), commands.end(), "MDTM a");
  ASSERT_NE(question, commands.end());
  EXPECT_EQ(*(question - 1), "LIST");
}

// The file has changed since it was listed, or the answer is none.
TEST_F(ServerZone, IsNotGuessed) {
  for (const char* reply : {"213 20240102010505", "213 20240102012005", "213 20231231030405", "213 tomorrow",
                            "550 No such file", "213 191240102010405"}) {
    const ScriptedFtp server(scriptWith(reply));
    for (int i = 0; i < 5; ++i) EXPECT_EQ(ahead(server), 0) << reply;
    EXPECT_EQ(questions(server), 3u) << reply;
  }
}

TEST_F(ServerZone, IsNotAskedOfAServerThatDoesNotKnowIt) {
  const ScriptedFtp untold(scriptWith("213 20240102010405", {"size"}));
  EXPECT_EQ(ahead(untold), 0);
  EXPECT_EQ(questions(untold), 0u);
  const ScriptedFtp refuses(scriptWith("502 Not here"));
  for (int i = 0; i < 3; ++i) EXPECT_EQ(ahead(refuses), 0);
  EXPECT_EQ(questions(refuses), 1u);
}

TEST_F(ServerZone, IsAskedWhereFeaturesAreNotTold) {
  json script = scriptWith("213 20240102010405");
  script["rules"].push_back(R"({"on": "FEAT", "do": [{"reply": "500 What?"}]})"_json);
  const ScriptedFtp server(script);
  EXPECT_EQ(ahead(server), 2 * kHour);
}

TEST_F(ServerZone, IsNotAskedWithoutAFileOrAClock) {
  const ScriptedFtp server(scriptWith("213 20240102010405"));
  EXPECT_EQ(ahead(server, "/dirs"), 0);
  EXPECT_EQ(namesAt(server, "/e"), Names{"error 18"});
  EXPECT_EQ(questions(server), 0u);
  // Rows of Unix show the day alone of what is as old as these.
  json rows = scriptWith("213 20240102010405");
  rows["listing"] = "unix";
  const ScriptedFtp days(rows);
  EXPECT_EQ(ahead(days), kShown % 86400);
  EXPECT_EQ(questions(days), 0u);
}

TEST_F(ServerZone, DoesNotConcernFacts) {
  const ScriptedFtp server(scriptWith("213 20240102010405", {"mlst", "size", "mdtm"}));
  EXPECT_EQ(ahead(server), -5);
  EXPECT_EQ(questions(server), 0u);
}

TEST_F(ServerZone, CostsOneRoundTripInAll) {
  const ScriptedFtp server(scriptWith("213 20240102010405"));
  const auto connection = connect(server);
  CFtpFileFind finder(connection.get());
  static_cast<void>(search(finder, "/dirs"));
  const auto start = waits();
  static_cast<void>(search(finder, "/dirs"));
  const auto listing = waits() - start;
  static_cast<void>(search(finder, "/pub"));
  static_cast<void>(search(finder, "/pub"));
  EXPECT_EQ(waits() - start, 3 * listing + 1);
}

}  // namespace
}  // namespace internet_tests
