// SPDX-License-Identifier: MIT
// The same tree on real servers of every kind: what is found must not tell them apart.
#include <nlohmann/json.hpp>

#include "tests/internet/FindTest.h"

namespace internet_tests {
namespace {

using fixture::RealServer;
using nlohmann::json;

// 2024-01-02 03:04:05; a listing in the Unix form shows the day alone.
constexpr std::int64_t kTime = 1704164645;

class RealFind : public FindTest, public ::testing::WithParamInterface<const char*> {
 protected:
  RealFind() : server(GetParam()) {
    for (const std::string& name : oddNames()) files["/pub/odd/" + name] = {{"text", name}, {"mtime", kTime}};
    files["/pub/odd/sub/"] = json::object();
    files["/pub/empty/"] = json::object();
    files["/pub/kinds/big"] = {{"size", 5368709121}, {"zeros", true}, {"mtime", kTime}};
    files["/pub/kinds/dir/"] = {{"mtime", kTime}};
    files["/pub/kinds/same/same"] = "x";
    files["/pub/links/dir"] = {{"link", "../kinds"}};
    files["/pub/links/file"] = {{"link", "../odd/[1] {2}"}};
    files["/pub/more/nowhere"] = {{"link", "../none"}};
    files["/pub/more/dir"] = {{"link", "../kinds"}};
    files["/pub/more/plain"] = "plain";
    server.put(files.dump());
    connection.reset(session.GetFtpConnection(server.host().c_str(), server.user().c_str(),
                                              server.password().c_str(), server.port(), true));
    finder = std::make_unique<CFtpFileFind>(connection.get());
  }

  static Names oddNames() {
    return {"[1] {2}",        "100%",    "a#b",       "a;b",      "-rf",  "--",
            "a -> b",         "in  ner", "trailing ", "x=y; z",   "it's", "a\"b",
            "Jan 12 10:05 x", "name.",   "plain",     "UPPER.TXT"};
  }

  Search searchFor(const std::string& pattern) { return search(*finder, pattern); }

  // The names found, in an order that servers do not choose.
  Names sorted(const std::string& pattern) {
    const Search result = searchFor(pattern);
    EXPECT_EQ(result.thrown.error, 0u) << pattern << ": " << result.thrown.text;
    Names names = namesOf(result.entries);
    std::sort(names.begin(), names.end());
    return names;
  }

  static Names sortedNames(Names names) {
    std::sort(names.begin(), names.end());
    return names;
  }

