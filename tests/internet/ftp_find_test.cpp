// SPDX-License-Identifier: MIT
// The find rule: which commands go out, and what comes of them, on servers of different abilities.
#include <nlohmann/json.hpp>
#include <set>

#include "tests/internet/FindTest.h"

namespace internet_tests {
namespace {

using fixture::ScriptedFtp;
using nlohmann::json;
using namespace nlohmann::literals;

// 2024-01-02 03:04:05, the fixture's time of everything.
constexpr std::int64_t kTime = 1704164645;

struct Abilities {
  const char* name;
  const char* script;
};

void PrintTo(const Abilities& abilities, std::ostream* out) { *out << abilities.name; }

const Abilities kFacts{"MlstAndMlsd", R"({})"};
const Abilities kUnix{"UnixList", R"({"features": ["utf8", "epsv", "size", "mdtm"], "list_total": true})"};
const Abilities kDos{"DosList", R"({"features": ["size", "mdtm"], "listing": "dos"})"};
const Abilities kNoFeatures{"FeaturesUntold", R"({"features": ["size", "mdtm"], "rules": [
    {"on": "FEAT", "do": [{"reply": "500 What?"}]}]})"};
const Abilities kNoSize{"NoSize", R"({"features": []})"};
const Abilities kNoMlst{"MlstRefused", R"({"rules": [
    {"on": ["MLST", "MLSD"], "do": [{"reply": "502 Command not implemented"}]}]})"};
const Abilities kNoMlsd{"MlsdRefused", R"({"rules": [{"on": "MLSD", "do": [{"reply": "504 No"}]}]})"};

json scriptOf(const Abilities& abilities) {
  json script = json::parse(abilities.script);
  script["tree"] = R"({
    "/pub/a.txt": "hello", "/pub/B.TXT": {"size": 70}, "/pub/plain": {"size": 7}, "/pub/sub/inner.txt": "in",
    "/pub/empty/": {}, "/pub/same/same": "x", "/top.txt": "top"})"_json;
  return script;
}

class FindRule : public FindTest, public ::testing::WithParamInterface<Abilities> {
 protected:
  FindRule() : server(scriptOf(GetParam())) {}

  Names found(const std::string& pattern) { return namesAt(server, pattern); }

  ScriptedFtp server;
};

INSTANTIATE_TEST_SUITE_P(Servers, FindRule,
                         ::testing::Values(kFacts, kUnix, kDos, kNoFeatures, kNoSize, kNoMlst, kNoMlsd),
                         [](const auto& test) { return test.param.name; });

// As the server has them: the order in which they were made.
const Names kPub{"B.TXT", "a.txt", "empty", "plain", "same", "sub"};
const Names kNothing{"error 18"};

TEST_P(FindRule, FiltersTheParentByAWildcard) {
  EXPECT_EQ(found("/pub/*.*"), kPub);
  EXPECT_EQ(found("/pub/*"), kPub);
  EXPECT_EQ(found("/pub/*.txt"), (Names{"B.TXT", "a.txt"}));
  EXPECT_EQ(found("/pub/?.txt"), (Names{"B.TXT", "a.txt"}));
  EXPECT_EQ(found("/pub/*."), (Names{"empty", "plain", "same", "sub"}));
  EXPECT_EQ(found("/pub/x*"), kNothing);
  EXPECT_EQ(found("/pub/empty/*"), kNothing);
  EXPECT_EQ(found("/t*"), (Names{"top.txt"}));
  for (const std::string& command : server.commands())
    EXPECT_EQ(command.find_first_of("*?"), std::string::npos);
}

TEST_P(FindRule, ListsADirectoryByItsName) {
  EXPECT_EQ(found("/pub"), kPub);
  EXPECT_EQ(found("/pub/"), kPub);
  EXPECT_EQ(found("/"), (Names{"pub", "top.txt"}));
  EXPECT_EQ(found("/pub/empty"), kNothing);
  EXPECT_EQ(found("/pub/same"), (Names{"same"}));
}

TEST_P(FindRule, TellsAFile) {
  const Search result = searchAt(server, "/pub/a.txt");
  ASSERT_EQ(result.entries.size(), 1u);
  EXPECT_EQ(result.entries[0].name, "a.txt");
  EXPECT_EQ(result.entries[0].size, 5u);
  EXPECT_FALSE(result.entries[0].isDirectory);
  EXPECT_EQ(found("/pub/same/same"), (Names{"same"}));
}

