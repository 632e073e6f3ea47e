// SPDX-License-Identifier: MIT
#include "hosts/shared/Trees.h"
#include "tests/hosts/shared/AtServer.h"

namespace hosts {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr char kTreeScript[] = R"({"tree": {
  "/pub/a.txt": {"text": "hello", "mtime": "20240229123456"}, "/pub/empty/": {}, "/pub/.hidden": "x",
  "/pub/sub/deep/b": "b", "/pub/sub/large": {"size": 5000000000, "zeros": true}}})";

std::vector<std::string> pathsOf(const Tree& tree) {
  std::vector<std::string> paths;
  for (const Entry& entry : tree.entries)
    paths.push_back(entry.path + (entry.kind == Kind::folder ? "/" : ""));
  return paths;
}

std::vector<std::string> problemsOf(const Tree& tree) {
  std::vector<std::string> paths;
  for (const Problem& problem : tree.problems) paths.push_back(problem.path);
  return paths;
}

const Entry& entryOf(const Tree& tree, const std::string& path) {
  const auto found = std::ranges::find(tree.entries, path, &Entry::path);
  if (found == tree.entries.end()) throw std::runtime_error("no " + path);
  return *found;
}

class RemoteTree : public AtServer {
 protected:
  RemoteTree() : AtServer(kTreeScript) {}

  Tree read(const std::string& folder = "/pub", const Walk& walk = {}) {
    return readRemoteTree(client, watch, folder, walk);
  }
};

TEST_F(RemoteTree, HasAllThatIsBelowAFolder) {
  const Tree tree = read();
  EXPECT_THAT(pathsOf(tree), ElementsAre("a.txt", "empty/", "sub/", "sub/deep/", "sub/deep/b", "sub/large"));
  EXPECT_TRUE(tree.isWhole());
  EXPECT_EQ(entryOf(tree, "sub/large").size, 5'000'000'000U);
  using namespace std::chrono;
  EXPECT_EQ(entryOf(tree, "a.txt").time->at, sys_days{year{2024} / 2 / 29} + 12h + 34min + 56s);
  EXPECT_EQ(entryOf(tree, "a.txt").time->precision, Precision::second);
}

TEST_F(RemoteTree, OfOneFolderHasNothingBelowIt) {
  EXPECT_THAT(pathsOf(read("/pub/sub", {.isRecursive = false})), ElementsAre("deep/", "large"));
}

TEST_F(RemoteTree, ListsOverOneConnectionWhereThereIsOne) {
  ASSERT_TRUE(client.connect({.host = "127.0.0.1", .port = server.port()}));
  EXPECT_TRUE(read().isWhole());
  EXPECT_EQ(server.connections().size(), 1U);
}

TEST_F(RemoteTree, AServerWithoutFactsTellsMinutesAndDays) {
  server.reconfigure(R"({"features": ["utf8", "epsv", "size", "mdtm"]})");
  const std::time_t lately = std::time(nullptr) / 86400 * 86400 - 86400 + 3660;
  server.put(R"({"/pub/sub/deep/b": {"text": "b", "mtime": )" + std::to_string(lately) + "}}");
  const Tree tree = read();
  EXPECT_TRUE(tree.isWhole());
  EXPECT_EQ(entryOf(tree, "a.txt").time->precision, Precision::day) << "it is old";
  EXPECT_EQ(entryOf(tree, "sub/deep/b").time->precision, Precision::minute);
  EXPECT_EQ(entryOf(tree, "sub/deep/b").time->at.time_since_epoch().count(), lately);
}

// A folder that is missing or refused lists as an empty one, which a mirror would take for the truth.
TEST_F(RemoteTree, AMissingFolderIsNoEmptyOne) {
  EXPECT_THAT(problemsOf(read("/none")), ElementsAre(""));
  EXPECT_TRUE(read("/pub/empty").isWhole());
}

TEST_F(RemoteTree, TellsOfAFolderThatTheServerRefuses) {
  server.reconfigure(R"({"rules": [{"on": ["MLSD", "LIST", "CWD"], "argument": "/pub/sub/deep",
                                    "do": [{"reply": "550 Permission denied"}]}]})");
  const Tree tree = read();
  EXPECT_THAT(pathsOf(tree), ElementsAre("a.txt", "empty/", "sub/", "sub/deep/", "sub/large"));
  ASSERT_THAT(problemsOf(tree), ElementsAre("sub/deep"));
  EXPECT_THAT(tree.problems[0].text, HasSubstr("Permission denied"));
}