  json files;
  RealServer server;
  std::unique_ptr<CFtpConnection> connection;
  std::unique_ptr<CFtpFileFind> finder;
};

INSTANTIATE_TEST_SUITE_P(Servers, RealFind,
                         ::testing::Values("vsftpd", "pyftpdlib", "proftpd", "pure-ftpd", "inetutils-ftpd"),
                         [](const auto& test) {
                           std::string name = test.param;
                           std::replace(name.begin(), name.end(), '-', '_');
                           return name;
                         });

TEST_P(RealFind, ListsNamesOfEveryKind) {
  Names expected = oddNames();
  expected.push_back("sub");
  expected = sortedNames(expected);
  EXPECT_EQ(sorted("/pub/odd"), expected);
  EXPECT_EQ(sorted("/pub/odd/*.*"), expected);
  EXPECT_EQ(sorted("/pub/odd/*.txt"), Names{"UPPER.TXT"});
  EXPECT_EQ(sorted("/pub/odd/-*"), (Names{"--", "-rf"}));
  EXPECT_EQ(sorted("/pub/odd/[1]*"), Names{"[1] {2}"});
}

TEST_P(RealFind, FindsEachFileByItsName) {
  for (const std::string& name : oddNames()) {
    const Search result = searchFor("/pub/odd/" + name);
    ASSERT_EQ(result.thrown.error, 0u) << name << ": " << result.thrown.text;
    ASSERT_EQ(result.entries, (Entries{{name, name.size(), false, kTime}}));
  }
}

TEST_P(RealFind, TellsKindsSizesAndTimes) {
  const Search result = searchFor("/pub/kinds");
  ASSERT_EQ(result.entries.size(), 3u);
  for (const Entry& entry : result.entries) {
    EXPECT_EQ(entry.isDirectory, entry.name != "big") << entry.name;
    EXPECT_EQ(entry.size, entry.name == "big" ? 5368709121u : 0u) << entry.name;
    if (entry.name == "same") continue;
    EXPECT_TRUE(entry.modified == kTime || entry.modified == kTime - kTime % 86400) << entry.modified;
  }
  EXPECT_EQ(searchFor("/pub/kinds/big").entries, (Entries{{"big", 5368709121u, false, kTime}}));
  EXPECT_EQ(sorted("/pub/kinds/same"), Names{"same"});
}

TEST_P(RealFind, FollowsLinks) {
  for (const Entry& entry : searchFor("/pub/links").entries) {
    EXPECT_EQ(entry.isDirectory, entry.name == "dir") << entry.name;
    EXPECT_EQ(entry.size, entry.name == "dir" ? 0u : 7u) << entry.name;
  }
  EXPECT_EQ(sorted("/pub/links"), (Names{"dir", "file"}));
  EXPECT_EQ(sorted("/pub/links/dir"), (Names{"big", "dir", "same"}));
  const Search file = searchFor("/pub/links/file");
  ASSERT_EQ(namesOf(file.entries), Names{"file"});
  EXPECT_EQ(file.entries[0].size, 7u);
  EXPECT_FALSE(file.entries[0].isDirectory);

  // The way to what links lead to and back leaves the current directory as it is. Some servers leave out a
  // link that leads nowhere.
  ASSERT_TRUE(connection->SetCurrentDirectory("/pub/more"));
  for (const Entry& entry : searchFor("*").entries) {
    EXPECT_EQ(entry.isDirectory, entry.name == "dir") << entry.name;
    EXPECT_EQ(entry.size, entry.name == "plain" ? 5u : 0u) << entry.name;
  }
  EXPECT_EQ(sorted("plain"), Names{"plain"});
  std::string current;
  ASSERT_TRUE(connection->GetCurrentDirectory(current));
  EXPECT_EQ(current, "/pub/more");
}

TEST_P(RealFind, TakesHundredsOfEntries) {
  server.put(R"({"/pub/few/": {"many": {"count": 600}}})");
  const Names names = sorted("/pub/few/*.*");
  ASSERT_EQ(names.size(), 600u);
  EXPECT_EQ(names.front(), "file000000.dat");
  EXPECT_EQ(names.back(), "file000599.dat");
}

TEST_P(RealFind, FindsNothingWhereNothingIs) {
  for (const char* path :
       {"/pub/missing", "/pub/empty", "/pub/empty/*", "/pub/odd/*.none", "/missing/name"}) {
    const Search result = searchFor(path);
    EXPECT_EQ(result.thrown.error, 0u) << path << ": " << result.thrown.text;
    EXPECT_EQ(result.error, 18u) << path;
  }
  EXPECT_EQ(searchFor("/pub/missing/*").error, 12003u);
}

TEST_P(RealFind, KeepsTheCurrentDirectory) {
  ASSERT_TRUE(connection->SetCurrentDirectory("/pub/kinds"));
  std::string before;
  std::string after;
  ASSERT_TRUE(connection->GetCurrentDirectory(before));
  EXPECT_EQ(sorted("*.*"), (Names{"big", "dir", "same"}));
  EXPECT_EQ(sorted("same"), Names{"same"});
  EXPECT_EQ(sorted("../links"), (Names{"dir", "file"}));
  EXPECT_EQ(sorted("/pub/odd/pla??.*"), Names{"plain"});
  EXPECT_EQ(searchFor("missing/*").error, 12003u);
  ASSERT_TRUE(connection->GetCurrentDirectory(after));
  EXPECT_EQ(after, before);
}

// This server ends every listing at 10,000 entries.
TEST_F(FindTest, PureFtpdsShortListingIsAnError) {
  const RealServer server("pure-ftpd");
  server.put(R"({"/pub/full/": {"many": {"count": 9990}}, "/pub/over/": {"many": {"count": 10010}}})");
  const std::unique_ptr<CFtpConnection> connection(session.GetFtpConnection(
      server.host().c_str(), server.user().c_str(), server.password().c_str(), server.port(), true));
  CFtpFileFind finder(connection.get());
  EXPECT_EQ(search(finder, "/pub/full").entries.size(), 9990u);
  const Search over = search(finder, "/pub/over");
  EXPECT_EQ(over.thrown.error, 12003u);
  EXPECT_NE(over.thrown.text.find("truncated"), std::string::npos) << over.thrown.text;
}

}  // namespace
}  // namespace internet_tests