TEST_P(FindRule, FindsNothingWhereNothingIs) {
  EXPECT_EQ(found("/pub/missing"), kNothing);
  EXPECT_EQ(found("/pub/a.tx"), kNothing);
  const Search refused = searchAt(server, "/missing/*");
  EXPECT_EQ(refused.error, 12003u);
  EXPECT_EQ(refused.thrown.error, 0u);
}

TEST_P(FindRule, TakesRelativeNamesFromTheCurrentDirectory) {
  const auto connection = connect(server);
  CFtpFileFind finder(connection.get());
  ASSERT_TRUE(connection->SetCurrentDirectory("/pub"));
  for (const char* everything : {"", "*", "*.*"})
    EXPECT_EQ(namesOf(search(finder, everything).entries), kPub);
  EXPECT_EQ(namesOf(search(finder, "sub").entries), (Names{"inner.txt"}));
  EXPECT_EQ(namesOf(search(finder, "sub/*").entries), (Names{"inner.txt"}));
  EXPECT_EQ(namesOf(search(finder, "a.txt").entries), (Names{"a.txt"}));
  EXPECT_EQ(search(finder, "missing").error, 18u);
  EXPECT_EQ(search(finder, "missing/*").error, 12003u);
  std::string directory;
  EXPECT_TRUE(connection->GetCurrentDirectory(directory));
  EXPECT_EQ(directory, "/pub");
}

TEST_P(FindRule, KeepsTheServersOrder) {
  for (const char* file : {R"({"/order/b": ""})", R"({"/order/c": ""})", R"({"/order/a": ""})"})
    server.put(file);
  EXPECT_EQ(found("/order"), (Names{"b", "c", "a"}));
  EXPECT_EQ(found("/order/*"), (Names{"b", "c", "a"}));
}

TEST_P(FindRule, NullFindsEverything) {
  const auto connection = connect(server);
  CFtpFileFind finder(connection.get());
  EXPECT_TRUE(finder.FindFile());
  EXPECT_EQ(namesOf(readAll(finder)), (Names{"pub", "top.txt"}));
}

TEST_P(FindRule, TellsTimesAndKinds) {
  const auto connection = connect(server);
  CFtpFileFind finder(connection.get());
  for (const char* pattern : {"/pub/*", "/pub/a.txt"}) {
    for (const Entry& entry : search(finder, pattern).entries) {
      // A Unix row of this age shows the day alone; without SIZE a file comes from one too.
      const std::int64_t shown = entry.modified % 86400 == 0 ? kTime - kTime % 86400 : kTime - kTime % 60;
      EXPECT_EQ(entry.modified - entry.modified % 60, shown) << entry.name;
      EXPECT_EQ(entry.isDirectory, std::set<std::string>({"sub", "empty", "same"}).contains(entry.name));
    }
  }
}

TEST_P(FindRule, SendsNoNotificationOfAConnection) {
  const auto connection = connect(server);
  CFtpFileFind finder(connection.get());
  session.statuses.clear();
  for (const char* pattern : {"/pub/*", "/pub", "/pub/a.txt", "/pub/missing", "/missing/*"})
    search(finder, pattern);
  for (const std::uint32_t status : session.statuses) {
    EXPECT_TRUE((status >= 30 && status <= 41) || status == 100) << status;
  }
}

TEST_P(FindRule, FindsNamesOfEveryKind) {
  const Names names{" leading", "trailing ",
                    "in  ner",  "[1] {2}",
                    "100%",     "a#b",
                    "a;b",      "-rf",
                    "--",       "\xc3\xa4\xe2\x82\xac",
                    "a -> b",   "; x=y; z",
                    "total 88", "a\"b",
                    "it's",     "Jan 12 10:05 x",
                    "~",        "name."};
  json tree;
  for (const std::string& name : names) tree["/odd/" + name] = name;
  server.put(tree.dump());
  Names expected = names;
  std::sort(expected.begin(), expected.end());
  EXPECT_EQ(found("/odd/*"), expected);
  for (const std::string& name : names) {
    const Search result = searchAt(server, "/odd/" + name);
    ASSERT_EQ(namesOf(result.entries), Names{name});
    EXPECT_EQ(result.entries[0].size, name.size());
  }
}

TEST_P(FindRule, TellsSizesOfMoreThanFourGigabytes) {
  server.put(R"({"/big/file": {"size": 5368709121, "zeros": true}})");
  for (const char* pattern : {"/big/*", "/big", "/big/file"}) {
    const Search result = searchAt(server, pattern);
    ASSERT_EQ(result.entries.size(), 1u);
    EXPECT_EQ(result.entries[0].size, 5368709121u);
  }
}

