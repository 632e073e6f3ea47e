// SPDX-License-Identifier: MIT
// The finder as an object, and listings that are broken, hostile or empty in odd ways.
#include <nlohmann/json.hpp>
#include <thread>

#include "framework/platform/stop_token.h"
#include "tests/internet/FindTest.h"

namespace internet_tests {
namespace {

using fixture::ScriptedFtp;
using nlohmann::json;
using namespace nlohmann::literals;

json treeScript() {
  return R"({"features": ["size", "mdtm"], "tree": {"/d/one": "1", "/d/two": "22", "/d/three": {"mode": "r--r--r--"},
                                                    "/d/sub/": {}}})"_json;
}

// A server whose every listing is answered by `steps`.
json listingScript(json steps) {
  json script = treeScript();
  script["rules"] = json::array({{{"on", {"LIST", "MLSD"}}, {"do", std::move(steps)}}});
  return script;
}

json withLines(const json& lines) { return json::array({{{"normal", {{"lines", lines}}}}}); }

class Finder : public FindTest {
 protected:
  Search searchListing(json steps) {
    const ScriptedFtp server(listingScript(std::move(steps)));
    return searchAt(server, "/d/*");
  }
};

TEST_F(Finder, WalksAsHostsExpect) {
  const ScriptedFtp server(treeScript());
  const auto connection = connect(server);
  CFtpFileFind finder(connection.get());
  ASSERT_TRUE(finder.FindFile("/d/*"));
  EXPECT_EQ(finder.EntriesLeft(), 4u);
  EXPECT_EQ(finder.GetFileName(), "");
  EXPECT_FALSE(finder.IsDirectory());
  EXPECT_FALSE(finder.MatchesMask(0xffffffff));
  EXPECT_EQ(finder.GetLastWriteTime(), 0);

  EXPECT_TRUE(finder.FindNextFile());
  EXPECT_EQ(finder.GetFileName(), "one");
  EXPECT_EQ(finder.GetLength(), 1u);
  EXPECT_TRUE(finder.MatchesMask(0x80));
  EXPECT_TRUE(finder.FindNextFile());
  EXPECT_EQ(finder.GetFileName(), "sub");
  EXPECT_TRUE(finder.IsDirectory());
  EXPECT_TRUE(finder.MatchesMask(0x10));
  EXPECT_TRUE(finder.FindNextFile());
  EXPECT_EQ(finder.GetFileName(), "three");
  EXPECT_TRUE(finder.MatchesMask(0x1 | 0x10));
  EXPECT_FALSE(finder.MatchesMask(0x80 | 0x10 | 0x20));
  EXPECT_FALSE(finder.FindNextFile());
  for (int again = 0; again < 2; ++again) {
    EXPECT_EQ(finder.GetFileName(), "two");
    EXPECT_EQ(finder.GetLength(), 2u);
    EXPECT_EQ(finder.EntriesLeft(), 0u);
    EXPECT_EQ(errorOf([&] { return finder.FindNextFile(); }), 18u);
  }

  finder.Close();
  EXPECT_EQ(finder.GetFileName(), "");
  EXPECT_EQ(finder.EntriesLeft(), 0u);
  EXPECT_EQ(errorOf([&] { return finder.FindNextFile(); }), 18u);
  finder.Close();
  EXPECT_EQ(search(finder, "/d/one").entries.size(), 1u) << "used again";
}

TEST_F(Finder, OutlivesItsConnection) {
  const ScriptedFtp server(treeScript());
  auto connection = connect(server);
  CFtpFileFind finder(connection.get());
  ASSERT_TRUE(finder.FindFile("/d/one"));
  connection.reset();
  EXPECT_FALSE(finder.FindNextFile());
  EXPECT_EQ(finder.GetFileName(), "one");
  EXPECT_EQ(finder.GetLastWriteTime(), 0) << "it can be asked no more";
  EXPECT_EQ(search(finder, "/d/*").error, 12019u);
}

TEST_F(Finder, WithoutAConnectionFindsNothing) {
  CFtpFileFind finder(nullptr);
  EXPECT_EQ(search(finder, "*").error, 12019u);
  EXPECT_FALSE(finder.FindNextFile());
  EXPECT_EQ(finder.GetLastWriteTime(), 0);
}

