// SPDX-License-Identifier: MIT
// Names of a host whose code page is 1252, on the wire and back. They once went through as bytes: the host's
// "sch\xF6n" made a file that nobody else could read, and the server's "schön" came in as "schÃ¶n". The Euro
// sign is 0x80 there.
#include <nlohmann/json.hpp>

#include "framework/platform/code_page.h"
#include "tests/internet/FindTest.h"
#include "tests/support/ShownBytes.h"

namespace internet_tests {
namespace {

using fixture::ScriptedFtp;
using fixture::shown;
using nlohmann::json;

const std::string kHost = "5 \x80.txt";
const std::string kServer = "5 \xE2\x82\xAC.txt";
const std::string kForeign =
    "\xC5\x81"
    "a.txt";  // no character of 1252, though one looks like it

class HostNames : public FindTest {
 protected:
  void SetUp() override {
    ASSERT_EQ(platform::narrowCodePage(), 1252U) << "the locale that Wine is started with";
  }

  static bool saw(const ScriptedFtp& server, const std::string& line) {
    const Names lines = server.commands();
    return std::find(lines.begin(), lines.end(), line) != lines.end();
  }
};

TEST_F(HostNames, GoOutInUtf8WithEveryCommand) {
  const ScriptedFtp server;
  const auto connection = connect(server);
  const testing_support::ScratchFolder folder;
  const std::string local = folder.file("local");
  const std::string path = "/" + kHost;
  connection->CreateDirectory(path.c_str());
  connection->SetCurrentDirectory(path.c_str());
  connection->RemoveDirectory(path.c_str());
  openToWrite(*connection, path.c_str())->Close();
  openToRead(*connection, path.c_str())->Close();
  EXPECT_TRUE(connection->GetFile(path.c_str(), local.c_str()));
  EXPECT_TRUE(connection->PutFile(local.c_str(), path.c_str()));
  EXPECT_TRUE(connection->Rename(path.c_str(), ("/2. " + kHost).c_str()));
  EXPECT_TRUE(connection->Remove(("/2. " + kHost).c_str()));
  for (const std::string line :
       {"MKD /", "CWD /", "RMD /", "STOR /", "RETR /", "RNFR /", "RNTO /2. ", "DELE /2. "}) {
    EXPECT_TRUE(saw(server, shown(line + kServer))) << line;
    EXPECT_FALSE(saw(server, shown(line + kHost))) << line;
  }
}

TEST_F(HostNames, ThatAreUtf8AlreadyGoOutAsTheyAre) {
  const ScriptedFtp server(json{{"tree", {{"/" + kServer, "x"}, {"/" + kForeign, "x"}}}});
  const auto connection = connect(server);
  EXPECT_TRUE(connection->Remove(("/" + kServer).c_str()));
  EXPECT_TRUE(connection->Remove(("/" + kForeign).c_str()));
  EXPECT_EQ(server.commandCount("FEAT"), 0) << "nothing depends on the answer";
}

TEST_F(HostNames, OfAsciiCostNoQuestion) {
  const ScriptedFtp server(json{{"tree", {{"/a", "x"}, {"/" + kServer, "x"}}}});
  const auto connection = connect(server);
  EXPECT_TRUE(connection->Remove("/a"));
  EXPECT_EQ(server.commandCount("FEAT"), 0);
  EXPECT_TRUE(connection->Remove(("/" + kHost).c_str()));
  EXPECT_FALSE(connection->Remove(("/" + kHost).c_str()));
  EXPECT_EQ(server.commandCount("FEAT"), 1);
  EXPECT_EQ(server.commandCount("OPTS"), 1) << "in passing, as ever";
}

TEST_F(HostNames, GoOutAndComeInAsBytesWhereTheServerHasNoUtf8) {
  // It knows neither the feature nor the option.
  const ScriptedFtp server(json{{"features", {"mlst", "size"}}, {"tree", {{"/d/sch\xC3\xB6n", "x"}}}});
  const auto connection = connect(server);
  EXPECT_FALSE(connection->Remove(("/" + kHost).c_str()));
  EXPECT_EQ(server.commands().back(), shown("DELE /" + kHost));
  EXPECT_FALSE(connection->Remove(("/" + kHost).c_str()));
  CFtpFileFind finder(connection.get());
  EXPECT_EQ(namesOf(search(finder, "/d/*").entries), Names{"sch\xC3\xB6n"});
  EXPECT_EQ(server.commandCount("OPTS"), 1) << "asked once";
}

TEST_F(HostNames, GoOutInUtf8WhereTheServerTakesTheOptionWithoutOfferingIt) {
  const ScriptedFtp server(
      json{{"features", {"size"}},
           {"rules", {{{"on", "OPTS"}, {"do", {{{"reply", "200 Always in UTF8 mode."}}}}}}},
           {"tree", {{"/d/" + kServer, "x"}}}});
  EXPECT_EQ(namesAt(server, "/d/*"), Names{kHost});
  EXPECT_TRUE(connect(server)->Remove(("/d/" + kHost).c_str()));
  EXPECT_EQ(server.commandCount("FEAT"), 1) << "known to all connections";
}

TEST_F(HostNames, ThatGrowTooLongAreRefused) {
  const ScriptedFtp server(json{{"tree", {{"/a", "x"}}}});
  const auto connection = connect(server);
  const std::string path = "/" + std::string(2'000, '\x80');  // three bytes each
  EXPECT_EQ(errorOf([&] { return connection->Remove(path.c_str()); }), platform::kErrorInvalidParameter);
  EXPECT_TRUE(connection->Remove("/a"));
}

TEST_F(HostNames, OfTheCurrentDirectoryComeIn) {
  const ScriptedFtp server(json{{"tree", {{"/" + kServer + "/" + kForeign + "/a", "x"}}}});
  const auto connection = connect(server);
  const std::string path = "/" + kHost + "/" + kForeign;
  ASSERT_TRUE(connection->SetCurrentDirectory(path.c_str()));
  std::string directory;
  EXPECT_TRUE(connection->GetCurrentDirectory(directory));
  EXPECT_EQ(directory, path);
  EXPECT_TRUE(connection->Remove("a")) << "a relative name";
}

TEST_F(HostNames, InAServersTextComeIn) {
  const ScriptedFtp server(json{{"rules",
                                 {{{"on", "DELE"}, {"do", {{{"reply", "550 no " + kServer}}}}},
                                  {{"on", "RMD"}, {"do", {{{"reply", "550 no " + kServer + kForeign}}}}}}}});
  const auto connection = connect(server);
  EXPECT_FALSE(connection->Remove(("/" + kHost).c_str()));
  EXPECT_EQ(connection->LastServerText(), "550 no " + kHost);
  EXPECT_FALSE(connection->RemoveDirectory("/a"));
  EXPECT_EQ(connection->LastServerText(), "550 no " + kServer + kForeign) << "all of it in one encoding";
  EXPECT_EQ(thrownBy([&] { openToRead(*connection, "/none"); }).error, 12003U);
}

TEST_F(HostNames, InARefusedLoginComeInFromAServerThatIsKnown) {
  const ScriptedFtp server(json{{"tree", {{"/d/a", "x"}}}});
  EXPECT_EQ(namesAt(server, "/d/*"), Names{"a"});
  server.reconfigure(
      json{{"rules", {{{"on", "PASS"}, {"do", {{{"reply", "530 Ung\xC3\xBCltig"}}}}}}}}.dump());
  EXPECT_EQ(thrownBy([&] { connect(server); }).error, 12014U);
  EXPECT_EQ(thrownBy([&] { connect(server); }).text.find("\xC3"), std::string::npos);
}

// By the features of the server: fact lines; a visit and SIZE; a visit and the parent's listing.
class FoundHostNames : public HostNames, public testing::WithParamInterface<const char*> {
 protected:
  const ScriptedFtp server{json{{"features", json::parse(GetParam())},
                                {"tree",
                                 {{"/d/" + kServer, "12345"},
                                  {"/d/" + kForeign, "123"},
                                  {"/d/x", "1"},
                                  {"/" + kServer + "/in", "12"}}}}};
};

INSTANTIATE_TEST_SUITE_P(Features, FoundHostNames,
                         testing::Values(R"(["mlst", "size", "epsv", "utf8"])", R"(["size", "mdtm", "utf8"])",
                                         R"(["utf8"])"));

TEST_P(FoundHostNames, AreListed) { EXPECT_EQ(namesAt(server, "/d/*"), (Names{kHost, "x", kForeign})); }

TEST_P(FoundHostNames, AreFoundUnderTheNameThatTheyCameUnder) {
  for (const std::string& name : {kHost, kForeign, kServer}) {
    const Entries found = searchAt(server, "/d/" + name).entries;
    ASSERT_EQ(found.size(), 1U) << name;
    EXPECT_EQ(found[0].name, name == kServer ? kHost : name);
    EXPECT_EQ(found[0].size, name == kForeign ? 3U : 5U);
  }
}

TEST_P(FoundHostNames, NameDirectories) { EXPECT_EQ(namesAt(server, "/" + kHost), Names{"in"}); }

TEST_P(FoundHostNames, AreFilteredByCharacters) {
  EXPECT_EQ(namesAt(server, "/d/5 ?.txt"), Names{kHost});
  EXPECT_EQ(namesAt(server, "/d/*\x80*"), Names{kHost});
  EXPECT_EQ(namesAt(server, "/d/?A.TXT"), Names{kForeign});
  EXPECT_EQ(namesAt(server, "/d/\xC5\x81*"), Names{kForeign});
}

}  // namespace
}  // namespace internet_tests
