// SPDX-License-Identifier: MIT
// A row that tells of a link tells nothing of what it leads to: that is asked.
#include <algorithm>
#include <nlohmann/json.hpp>

#include "tests/internet/FindTest.h"

namespace internet_tests {
namespace {

using fixture::ScriptedFtp;
using nlohmann::json;
using namespace nlohmann::literals;

struct Manner {
  const char* name;
  const char* script;
};

void PrintTo(const Manner& manner, std::ostream* out) { *out << manner.name; }

// By MLSD, by LIST; all at once, one by one; with and without a command for sizes.
const Manner kManners[] = {{"Facts", "{}"},
                           {"Rows", R"({"features": ["size", "mdtm"]})"},
                           {"FactsOneByOne", R"({"packets": "first"})"},
                           {"RowsOneByOne", R"({"features": ["size", "mdtm"], "packets": "refuse"})"}};

ScriptedFtp serverWith(const char* script) {
  json whole = json::parse(script);
  whole["tree"] = R"({
    "/there/inner.txt": "in", "/file.txt": "hello", "/l/a": "a",
    "/l/dir": {"link": "/there"}, "/l/file": {"link": "../file.txt"}, "/l/gone": {"link": "/none"},
    "/l/again": {"link": "/l/dir"}})"_json;
  return ScriptedFtp(whole);
}

std::size_t countOf(const ScriptedFtp& server, const std::string& start) {
  const auto commands = server.commands();
  return static_cast<std::size_t>(std::count_if(
      commands.begin(), commands.end(), [&](const std::string& line) { return line.starts_with(start); }));
}

class Links : public FindTest, public ::testing::WithParamInterface<Manner> {
 protected:
  Links() {
    internet::Timeouts timeouts;
    timeouts.followUp = std::chrono::milliseconds(100);
    session.SetTimeouts(timeouts);
  }
};

INSTANTIATE_TEST_SUITE_P(Manners, Links, ::testing::ValuesIn(kManners),
                         [](const auto& test) { return test.param.name; });

TEST_P(Links, AreWhatTheyLeadTo) {
  const ScriptedFtp server = serverWith(GetParam().script);
  const Search result = searchAt(server, "/l");
  EXPECT_EQ(namesOf(result.entries), (Names{"a", "again", "dir", "file", "gone"}));
  for (const Entry& entry : result.entries) {
    EXPECT_EQ(entry.isDirectory, entry.name == "dir" || entry.name == "again") << entry.name;
    EXPECT_EQ(entry.size, entry.name == "file" ? 5u : entry.name == "a" ? 1u : 0u) << entry.name;
  }
}

TEST_P(Links, HaveTheAttributesOfWhatTheyLeadTo) {
  const ScriptedFtp server = serverWith(GetParam().script);
  const auto connection = connect(server);
  CFtpFileFind finder(connection.get());
  ASSERT_TRUE(finder.FindFile("/l/*"));
  for (bool more = true; more;) {
    more = finder.FindNextFile();
    const bool directory = finder.GetFileName() == "dir" || finder.GetFileName() == "again";
    EXPECT_EQ(finder.MatchesMask(0x10), directory) << finder.GetFileName();
    EXPECT_EQ(finder.MatchesMask(0x80), !directory) << finder.GetFileName();
  }
}

TEST_P(Links, LeaveTheConnectionWhereItWas) {
  const ScriptedFtp server = serverWith(GetParam().script);
  const auto connection = connect(server);
  CFtpFileFind finder(connection.get());
  ASSERT_TRUE(connection->SetCurrentDirectory("/l"));
  EXPECT_EQ(search(finder, "*").entries.size(), 5u);
  EXPECT_EQ(namesOf(search(finder, "a").entries), Names{"a"});
  EXPECT_EQ(namesOf(search(finder, "dir").entries), Names{"inner.txt"});
  std::string directory;
  EXPECT_TRUE(connection->GetCurrentDirectory(directory));
  EXPECT_EQ(directory, "/l");
}

