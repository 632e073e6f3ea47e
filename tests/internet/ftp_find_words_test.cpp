// SPDX-License-Identifier: MIT
// Words like "truncated" and "empty" decide what a listing is. They were looked for in the paths, too, that a
// server quotes: a directory called "truncated" could not be listed, and a refusal that named one called
// "empty" made an empty directory of it.
#include <nlohmann/json.hpp>

#include "framework/internet/ftp/ServerWords.h"
#include "tests/internet/FindTest.h"

namespace internet_tests {
namespace {

using fixture::ScriptedFtp;
using internet::BareName;
using internet::QuotedPaths;
using nlohmann::json;
using namespace nlohmann::literals;

bool saysEmpty(std::string_view text, const QuotedPaths& paths) {
  return internet::serverSays(text, {"empty", "no files"}, paths, BareName::anywhere);
}

bool saysTruncated(std::string_view text, const QuotedPaths& paths) {
  return internet::serverSays(text, {"truncated"}, paths, BareName::leading);
}

TEST(ServerWords, AreFoundInAnyCaseAndAnyLine) {
  const QuotedPaths paths{.asked = "/d", .current = ""};
  EXPECT_TRUE(saysEmpty("550 Directory is EMPTY", paths));
  EXPECT_TRUE(saysEmpty("550-Sorry\r\n550 No Files here", paths));
  EXPECT_TRUE(saysTruncated("226-Output truncated to 4 matches\r\n226 Done", paths));
  EXPECT_FALSE(saysEmpty("550 Permission denied", paths));
  EXPECT_FALSE(saysEmpty("", paths));
}

TEST(ServerWords, DoNotStandInQuotes) {
  const QuotedPaths paths{.asked = "", .current = ""};
  for (const char* text :
       {"550 \"/pub/empty\": denied", "550 'empty' is locked", "550 `my empty dir': denied",
        "550 You can't list 'empty' now", "257 \"/a \"\"empty\"\" b\" is it"}) {
    EXPECT_FALSE(saysEmpty(text, paths)) << text;
  }
  EXPECT_TRUE(saysEmpty("550 You can't list this, it's empty and isn't yours", paths));
  EXPECT_TRUE(saysEmpty("550 \"/pub/empty\" is empty", paths));
  EXPECT_TRUE(saysEmpty("550 \"/pub is empty", paths)) << "an open quote";
}

TEST(ServerWords, DoNotStandInPaths) {
  const QuotedPaths paths{.asked = "my/empty dir", .current = "/home/no files"};
  for (const char* text :
       {"550 /srv/empty: denied", "550 my/empty dir: denied", "550 /home/u/my/empty dir: denied",
        "550 MY/EMPTY DIR: denied", "550 /home/no files is locked", "550 empty dir is locked",
        "550 (/empty) is locked", "550 no files: denied"}) {
    EXPECT_FALSE(saysEmpty(text, paths)) << text;
  }
  EXPECT_TRUE(saysEmpty("550 /srv/empty: empty", paths));
  EXPECT_TRUE(saysEmpty("550 my/empty dirs: denied", paths)) << "another path";
}

TEST(ServerWords, MayHaveAWordOfThePath) {
  EXPECT_TRUE(saysEmpty("550 No files found", {.asked = "/pub/files", .current = ""}));
  EXPECT_TRUE(saysEmpty("550 No files found", {.asked = "/no", .current = "/found"}));
  EXPECT_TRUE(saysTruncated("226 Output truncated", {.asked = "/pub/output", .current = ""}));
}

TEST(ServerWords, ThatAreThePathsBareNameAreDoubtful) {
  const QuotedPaths paths{.asked = "/pub/truncated", .current = ""};
  EXPECT_TRUE(saysTruncated("226 Output truncated to 4 matches", paths));
  EXPECT_FALSE(saysTruncated("226 truncated is listed", paths));
  EXPECT_FALSE(saysTruncated("226 Listed truncated: all of it", paths));
  EXPECT_TRUE(saysTruncated("226 truncated is truncated", paths));
  EXPECT_FALSE(saysEmpty("550 Directory is empty", {.asked = "empty", .current = ""}));
}

TEST(ServerWords, AreFoundSoonInAnyText) {
  std::string quotes = "550 empty";
  while (quotes.size() < 60'000) quotes += " \"a '/";
  EXPECT_TRUE(saysEmpty(quotes, {.asked = "/d", .current = "a"}));
  EXPECT_FALSE(saysEmpty(std::string(100'000, ' ') + "empty", {.asked = "/d", .current = ""}));
}

class FindWords : public FindTest {
 protected:
  // A listing of /d/NAME over a server whose every listing goes as `step` says.
  Names listed(const std::string& name, const json& step, bool facts) {
    json script{{"tree", {{"/d/" + name + "/one", "1"}}},
                {"rules", {{{"on", {"LIST", "MLSD"}}, {"do", {step}}}}}};
    if (!facts) script["features"] = {"size"};
    const ScriptedFtp server(script);
    return namesAt(server, "/d/" + name + "/*");
  }
};

TEST_F(FindWords, ADirectoryCalledTruncatedCanBeListed) {
  for (const bool facts : {true, false}) {
    for (const char* final : {"226 \"/d/truncated\" is sent", "226 /d/truncated: 1 entry",
                              "226 /home/user/d/truncated sent", "226 truncated: 1 entry"}) {
      EXPECT_EQ(listed("truncated", {{"normal", {{"final", final}}}}, facts), Names{"one"}) << final;
    }
    const json truncated{{"normal", {{"final", "226 Output truncated to 1 match"}}}};
    EXPECT_EQ(listed("truncated", truncated, facts), Names{"thrown 12003 226 Output truncated to 1 match"});
  }
}

TEST_F(FindWords, ARefusalThatNamesAPathWithEmptyInItIsARefusal) {
  for (const bool facts : {true, false}) {
    for (const char* reply : {"550 /d/empty: Permission denied", "550 \"/d/empty\": Permission denied",
                              "450 empty: busy", "550 /srv/d/empty: Permission denied"}) {
      EXPECT_EQ(listed("empty", {{"reply", reply}}, facts), Names{"error 12003"}) << reply;
    }
    EXPECT_EQ(listed("empty", {{"reply", "550 /d/empty: No files found"}}, facts), Names{"error 18"});
    const json inside{{"normal", {{"lines", {"ls: empty: Permission denied"}}}}};
    EXPECT_EQ(listed("empty", inside, facts), Names{"error 12003"});
  }
}

TEST_F(FindWords, TheCurrentDirectoryIsAPathToo) {
  const ScriptedFtp server(R"({"tree": {"/d/my empty/one": "1"}, "rules": [
      {"on": ["LIST", "MLSD"], "do": [{"reply": "550 my empty: Permission denied"}]}]})"_json);
  const auto connection = connect(server);
  ASSERT_TRUE(connection->SetCurrentDirectory("/d/my empty"));
  CFtpFileFind finder(connection.get());
  EXPECT_EQ(search(finder, "*").error, 12003u);
}

}  // namespace
}  // namespace internet_tests
