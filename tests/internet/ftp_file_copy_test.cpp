// SPDX-License-Identifier: MIT
// GetFile and PutFile: what is left on the disk, and when the server's word is needed.
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <thread>

#include "framework/internet/ftp/FtpTransfer.h"
#include "framework/platform/stop_token.h"
#include "tests/internet/FtpTest.h"
#include "tests/support/Pattern.h"

namespace internet_tests {
namespace {

using fixture::ScriptedFtp;
using nlohmann::json;
using namespace nlohmann::literals;
using testing_support::Pattern;

constexpr std::uint32_t kSeed = 11;
constexpr std::uint64_t kSize = 3'000'000;

class FtpFileCopy : public FtpTest {
 protected:
  static ScriptedFtp serving(const json& options, const char* verb = "RETR") {
    return ScriptedFtp(json{{"tree", {{"/dir/big", {{"size", kSize}, {"seed", kSeed}}}}},
                            {"rules", {{{"on", verb}, {"do", {{{"normal", options}}}}}}}});
  }

  std::uint32_t get(CFtpConnection& connection, bool failIfExists = true) {
    return errorOf([&] { return connection.GetFile("/dir/big", local.c_str(), failIfExists); });
  }

  void writeLocal(const std::string& content) { std::ofstream(local, std::ios::binary) << content; }