TEST_P(Links, AreOnlyAskedAboutWhereTheyAreWanted) {
  const ScriptedFtp server = serverWith(GetParam().script);
  EXPECT_EQ(namesAt(server, "/l/g*"), Names{"gone"});
  EXPECT_EQ(countOf(server, "CWD /l/"), 1u);
}

TEST_F(FindTest, LinksCostOneRoundTripForAllOfThem) {
  const ScriptedFtp server = serverWith(R"({"features": ["size", "mdtm"]})");
  const auto connection = connect(server);
  CFtpFileFind finder(connection.get());
  EXPECT_EQ(search(finder, "/there").entries.size(), 1u);
  const auto before = waits();
  EXPECT_EQ(search(finder, "/there").entries.size(), 1u);
  const auto without = waits() - before;
  EXPECT_EQ(search(finder, "/l").entries.size(), 5u);
  EXPECT_EQ(waits() - before - without, without + 1);
}

TEST_F(FindTest, MoreThan64LinksOfAListingStayFiles) {
  json tree = R"({"/there/a": "a"})"_json;
  for (int i = 100; i < 170; ++i) tree["/l/" + std::to_string(i)] = {{"link", "/there"}};
  for (const char* features : {R"(["mlst", "size"])", R"(["size"])"}) {
    const ScriptedFtp server(json{{"features", json::parse(features)}, {"tree", tree}});
    const Entries entries = searchAt(server, "/l").entries;
    ASSERT_EQ(entries.size(), 70u);
    for (std::size_t i = 0; i < entries.size(); ++i) EXPECT_EQ(entries[i].isDirectory, i < 64) << i;
    EXPECT_EQ(countOf(server, "CWD /l/"), 64u);
  }
}

TEST_F(FindTest, WithoutSizesLinksToFilesAreEmpty) {
  const ScriptedFtp server = serverWith(R"({"features": []})");
  const Entries entries = searchAt(server, "/l/*").entries;
  ASSERT_EQ(entries.size(), 5u);
  EXPECT_TRUE(entries[2].isDirectory);
  EXPECT_EQ(entries[3], (Entry{"file", 0, false, entries[3].modified}));
}

// Where the server does not say where it is there is no way back from a visit.
TEST_F(FindTest, LinksStayFilesWhereThereIsNoWayBack) {
  const ScriptedFtp server =
      serverWith(R"({"rules": [{"on": "PWD", "do": [{"reply": "500 Nobody knows"}]}]})");
  const Entries entries = searchAt(server, "/l").entries;
  ASSERT_EQ(entries.size(), 5u);
  for (const Entry& entry : entries) EXPECT_FALSE(entry.isDirectory) << entry.name;
  EXPECT_EQ(countOf(server, "CWD"), 0u);
}

// What RMD refuses is removed by DELE where it is a link, and only there.
TEST_F(FindTest, RemovesALinkToADirectoryAndNothingElse) {
  for (const char* features : {R"({})", R"({"features": ["size"]})"}) {
    json script = json::parse(features);
    script["rules"] = R"([{"on": "RMD", "do": [{"reply": "550 Not empty, or no directory"}]}])"_json;
    const ScriptedFtp server = serverWith(script.dump().c_str());
    const auto connection = connect(server);
    EXPECT_EQ(errorOf([&] { return connection->RemoveDirectory("/there"); }), 12003u);
    EXPECT_EQ(connection->LastServerText(), "550 Not empty, or no directory");
    EXPECT_EQ(countOf(server, "DELE"), 0u);
    EXPECT_TRUE(connection->RemoveDirectory("/l/dir"));
    EXPECT_EQ(countOf(server, "DELE /l/dir"), 1u);
    EXPECT_EQ(server.names("/there"), Names{"inner.txt"});
    EXPECT_TRUE(works(*connection));
  }
}

}  // namespace
}  // namespace internet_tests