TEST_F(RemoteTree, TellsOfAListingThatBreaksOff) {
  server.reconfigure(R"({"rules": [{"on": "MLSD", "argument": "/pub/sub",
                                    "do": [{"normal": {"reset_after": 20}}]}]})");
  const Tree tree = read();
  EXPECT_THAT(problemsOf(tree), ElementsAre("sub"));
  EXPECT_THAT(pathsOf(tree), ElementsAre("a.txt", "empty/", "sub/"));
}

TEST_F(RemoteTree, TellsOfNamesThatLeadElsewhere) {
  server.reconfigure(R"({"rules": [{"on": "MLSD", "argument": "/pub", "do": [{"normal": {"lines": [
    "type=file;size=1;modify=20240101000000; ../escape", "type=dir;modify=20240101000000; ..",
    "type=file;size=1;modify=20240101000000; a\\b", "type=file;size=1;modify=20240101000000; good"]}}]}]})");
  const Tree tree = read();
  EXPECT_THAT(pathsOf(tree), ElementsAre("good"));
  for (const Problem& problem : tree.problems) EXPECT_THAT(problem.text, HasSubstr("slash"));
}

TEST_F(RemoteTree, ALinkThatLeadsBackEnds) {
  server.put(R"({"/loop/a": "a", "/loop/back": {"link": "/loop"}, "/loop/again": {"link": "/loop"}})");
  const Tree tree = read("/loop");
  EXPECT_LT(tree.entries.size(), 60U);
  EXPECT_FALSE(tree.isWhole());
  EXPECT_THAT(tree.problems.at(0).text, HasSubstr("leads back"));
}

TEST_F(RemoteTree, FoldersOfOneNameInEachOtherAreNoLinks) {
  server.put(R"({"/same/x/x/x/x/x/file": "a"})");
  const Tree tree = read("/same");
  EXPECT_TRUE(tree.isWhole() || tree.entries.size() >= 3) << "times tell them apart, or they are told";
}

TEST_F(RemoteTree, AFolderThatIsALinkCanGoAlone) {
  server.put(R"({"/pub/link": {"link": "sub"}})");
  EXPECT_EQ(removeIfLink(client, watch, "/pub/link").valueOr(false), true);
  EXPECT_FALSE(server.exists("/pub/link"));
  EXPECT_EQ(removeIfLink(client, watch, "/pub/sub").valueOr(true), false);
  EXPECT_TRUE(server.exists("/pub/sub/large"));
}

TEST_F(RemoteTree, WithoutAnAnswerNobodyKnowsWhetherAFolderIsALink) {
  server.reconfigure(R"({"rules": [{"on": "DELE", "do": ["close"]}]})");
  EXPECT_FALSE(removeIfLink(client, watch, "/pub/sub"));
  server.reconfigure(R"({"rules": [{"on": "PASS", "do": [{"reply": "530 Not now"}]}]})");
  EXPECT_FALSE(removeIfLink(client, watch, "/pub/sub"));
}

TEST_F(RemoteTree, CanBeCancelledBetweenFolders) {
  int asked = 0;
  const Tree tree = read("/pub", {.isCancelled = [&] { return ++asked > 2; }});
  EXPECT_TRUE(tree.isCancelled);
  EXPECT_FALSE(tree.isWhole());
  EXPECT_EQ(server.commandCount("MLSD"), 2);
}

TEST_F(RemoteTree, AFolderWhosePathIsTooLongIsToldOf) {
  const std::string part(120, 'n');
  server.put(R"({"/long/)" + part + "/" + part + "/" + part + R"(/file": "x"})");
  const Tree tree = read("/long");
  ASSERT_EQ(tree.problems.size(), 1U);
  EXPECT_THAT(tree.problems[0].text, testing::HasSubstr("more than 255 bytes"));
  EXPECT_EQ(tree.entries.size(), 3U);
}

}  // namespace
}  // namespace hosts