TEST_P(FindRule, TakesHundredsOfEntries) {
  server.put(R"({"/few/": {"many": {"count": 600}}})");
  EXPECT_EQ(searchAt(server, "/few").entries.size(), 600u);
  EXPECT_EQ(searchAt(server, "/few/*.*").entries.size(), 600u);
}

TEST_F(FindTest, TakesAHundredThousandEntries) {
  for (const Abilities& abilities : {kFacts, kUnix}) {
    const ScriptedFtp server(scriptOf(abilities));
    server.put(R"({"/many/": {"many": {"count": 100000}}})");
    const Search many = searchAt(server, "/many/*.*");
    ASSERT_EQ(many.entries.size(), 100'000u);
    EXPECT_EQ(many.entries.front().name, "file000000.dat");
    EXPECT_EQ(many.entries.back().name, "file099999.dat");
  }
}

TEST_P(FindRule, FollowsLinks) {
  server.put(R"({"/links/file": {"link": "/pub/a.txt"}, "/links/dir": {"link": "/pub"}})");
  EXPECT_EQ(found("/links"), (Names{"dir", "file"}));
  EXPECT_EQ(found("/links/dir"), kPub);
  if (GetParam().name == kNoSize.name) return;
  const Search result = searchAt(server, "/links/file");
  ASSERT_EQ(namesOf(result.entries), Names{"file"});
  EXPECT_EQ(result.entries[0].size, 5u) << "the target's";
}

class FindCommands : public FindTest {
 protected:
  // The commands that a search sends behind the login.
  std::vector<std::string> commandsFor(const Abilities& abilities, const std::string& pattern) {
    const ScriptedFtp server(scriptOf(abilities));
    const auto connection = connect(server);
    CFtpFileFind finder(connection.get());
    session.statuses.clear();
    search(finder, pattern);
    waitsOfSearch = waits();
    connection->Close();
    server.waitUntilAllClosed();
    auto commands = server.commands();
    commands.erase(commands.begin(), commands.begin() + 2);
    EXPECT_EQ(commands.back(), "QUIT");
    commands.pop_back();
    std::erase_if(commands, [](const std::string& command) {
      return command.starts_with("OPTS") || command == "EPSV" || command == "PASV" ||
             command.starts_with("TYPE");
    });
    return commands;
  }

  std::ptrdiff_t waitsOfSearch = 0;
};

using Commands = std::vector<std::string>;

TEST_F(FindCommands, AreThoseThatTellInTheFewestTurns) {
  EXPECT_EQ(commandsFor(kFacts, "/pub/*.*"), (Commands{"FEAT", "MLSD /pub"}));
  EXPECT_EQ(commandsFor(kFacts, "*.*"), (Commands{"FEAT", "MLSD"}));
  EXPECT_EQ(commandsFor(kFacts, "/pub"), (Commands{"FEAT", "MLST /pub", "MLSD /pub"}));
  EXPECT_EQ(commandsFor(kFacts, "/pub/a.txt"), (Commands{"FEAT", "MLST /pub/a.txt"}));
  EXPECT_EQ(commandsFor(kFacts, "/missing"), (Commands{"FEAT", "MLST /missing"}));
  EXPECT_EQ(commandsFor(kUnix, "*.*"), (Commands{"FEAT", "LIST"}));
  EXPECT_EQ(commandsFor(kUnix, "/pub/*.*"), (Commands{"FEAT", "PWD", "CWD /pub", "LIST", "CWD /"}));
  EXPECT_EQ(commandsFor(kUnix, "/pub"), (Commands{"FEAT", "PWD", "CWD /pub", "SIZE /pub", "LIST", "CWD /"}))
      << "SIZE goes along, for what is no directory";
  EXPECT_EQ(commandsFor(kUnix, "/pub/a.txt"),
            (Commands{"FEAT", "PWD", "CWD /pub/a.txt", "SIZE /pub/a.txt", "MDTM /pub/a.txt"}));
  EXPECT_EQ(commandsFor(kUnix, "/missing"), (Commands{"FEAT", "PWD", "CWD /missing", "SIZE /missing"}));
  EXPECT_EQ(commandsFor(kNoSize, "/pub/a.txt"),
            (Commands{"FEAT", "PWD", "CWD /pub/a.txt", "SIZE /pub/a.txt", "CWD /pub", "LIST", "CWD /"}));
}

// Replies waited for from the greeting on, on a server that was never seen before: a size or an existence
// takes 5.
TEST_F(FindCommands, WaitForFewReplies) {
  internet::forgetCachedTraits();
  commandsFor(kFacts, "/pub/a.txt");
  EXPECT_EQ(waitsOfSearch, 2) << "FEAT, MLST; before them the greeting, USER and PASS";
  commandsFor(kFacts, "/pub/*.*");
  EXPECT_LE(waitsOfSearch, 4) << "FEAT, EPSV, MLSD and its end";
}

TEST_F(FindCommands, AskForFeaturesOncePerServer) {
  const ScriptedFtp server(scriptOf(kFacts));
  EXPECT_EQ(namesAt(server, "/pub"), kPub);
  EXPECT_EQ(namesAt(server, "/pub"), kPub);
  EXPECT_EQ(server.commandCount("FEAT"), 1);
}

TEST_F(FindCommands, RememberThatMlstIsNotThereAfterAll) {
  const ScriptedFtp server(scriptOf(kNoMlst));
  EXPECT_EQ(namesAt(server, "/pub"), kPub);
  EXPECT_EQ(namesAt(server, "/pub"), kPub);
  EXPECT_EQ(namesAt(server, "/pub/*"), kPub);
  EXPECT_EQ(server.commandCount("MLST"), 1);
  EXPECT_EQ(server.commandCount("MLSD"), 0);
}

// A 501 may speak of the argument: this server knows MLSD well.
TEST_F(FindCommands, KeepMlsdAfterARefusedArgument) {
  const ScriptedFtp server(scriptOf(kFacts));
  EXPECT_EQ(namesAt(server, "/missing/*"), Names{"error 12003"});
  EXPECT_EQ(namesAt(server, "/pub/*"), kPub);
  EXPECT_EQ(server.commandCount("MLSD"), 2);
}

TEST_F(FindCommands, AskForATimeOnlyWhenItIsRead) {
  const ScriptedFtp server(scriptOf(kUnix));
  const auto connection = connect(server);
  CFtpFileFind finder(connection.get());
  ASSERT_TRUE(connection->SetCurrentDirectory("/pub"));
  ASSERT_TRUE(finder.FindFile("a.txt"));
  EXPECT_FALSE(finder.FindNextFile());
  EXPECT_EQ(finder.GetLength(), 5u);
  EXPECT_EQ(server.commandCount("MDTM"), 0);
  // The name stays that of the directory it was found in.
  ASSERT_TRUE(connection->SetCurrentDirectory("/"));
  EXPECT_EQ(finder.GetLastWriteTime(), kTime);
  EXPECT_EQ(finder.GetCreationTime(), kTime);
  EXPECT_EQ(finder.GetLastAccessTime(), kTime);
  EXPECT_EQ(server.commandCount("MDTM"), 1);
}

TEST_F(FindCommands, TakeATimeThatCannotBeHadForUnknown) {
  json script = scriptOf(kUnix);
  script["rules"] = R"([{"on": "MDTM", "do": [{"reply": "502 No"}]}])"_json;
  const ScriptedFtp server(script);
  const auto connection = connect(server);
  CFtpFileFind finder(connection.get());
  ASSERT_TRUE(finder.FindFile("/pub/a.txt"));
  finder.FindNextFile();
  EXPECT_EQ(finder.GetLastWriteTime(), 0);
  EXPECT_EQ(finder.GetLastWriteTime(), 0);
  EXPECT_EQ(server.commandCount("MDTM"), 1);
  EXPECT_TRUE(works(*connection));
}

TEST_F(FindCommands, ReturnToTheDirectoryAfterAFailedListing) {
  json script = scriptOf(kUnix);
  script["rules"] = R"([{"on": "LIST", "nth": 1, "do": [{"reply": "550 Permission denied"}]},
                        {"on": "LIST", "nth": 2,
                         "do": [{"normal": {"final": "226 Output truncated to 6 matches"}}]}])"_json;
  const ScriptedFtp server(script);
  const auto connection = connect(server);
  CFtpFileFind finder(connection.get());
  EXPECT_EQ(search(finder, "/pub").error, 12003u);
  EXPECT_TRUE(works(*connection));
  EXPECT_EQ(search(finder, "/pub").thrown.error, 12003u);
  EXPECT_TRUE(works(*connection));
  EXPECT_EQ(namesOf(search(finder, "*").entries), (Names{"pub", "top.txt"}));
}

}  // namespace
}  // namespace internet_tests
