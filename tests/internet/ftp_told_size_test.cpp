// SPDX-License-Identifier: MIT
// Downloads whose size the server tells in its answer to SIZE, which rides along with other commands.
#include <filesystem>

#include "framework/internet/ftp/FtpControl.h"
#include "tests/internet/FtpTransferTest.h"
#include "tests/internet/ListedText.h"

namespace internet_tests {
namespace {

using Lines = std::vector<std::string>;

constexpr const char* kSilent = "150 Here it comes";  // tells no size

class FtpToldSize : public FtpTransferTest {
 protected:
  // A server whose 150 tells no size, with a rule ahead of that.
  static ScriptedFtp servingUntold(const json& sizeSteps, json options = json::object()) {
    options["opening"] = kSilent;
    return ScriptedFtp(json{
        {"tree", {{"/big", {{"size", kBigSize}, {"seed", kSeed}}}}},
        {"rules", {{{"on", "SIZE"}, {"do", sizeSteps}}, {{"on", "RETR"}, {"do", {{{"normal", options}}}}}}}});
  }
  static Lines linesBehindLogin(const ScriptedFtp& server) {
    const Lines all = server.commands();
    return {all.begin() + 2, all.end()};
  }

  testing_support::ScratchFolder folder;
  const std::string local = folder.file("local");
};

// A truncated file that the server called complete was a success where the 150 told no size.
TEST_F(FtpToldSize, AShortFileThatTheServerCallsCompleteIsAFailure) {
  for (const bool passive : {true, false}) {
    ScriptedFtp server = servingUntold({"normal"}, {{"close_after", 1'000'000}});
    auto connection = connect(server, passive);
    EXPECT_EQ(errorOf([&] { return connection->GetFile("/big", local.c_str()); }), 12030u);
    EXPECT_FALSE(std::filesystem::exists(local));
    auto file = openToRead(*connection, "/big");
    EXPECT_EQ(thrownBy([&] { readPattern(*file); }).error, 12030u);
    EXPECT_NE(errorOf([&] { return file->Close(); }), 0u);
    EXPECT_TRUE(works(*connection));
  }
}

TEST_F(FtpToldSize, AFileThatGrowsMeanwhileIsReadInFull) {
  ScriptedFtp server = servingUntold({"normal"}, {{"extra_bytes", 1000}});
  auto connection = connect(server);
  auto file = openToRead(*connection, "/big");
  EXPECT_EQ(readToEnd(*file, 65536).size(), kBigSize + 1000);
  EXPECT_TRUE(file->Close());
}

TEST_F(FtpToldSize, WhatTheOpeningTellsIsNewer) {
  for (const auto& [size, error] : {std::pair("213 4000000", 0u), std::pair("213 2000000", 12030u)}) {
    const char* const opening = error == 0 ? "150 Here (3000000 bytes)" : "150 Here (4000000 bytes)";
    ScriptedFtp server(json{{"tree", {{"/big", {{"size", kBigSize}, {"seed", kSeed}}}}},
                            {"rules",
                             {{{"on", "SIZE"}, {"do", {{{"reply", size}}}}},
                              {{"on", "RETR"}, {"do", {{{"normal", {{"opening", opening}}}}}}}}}});
    EXPECT_EQ(errorOf([&] { return connect(server)->GetFile("/big", local.c_str()); }), error) << opening;
    std::filesystem::remove(local);
  }
}

TEST_F(FtpToldSize, AReadOfExactlyTheToldSizeIsComplete) {
  ScriptedFtp server = servingUntold({"normal"});
  auto connection = connect(server);
  auto file = openToRead(*connection, "/big");
  std::vector<char> buffer(kBigSize);
  EXPECT_EQ(file->Read(buffer.data(), kBigSize), kBigSize);
  EXPECT_EQ(errorOf([&] { return file->Close(); }), 0u);
  EXPECT_EQ(server.dataConnections().at(0).how, "complete");
  EXPECT_EQ(server.commandCount("NOOP"), 0);
}

TEST_F(FtpToldSize, TheQuestionComesBehindTypeAndGoesWithTheNextCommand) {
  for (const bool passive : {true, false}) {
    ScriptedFtp server = servingUntold({"normal"});
    auto connection = connect(server, passive);
    session.takeStatuses();
    auto file = openToRead(*connection, "/big");
    EXPECT_EQ(session.takeStatuses(), (Statuses{30, 31, 40, 41, 30, 31, 40, 41, 100})) << "two round trips";
    Lines lines = linesBehindLogin(server);
    lines.at(2).resize(4);  // without the argument of EPRT
    EXPECT_EQ(lines, (Lines{"TYPE I", "SIZE /big", passive ? "EPSV" : "EPRT", "RETR /big"}));
  }
}

TEST_F(FtpToldSize, NeitherAListingNorAnUploadAsksForIt) {
  ScriptedFtp server = servingUntold({"normal"});
  auto connection = connect(server);
  const auto& control = connection->Control();
  control->request([&] { EXPECT_TRUE(listedBy(*control, "MLSD", "/").reply.completed()); });
  auto file = openToWrite(*connection, "/up");
  EXPECT_TRUE(file->Close());
  EXPECT_EQ(server.commandCount("SIZE"), 0);
}

TEST_F(FtpToldSize, AServerThatDoesNotKnowSizeServesAndIsNotAskedAgain) {
  for (const char* answer : {"500 Unknown", "502 Not here"}) {
    internet::forgetCachedTraits();
    ScriptedFtp server = servingUntold({{{"reply", answer}}});
    for (int round = 0; round < 2; ++round) {
      auto connection = connect(server);
      for (int file = 0; file < 2; ++file) {
        EXPECT_EQ(errorOf([&] { return connection->GetFile("/big", local.c_str()); }), 0u) << answer;
        EXPECT_TRUE(std::filesystem::remove(local));
      }
    }
    EXPECT_EQ(server.commandCount("SIZE"), 1) << answer;
  }
}

TEST_F(FtpToldSize, ARefusalForOneFileIsNoneForOthers) {
  ScriptedFtp server = servingUntold({{{"reply", "550 Not a plain file"}}});
  auto connection = connect(server);
  for (int file = 0; file < 2; ++file) {
    EXPECT_EQ(errorOf([&] { return connection->GetFile("/big", local.c_str(), false); }), 0u);
  }
  EXPECT_EQ(server.commandCount("SIZE"), 2);
}

TEST_F(FtpToldSize, AQuestionThatIsNeverSentHarmsNobody) {
  // The port for an active transfer is asked for with the question queued already.
  ScriptedFtp server = servingUntold({"normal"});
  auto connection = connect(server);
  const auto& control = connection->Control();
  control->request([&] { static_cast<void>(control->askSizeAlong("/big")); });
  EXPECT_TRUE(works(*connection)) << "the answer to it was taken ahead of this one's";
  EXPECT_EQ(server.commandCount("SIZE"), 1);
}

}  // namespace
}  // namespace internet_tests