  testing_support::ScratchFolder folder;
  const std::string local = folder.file("local");
};

TEST_F(FtpFileCopy, CopiesBothWays) {
  for (const bool passive : {true, false}) {
    ScriptedFtp server = serving(json::object());
    auto connection = connect(server, passive);
    EXPECT_EQ(get(*connection), 0u);
    EXPECT_TRUE(Pattern(kSeed).matchesFile(local, kSize));
    EXPECT_TRUE(connection->PutFile(local.c_str(), "/up"));
    EXPECT_TRUE(server.matches("/up", kSeed, kSize));
    EXPECT_TRUE(std::filesystem::remove(local));
  }
}

TEST_F(FtpFileCopy, CopiesEmptyFiles) {
  ScriptedFtp server(R"({"tree": {"/dir/big": ""}})"_json);
  auto connection = connect(server);
  EXPECT_EQ(get(*connection), 0u);
  EXPECT_EQ(std::filesystem::file_size(local), 0u);
  EXPECT_TRUE(connection->PutFile(local.c_str(), "/up"));
  EXPECT_EQ(server.size("/up"), 0u);
}

TEST_F(FtpFileCopy, AnExistingFileIsRefusedBeforeAnythingIsSent) {
  ScriptedFtp server = serving(json::object());
  auto connection = connect(server);
  writeLocal("mine");
  EXPECT_EQ(get(*connection), 80u);
  EXPECT_EQ(server.commands().size(), 2u);
  EXPECT_EQ(std::filesystem::file_size(local), 4u);
  EXPECT_EQ(get(*connection, false), 0u);
  EXPECT_TRUE(Pattern(kSeed).matchesFile(local, kSize));
}

TEST_F(FtpFileCopy, AFileThatCannotBeCreatedIsTheSystemsError) {
  ScriptedFtp server = serving(json::object());
  auto connection = connect(server);
  const std::string nowhere = folder.file("missing/local");
  EXPECT_EQ(errorOf([&] { return connection->GetFile("/dir/big", nowhere.c_str()); }), 3u);
  EXPECT_EQ(errorOf([&] { return connection->PutFile(local.c_str(), "/up"); }), 2u);
  EXPECT_EQ(server.commands().size(), 2u) << "before anything is sent";
}

TEST_F(FtpFileCopy, ARefusedDownloadLeavesNoFile) {
  ScriptedFtp server;
  auto connection = connect(server);
  EXPECT_EQ(get(*connection), 12003u);
  EXPECT_FALSE(std::filesystem::exists(local));
  EXPECT_TRUE(works(*connection));
}

TEST_F(FtpFileCopy, AFileThatWasThereIsNotDeleted) {
  ScriptedFtp server;
  auto connection = connect(server);
  writeLocal("mine");
  EXPECT_EQ(get(*connection, false), 12003u);
  EXPECT_TRUE(std::filesystem::exists(local));
}

TEST_F(FtpFileCopy, AFailedDownloadLeavesNoFile) {
  session.SetTimeouts(shortTimeouts());
  const std::pair<json, std::uint32_t> cases[] = {
      {{{"close_after", 1'000'000}}, 12030},
      {{{"reset_after", 1'000'000}, {"final", "451 Read error"}}, 12003},
      {{{"close_after", 1'000'000}, {"final", "552 Odd"}, {"opening", "150 Size unknown"}}, 12003},
      {{{"final", "426 Aborted"}}, 12030},
      {{{"stall_after", 1'000'000}, {"gate", "never"}}, 12002},
  };
  for (const auto& [options, error] : cases) {
    ScriptedFtp server = serving(options);
    auto connection = connect(server);
    EXPECT_EQ(get(*connection), error) << options;
    EXPECT_FALSE(std::filesystem::exists(local)) << options;
  }
}

TEST_F(FtpFileCopy, AReadOnlyFileIsDeletedAfterAFailureToo) {
  ScriptedFtp server = serving({{"close_after", 1'000'000}});
  auto connection = connect(server);
  EXPECT_FALSE(connection->GetFile("/dir/big", local.c_str(), true, platform::kFileAttributeReadOnly));
  EXPECT_FALSE(std::filesystem::exists(local));
}

TEST_F(FtpFileCopy, AnUploadNeedsTheServersWord) {
  session.SetTimeouts(shortTimeouts());
  Pattern(kSeed).writeFile(local, kSize);
  const std::pair<json, std::uint32_t> cases[] = {
      {{{"final", "451 Write error"}}, 12003},
      {{{"close_after", 1'000'000}, {"final", "552 disk full"}}, 12003},
      {{{"reset_after", 1'000'000}, {"final", "552 disk full"}}, 12003},
      {{{"reset_after", 1'000'000}}, 12030},
  };
  for (const auto& [options, error] : cases) {
    ScriptedFtp server = serving(options, "STOR");
    auto connection = connect(server);
    EXPECT_EQ(errorOf([&] { return connection->PutFile(local.c_str(), "/up"); }), error) << options;
    const std::string words =
        error == 12003 ? options["final"].get<std::string>() : connection->LastServerText();
    EXPECT_EQ(connection->LastServerText(), words);
  }
}

TEST_F(FtpFileCopy, AnUploadThatIsBrokenOffIsNotTakenForAWholeFile) {
  // The server must see a broken connection, not the end of the file, and the control connection stays in
  // step.
  ScriptedFtp server;
  auto connection = connect(server);
  const auto& control = connection->Control();
  control->request([&] {
    internet::FtpTransfer transfer(control, internet::FtpTransfer::Kind::upload);
    EXPECT_TRUE(transfer.begin("STOR", "/up").preliminary());
    transfer.send("half a file", 11);
    server.waitFor(R"({"data_bytes": 11})");
    EXPECT_TRUE(transfer.abandon());
  });
  EXPECT_EQ(server.dataConnections().at(0).how, "peer");
  EXPECT_TRUE(works(*connection));
}

TEST_F(FtpFileCopy, AStoppedUploadEndsAtOnce) {
  Pattern(kSeed).writeFile(local, 40'000'000);
  ScriptedFtp server = serving({{"stall_after", 1'000'000}, {"gate", "rest"}}, "STOR");
  auto connection = connect(server);
  platform::StopToken token;
  std::thread stopper([&] {
    server.waitAtGate("rest");
    token.raise();
  });
  {
    const platform::StopToken::Scope scope(&token);
    EXPECT_THROW(static_cast<void>(connection->PutFile(local.c_str(), "/up")), platform::OperationStopped);
  }
  stopper.join();
  server.waitFor(R"({"data_closed": 1})");
  EXPECT_NE(server.dataConnections().at(0).how, "complete");
}

TEST_F(FtpFileCopy, AStoppedDownloadLeavesNoFile) {
  ScriptedFtp server = serving({{"stall_after", 1'000'000}, {"gate", "rest"}});
  auto connection = connect(server);
  platform::StopToken token;
  std::thread stopper([&] {
    server.waitAtGate("rest");
    token.raise();
  });
  {
    const platform::StopToken::Scope scope(&token);
    EXPECT_THROW(static_cast<void>(get(*connection)), platform::OperationStopped);
  }
  stopper.join();
  EXPECT_FALSE(std::filesystem::exists(local));
}

TEST_F(FtpFileCopy, ADownloadKeepsToSevenRoundTrips) {
  ScriptedFtp server = serving(json::object());
  auto connection = connect(server);
  EXPECT_EQ(get(*connection), 0u);
  EXPECT_EQ(server.repliesSent(), 8) << "that to SIZE comes with others";
}

}  // namespace
}  // namespace internet_tests
