// SPDX-License-Identifier: MIT
// Replies of 3xx, which ask for more: done nothing has, but where the client has more to say.
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "framework/internet/FtpFileFind.h"
#include "tests/internet/FtpTest.h"

namespace internet_tests {
namespace {

using fixture::ScriptedFtp;
using nlohmann::json;
using namespace nlohmann::literals;

class FtpIntermediate : public FtpTest {
 protected:
  // A server that answers `verb` by a reply that asks for more.
  static ScriptedFtp askingAt(const char* verb) {
    return ScriptedFtp(json{{"tree", {{"/f", "content"}, {"/dir/", json::object()}}},
                            {"rules", {{{"on", verb}, {"do", {{{"reply", kAsks}}}}}}}});
  }

  template <class Operation>
  void expectRefused(const char* verb, Operation operation, bool passive = true) {
    internet::forgetCachedTraits();
    ScriptedFtp server = askingAt(verb);
    auto connection = connect(server, passive);
    EXPECT_EQ(errorOf([&] { return operation(*connection); }), 12003u) << verb;
    EXPECT_EQ(connection->LastServerText(), kAsks) << verb;
    EXPECT_EQ(server.commandCount(verb), 1);
    std::string directory;
    EXPECT_EQ(connection->GetCurrentDirectory(directory), std::string_view(verb) != "PWD") << "in step";
  }

  static constexpr const char* kAsks = "350 And then?";
};

// Such replies passed for success.
TEST_F(FtpIntermediate, IsARefusalOfEveryPlainCommand) {
  expectRefused("DELE", [](CFtpConnection& connection) { return connection.Remove("/f"); });
  expectRefused("MKD", [](CFtpConnection& connection) { return connection.CreateDirectory("/new"); });
  expectRefused("RMD", [](CFtpConnection& connection) { return connection.RemoveDirectory("/dir"); });
  expectRefused("CWD", [](CFtpConnection& connection) { return connection.SetCurrentDirectory("/dir"); });
  expectRefused("RNTO", [](CFtpConnection& connection) { return connection.Rename("/f", "/g"); });
  expectRefused("PWD", [](CFtpConnection& connection) {
    std::string directory;
    return connection.GetCurrentDirectory(directory);
  });
}

TEST_F(FtpIntermediate, IsARefusalOfEveryCommandOfATransfer) {
  const testing_support::ScratchFolder folder;
  const std::string local = folder.file("local");
  const auto get = [&](CFtpConnection& connection) { return connection.GetFile("/f", local.c_str(), false); };
  for (const char* verb : {"TYPE", "EPSV", "RETR"}) expectRefused(verb, get);
  for (const char* verb : {"TYPE", "EPRT", "RETR"}) expectRefused(verb, get, false);
  EXPECT_FALSE(std::filesystem::exists(local));
  std::ofstream(local) << "content";
  expectRefused("STOR", [&](CFtpConnection& connection) { return connection.PutFile(local.c_str(), "/up"); });
}

TEST_F(FtpIntermediate, IsARefusalOfTheOlderCommandsForAPort) {
  for (const bool passive : {true, false}) {
    internet::forgetCachedTraits();
    ScriptedFtp server(json{{"features", json::array()},
                            {"rules", {{{"on", {"PASV", "PORT"}}, {"do", {{{"reply", kAsks}}}}}}}});
    auto connection = connect(server, passive);
    const Thrown thrown = thrownBy([&] { openToRead(*connection, "/f"); });
    EXPECT_EQ(thrown.error, 12003u);
    EXPECT_EQ(thrown.text, kAsks);
    EXPECT_EQ(server.commandCount("RETR"), 0);
    EXPECT_TRUE(works(*connection));
  }
}

TEST_F(FtpIntermediate, IsARefusalAtTheEndOfATransfer) {
  const json late = {{"normal", {{"final", kAsks}, {"final_gate", "late"}}}};
  ScriptedFtp server(
      json{{"tree", {{"/f", "content"}}}, {"rules", {{{"on", {"RETR", "STOR"}}, {"do", {late}}}}}});
  auto connection = connect(server);
  auto in = openToRead(*connection, "/f");
  EXPECT_EQ(readToEnd(*in), "content");
  server.release("late");
  EXPECT_EQ(errorOf([&] { return in->Close(); }), 12003u);
  auto out = openToWrite(*connection, "/up");
  out->Write("abc", 3);
  EXPECT_EQ(errorOf([&] { return out->Close(); }), 12003u);
  EXPECT_TRUE(works(*connection));
}

TEST_F(FtpIntermediate, IsARefusalOfEverySearch) {
  for (const char* verb : {"MLST", "MLSD"}) {
    expectRefused(verb,
                  [](CFtpConnection& connection) { return CFtpFileFind(&connection).FindFile("/dir"); });
  }
  for (const char* verb : {"LIST", "SIZE"}) {
    ScriptedFtp server(json{{"tree", {{"/f", "content"}, {"/dir/", json::object()}}},
                            {"features", {"size"}},
                            {"rules", {{{"on", verb}, {"do", {{{"reply", kAsks}}}}}}}});
    internet::forgetCachedTraits();
    auto connection = connect(server);
    const char* path = std::string_view(verb) == "LIST" ? "/dir" : "/f";
    EXPECT_EQ(errorOf([&] { return CFtpFileFind(connection.get()).FindFile(path); }), 12003u) << verb;
    EXPECT_EQ(connection->LastServerText(), kAsks) << verb;
    EXPECT_TRUE(works(*connection));
  }
}

TEST_F(FtpIntermediate, IsWhatRenamingAsksForFirst) {
  ScriptedFtp server(R"({"tree": {"/old": "x"}})"_json);
  auto connection = connect(server);
  EXPECT_TRUE(connection->Rename("/old", "/new"));
  EXPECT_TRUE(server.exists("/new"));
}

TEST_F(FtpIntermediate, IsNoWayToRenameWhenItAsksForSomethingElse) {
  ScriptedFtp server(
      R"({"tree": {"/old": "x"}, "rules": [{"on": "RNFR", "do": [{"reply": "332 Account?"}]}]})"_json);
  auto connection = connect(server);
  EXPECT_EQ(errorOf([&] { return connection->Rename("/old", "/new"); }), 12003u);
  EXPECT_EQ(server.commandCount("RNTO"), 0);
}

}  // namespace
}  // namespace internet_tests