TEST_F(Finder, ForgetsItsEntriesWhenASearchFails) {
  const ScriptedFtp server(treeScript());
  const auto connection = connect(server);
  CFtpFileFind finder(connection.get());
  ASSERT_TRUE(finder.FindFile("/d/*"));
  EXPECT_TRUE(finder.FindNextFile());
  EXPECT_FALSE(finder.FindFile("/d/missing"));
  EXPECT_EQ(finder.GetFileName(), "");
  EXPECT_FALSE(finder.FindNextFile());
  EXPECT_TRUE(finder.FindFile("/d/two"));
}

TEST_F(Finder, RefusesPathsThatCannotBeSent) {
  const ScriptedFtp server(treeScript());
  const auto connection = connect(server);
  CFtpFileFind finder(connection.get());
  const int sent = server.repliesSent();
  for (const std::string& path :
       {std::string("/d\r\nDELE /d/one"), std::string("/d\n"), std::string("/d/\x1b*"), std::string("\x7f"),
        std::string(4097, 'x'), std::string(100'000, '*')}) {
    EXPECT_EQ(search(finder, path).error, 87u);
  }
  EXPECT_EQ(server.repliesSent(), sent);
  EXPECT_EQ(search(finder, std::string(4096, 'x')).error, 18u);
  EXPECT_TRUE(server.exists("/d/one"));
}

TEST_F(Finder, IsRefusedWhileAFileIsOpen) {
  const ScriptedFtp server(treeScript());
  const auto connection = connect(server);
  CFtpFileFind finder(connection.get());
  ASSERT_TRUE(finder.FindFile("/d/one"));
  finder.FindNextFile();
  const auto file = openToRead(*connection, "/d/two");
  EXPECT_EQ(finder.GetLastWriteTime(), 0) << "not now";
  CFtpFileFind other(connection.get());
  EXPECT_EQ(search(other, "/d/*").error, 12110u);
  EXPECT_TRUE(file->Close());
  EXPECT_NE(finder.GetLastWriteTime(), 0);
  EXPECT_EQ(search(other, "/d/*").entries.size(), 4u);
}

TEST_F(Finder, MayBeDeletedByANotification) {
  const ScriptedFtp server(treeScript());
  const auto connection = connect(server);
  for (const std::uint32_t status : {30u, 41u, 100u}) {
    auto finder = std::make_unique<CFtpFileFind>(connection.get());
    session.onStatus = [&](std::uint32_t seen) {
      if (seen == status) finder.reset();
    };
    EXPECT_TRUE(finder->FindFile("/d/*"));
    EXPECT_EQ(finder, nullptr);
    session.onStatus = nullptr;
  }
}

// --- Listings ---

TEST_F(Finder, SkipsRowsThatAreNoEntries) {
  const Search result = searchListing(
      withLines({"total 88", "", "drwxr-xr-x 2 r r 7 Jan 12 2024 .", "drwxr-xr-x 2 r r 7 Jan 12 2024 ..",
                 "what is this", "-rw-r--r-- 1 r r 7 Jan 12 2024 good",
                 "-rw-r--r-- 1 r r 7 Jan 12 2024 ../bad", "-rw-r--r-- 1 r r 7 Jan 12 2024 /etc/passwd",
                 "-rw-r--r-- 1 r r 7 Jan 12 2024 b\u001bad", "-rw-r--r-- 1 r r 7 Jan 12 2024 /d/own"}));
  EXPECT_EQ(namesOf(result.entries), (Names{"good", "own"}));
}

TEST_F(Finder, TakesAnEmptyListingForAnEmptyDirectory) {
  for (const json& lines : {json::array(), json{"total 0"}, json{"drwxr-xr-x 2 r r 7 Jan 12 2024 ."},
                            json{"ls: *: No such file or directory"}}) {
    const Search result = searchListing(withLines(lines));
    EXPECT_EQ(result.error, 18u) << lines;
    EXPECT_EQ(result.thrown.error, 0u) << lines << result.thrown.text;
  }
}

TEST_F(Finder, KnowsHowServersRefuseToListAnEmptyDirectory) {
  for (const char* reply : {"550 No files found", "450 No files found.", "550 Directory is empty",
                            "550 *: No such file or directory", "450 File not found",
                            "550 The system cannot find the file specified."}) {
    const Search result = searchListing({{{"reply", reply}}});
    EXPECT_EQ(result.error, 18u) << reply;
    EXPECT_EQ(result.thrown.error, 0u) << reply;
  }
}

TEST_F(Finder, RefusalAtTheEndOfAnEmptyListingCountsAsOneAtItsStart) {
  const json empty = {{{"normal", {{"lines", json::array()}, {"final", "550 No files found"}}}}};
  EXPECT_EQ(searchListing(empty).error, 18u);
  const json denied = {{{"normal", {{"lines", json::array()}, {"final", "550 Permission denied"}}}}};
  EXPECT_EQ(searchListing(denied).error, 12003u);
}

TEST_F(Finder, TellsTheServersRefusal) {
  for (const char* reply : {"550 Permission denied", "450 Busy", "451 Local error", "553 No", "530 Log in"}) {
    const Search result = searchListing({{{"reply", reply}}});
    EXPECT_EQ(result.error, 12003u) << reply;
    EXPECT_EQ(result.thrown.error, 0u) << reply;
  }
  const Search inside = searchListing(withLines({"ls: .: Permission denied"}));
  EXPECT_EQ(inside.error, 12003u);
}

TEST_F(Finder, KeepsTheServersText) {
  const ScriptedFtp server(listingScript({{{"reply", "550 Permission denied"}}}));
  const auto connection = connect(server);
  CFtpFileFind finder(connection.get());
  EXPECT_EQ(search(finder, "/d/*").error, 12003u);
  EXPECT_EQ(connection->LastServerText(), "550 Permission denied");
}

TEST_F(Finder, TakesACutListingForBroken) {
  // In the middle of the last row's date.
  const json cut = {{{"normal", {{"cut_last", 12}}}}};
  EXPECT_EQ(searchListing(cut).thrown.error, 12030u);
  for (const char* final : {"426 Broken", "451 Local error", "550 No files found"}) {
    const json refused = {{{"normal", {{"cut_last", 12}, {"final", final}}}}};
    const Search result = searchListing(refused);
    EXPECT_EQ(result.error, 0u) << final;
    EXPECT_EQ(result.thrown.error, std::string(final).starts_with("426") ? 12030u : 12003u) << final;
  }
  const json reset = {{{"normal", {{"reset_after", 60}, {"final", "451 Local error"}}}}};
  EXPECT_EQ(searchListing(reset).thrown.error, 12003u);
  // The line end alone is missing, and the server says that this is all.
  const json unended = {{{"normal", {{"cut_last", 2}}}}};
  EXPECT_EQ(searchListing(unended).entries.size(), 4u);
}

TEST_F(Finder, TakesATruncatedListingForBroken) {
  const json steps = {
      {{"normal", {{"final", json{"226-Options: -l ", "226 Output truncated to 4 matches"}}}}}};
  const Search result = searchListing(steps);
  EXPECT_EQ(result.thrown.error, 12003u);
  EXPECT_NE(result.thrown.text.find("truncated"), std::string::npos) << result.thrown.text;
}

TEST_F(Finder, TakesAListingWithoutOneReadableRowForBroken) {
  EXPECT_EQ(searchListing(withLines({"%RMS-E-FNF", "file not known"})).thrown.error, 12152u);
}

TEST_F(Finder, ServesOnAfterABrokenListing) {
  json script = treeScript();
  script["rules"] = R"([{"on": "LIST", "nth": 1, "do": [{"normal": {"cut_last": 12}}]}])"_json;
  const ScriptedFtp server(script);
  const auto connection = connect(server);
  CFtpFileFind finder(connection.get());
  EXPECT_EQ(search(finder, "/d/*").thrown.error, 12030u);
  EXPECT_EQ(search(finder, "/d/*").entries.size(), 4u);
}

TEST_F(Finder, EndsAListingThatRepeatsOneEntryForEver) {
  const json steps = {{{"normal", {{"endless", true}, {"lines", {"-rw-r--r-- 1 r r 7 Jan 12 2024 same"}}}}}};
  EXPECT_EQ(searchListing(steps).thrown.error, 12152u);
}

TEST_F(Finder, ThrowsTroubleOfTheConnection) {
  session.SetTimeouts(shortTimeouts());
  const auto thrown = [&](const json& step) { return searchListing(json::array({step})).thrown.error; };
  EXPECT_EQ(thrown("silent"), 12002u);
  EXPECT_EQ(thrown({{"reply", "421 Shutting down"}}), 12030u);
  EXPECT_EQ(thrown({{"reply", "425 No data connection"}}), 12029u);
  EXPECT_EQ(thrown({{"normal", {{"final", nullptr}}}}), 12002u);
}

TEST_F(Finder, FindsAgainNothingOnADeadConnection) {
  json script = treeScript();
  script["rules"] = R"([{"on": "LIST", "do": ["close"]}])"_json;
  const ScriptedFtp server(script);
  const auto connection = connect(server);
  CFtpFileFind finder(connection.get());
  EXPECT_EQ(search(finder, "/d/*").thrown.error, 12030u);
  EXPECT_EQ(search(finder, "/d/*").thrown.error, 12030u);
  EXPECT_FALSE(finder.FindNextFile());
}

TEST_F(Finder, LeavesAStalledListingWhenItIsStopped) {
  json script = treeScript();
  script["rules"] = R"([{"on": "LIST", "do": [{"normal": {"stall_after": 10, "gate": "stall"}}]}])"_json;
  const ScriptedFtp server(script);
  const auto connection = connect(server);
  CFtpFileFind finder(connection.get());
  platform::StopToken token;
  std::thread stopper([&] {
    server.waitAtGate("stall");
    token.raise();
  });
  bool stopped = false;
  try {
    const platform::StopToken::Scope scope(&token);
    finder.FindFile("/d/*");
  } catch (const platform::OperationStopped&) {
    stopped = true;
  }
  stopper.join();
  EXPECT_TRUE(stopped);
  EXPECT_FALSE(finder.FindNextFile());
}

// --- MLST ---

class MlstReply : public FindTest {
 protected:
  Names namesFor(const json& reply, const std::string& path = "/d/file") {
    json script = R"({"tree": {"/d/file": "12345", "/d/empty/": {}}})"_json;
    script["rules"] = json::array({{{"on", "MLST"}, {"do", json::array({{{"reply", reply}}})}}});
    const ScriptedFtp server(script);
    return namesAt(server, path);
  }
};

TEST_F(MlstReply, IsReadInEveryDress) {
  const Names file{"file"};
  EXPECT_EQ(namesFor({"250-Listing", " type=file;size=5; /d/file", "250 End"}), file);
  EXPECT_EQ(namesFor({"250-Listing", "type=file;size=5; file", "250 End"}), file);
  EXPECT_EQ(namesFor({"250-Listing", "250-type=file;size=5; elsewhere/file", "250 End"}), file);
  EXPECT_EQ(namesFor("250 type=file;size=5; file"), file);
  EXPECT_EQ(namesFor({"250-Listing", " Type=File;x.y=z; ..", "250 End"}), file) << "the asked name counts";
  EXPECT_EQ(namesFor({"250-Listing", " size=5; file", "250 End"}), file) << "SIZE tells";
}

// It passed for an entry whose kind is unknown, and so for a file when MLSD was refused.
TEST_F(MlstReply, WithoutAFactLineIsNoAnswer) {
  for (const json& reply :
       {json("250 There it is"), json("200 Okay"), json({"250-Listing", " nothing to tell", "250 End"})}) {
    EXPECT_EQ(namesFor(reply), Names{"file"}) << reply;
    EXPECT_EQ(namesFor(reply, "/d/missing"), Names{"error 18"}) << reply;
    EXPECT_EQ(namesFor(reply, "/d/empty"), Names{"error 18"}) << reply;
  }
}

TEST_F(MlstReply, OfALinkThatIsCalledAFileHasTheWrongSize) {
  const ScriptedFtp server(R"({"tree": {"/d/file": "12345"}, "rules": [{"on": "MLST", "do": [{"reply": [
      "250-Listing", " type=file;size=8;UNIX.mode=0777; /d/link", "250 End"]}]}]})"_json);
  const Search result = searchAt(server, "/d/file");
  ASSERT_EQ(result.entries.size(), 1u);
  EXPECT_EQ(result.entries[0].size, 5u);
}

TEST_F(MlstReply, MayRefuse) {
  EXPECT_EQ(namesFor("550 No such file"), Names{"error 18"});
  EXPECT_EQ(namesFor("553 Not that name"), Names{"error 18"});
  EXPECT_EQ(namesFor("450 Busy"), Names{"error 12003"});
  EXPECT_EQ(namesFor("421 Closing")[0].substr(0, 12), "thrown 12030");
  EXPECT_EQ(namesFor("500 Unknown"), Names{"file"});
}

}  // namespace
}  // namespace internet_tests
