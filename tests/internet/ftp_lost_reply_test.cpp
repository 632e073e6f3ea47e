// SPDX-License-Identifier: MIT
// Transfers whose final reply never comes: the size decides whether all is there.
#include <algorithm>
#include <filesystem>

#include "tests/internet/FtpTransferTest.h"

namespace internet_tests {
namespace {

using testing_support::Pattern;

constexpr const char* kUntold = "150 Here it comes";  // tells no size

// SIZE is answered over the second connection alone: over the first it came too early.
const json kSizeLater = {{"on", "SIZE"}, {"connection", 1}, {"do", {{{"reply", "550 Not now"}}}}};

class FtpLostReply : public FtpTransferTest {
 protected:
  static ScriptedFtp serverWith(const std::vector<json>& rules, const json& features = {"epsv", "size"}) {
    return ScriptedFtp(json{{"tree", {{"/dir/big", {{"size", kBigSize}, {"seed", kSeed}}}}},
                            {"features", features},
                            {"rules", rules}});
  }
  static json transfer(const char* verb, json options, const json& then = json::array()) {
    json steps = json::array({{{"normal", std::move(options)}}});
    steps.insert(steps.end(), then.begin(), then.end());
    return {{"on", verb}, {"do", std::move(steps)}};
  }
  std::uint32_t get(CFtpConnection& connection) {
    return errorOf([&] { return connection.GetFile("/dir/big", local.c_str()); });
  }
  std::uint32_t put(CFtpConnection& connection) {
    Pattern(kSeed).writeFile(local, kBigSize);
    return errorOf([&] { return connection.PutFile(local.c_str(), "/up"); });
  }
  // The session hears nothing of the question, and of the end of its own connection when that is closed.
  void expectSilence(CFtpConnection& connection) {
    const Statuses statuses = session.takeStatuses();
    for (const std::uint32_t status : {20u, 50u, 51u}) {
      EXPECT_EQ(std::count(statuses.begin(), statuses.end(), status), 0) << status;
    }
    connection.Close();
    EXPECT_EQ(session.takeStatuses(), (Statuses{50, 51, 70}));
  }

  // There is no need to wait long for what never comes.
  void awaitFinal(const json& final) {
    internet::Timeouts timeouts = shortTimeouts();
    if (final.is_null()) timeouts.finalReply = timeouts.endOfData = std::chrono::milliseconds(200);
    session.SetTimeouts(timeouts);
  }

  void SetUp() override { awaitFinal(nullptr); }

  testing_support::ScratchFolder folder;
  const std::string local = folder.file("local");
};

// --- Downloads ---

// A complete read failed where only the final reply was missing.
TEST_F(FtpLostReply, ADownloadOfTheToldSizeIsComplete) {
  for (const json& lost : {json{{"final", nullptr}}, json{{"final", nullptr}, {"opening", kUntold}},
                           json{{"final", "421 Shutting down"}, {"opening", kUntold}}}) {
    awaitFinal(lost["final"]);
    ScriptedFtp server = serverWith({transfer("RETR", lost)});
    EXPECT_EQ(get(*connect(server)), 0u) << lost;
    EXPECT_TRUE(Pattern(kSeed).matchesFile(local, kBigSize));
    std::filesystem::remove(local);
    auto connection = connect(server);
    auto file = openToRead(*connection, "/dir/big");
    EXPECT_EQ(readPattern(*file), kBigSize);
    EXPECT_EQ(errorOf([&] { return file->Close(); }), 0u) << lost;
    EXPECT_EQ(server.connections().size(), 2u) << "nothing is asked over a fresh one";
    EXPECT_EQ(errorOf([&] { return connection->Remove("/x"); }), 12030u);
  }
}

TEST_F(FtpLostReply, OfADownloadOfUnknownSizeAFreshConnectionIsAsked) {
  ScriptedFtp server = serverWith({kSizeLater, transfer("RETR", {{"final", nullptr}, {"opening", kUntold}})});
  auto connection = connect(server);
  session.takeStatuses();
  EXPECT_EQ(get(*connection), 0u);
  EXPECT_TRUE(Pattern(kSeed).matchesFile(local, kBigSize));
  EXPECT_EQ(server.connections().size(), 2u);
  EXPECT_EQ(server.commandCount("SIZE"), 2);
  expectSilence(*connection);
}

TEST_F(FtpLostReply, RelativeNamesAreAskedForInTheDirectoryThatTheyBelongTo) {
  ScriptedFtp server =
      serverWith({kSizeLater, transfer("RETR", {{"final", nullptr}, {"opening", kUntold}}, {"reset"})});
  auto connection = connect(server);
  EXPECT_TRUE(connection->SetCurrentDirectory("/dir"));
  EXPECT_TRUE(connection->GetFile("big", local.c_str()));
  EXPECT_TRUE(Pattern(kSeed).matchesFile(local, kBigSize));
  EXPECT_EQ(server.connections().size(), 2u);
}

TEST_F(FtpLostReply, AShortDownloadIsAFailureHoweverItsSizeIsLearned) {
  const json cut = {{"final", nullptr}, {"opening", kUntold}, {"close_after", 1'000'000}};
  ScriptedFtp told = serverWith({transfer("RETR", cut)});
  EXPECT_EQ(get(*connect(told)), 12030u);
  EXPECT_FALSE(std::filesystem::exists(local));
  ScriptedFtp asked = serverWith({kSizeLater, transfer("RETR", cut)});
  EXPECT_EQ(get(*connect(asked)), 12002u);
  EXPECT_FALSE(std::filesystem::exists(local));
  EXPECT_EQ(asked.commandCount("SIZE"), 2);
}

TEST_F(FtpLostReply, ADownloadOfAFileThatHasNoSizeIsAFailure) {
  for (const json& final : {json(nullptr), json("421 Shutting down")}) {
    awaitFinal(final);
    ScriptedFtp server =
        serverWith({transfer("RETR", {{"final", final}, {"opening", kUntold}})}, json::array());
    const std::uint32_t error = final.is_null() ? 12002 : 12030;
    auto connection = connect(server);
    EXPECT_EQ(get(*connection), error);
    EXPECT_FALSE(std::filesystem::exists(local));
    auto file = openToRead(*(connection = connect(server)), "/dir/big");
    EXPECT_EQ(readPattern(*file), kBigSize) << "the end of the data is told all the same";
    EXPECT_EQ(errorOf([&] { return file->Close(); }), error);
    EXPECT_EQ(connection->LastServerText(), final.is_null() ? "" : "421 Shutting down");
  }
}

TEST_F(FtpLostReply, SizesThatDifferByFourGibibytesAreNotTheSame) {
  const std::string more = std::to_string((std::uint64_t{1} << 32) + kBigSize);
  const json size = {{"on", "SIZE"}, {"do", {{{"reply", "213 " + more}}}}};
  ScriptedFtp announcing = serverWith({transfer("RETR", {{"opening", "150 Opening (" + more + " bytes)"}})});
  EXPECT_EQ(get(*connect(announcing)), 12030u);
  ScriptedFtp telling = serverWith({size, transfer("RETR", {{"opening", kUntold}})});
  EXPECT_EQ(get(*connect(telling)), 12030u);
  ScriptedFtp asked =
      serverWith({kSizeLater, size, transfer("RETR", {{"final", nullptr}, {"opening", kUntold}})});
  EXPECT_EQ(get(*connect(asked)), 12002u);
  EXPECT_EQ(asked.commandCount("SIZE"), 2);
  EXPECT_FALSE(std::filesystem::exists(local));
}

// --- Uploads ---

// A whole upload failed where the final reply was lost, or where the server took its end for a break.
TEST_F(FtpLostReply, AnUploadThatHasItsSizeIsComplete) {
  const std::pair<json, json> endings[] = {{nullptr, json::array()},
                                           {nullptr, {"reset"}},
                                           {"426 Aborted", json::array()},
                                           {"421 Shutting down", json::array()}};
  for (const auto& [final, then] : endings) {
    awaitFinal(then.empty() ? final : json("reset"));
    ScriptedFtp server = serverWith({transfer("STOR", {{"final", final}}, then)});
    EXPECT_EQ(put(*connect(server)), 0u) << final << then;
    EXPECT_TRUE(server.matches("/up", kSeed, kBigSize));
    EXPECT_EQ(server.connections().size(), 2u) << "one for the question";
    auto connection = connect(server);
    auto file = openToWrite(*connection, "/up");
    writePattern(*file, 5000);
    EXPECT_EQ(errorOf([&] { return file->Close(); }), 0u) << final << then;
  }
}

TEST_F(FtpLostReply, TheQuestionAfterAnUploadIsSilent) {
  ScriptedFtp server = serverWith({transfer("STOR", {{"final", nullptr}})});
  auto connection = connect(server);
  session.takeStatuses();
  EXPECT_EQ(put(*connection), 0u);
  expectSilence(*connection);
}

TEST_F(FtpLostReply, AnUploadOfAnotherSizeIsAFailure) {
  for (const auto& [final, error] :
       {std::pair(json(nullptr), 12002u), std::pair(json("426 Aborted"), 12030u)}) {
    awaitFinal(final);
    for (const char* size : {"213 2999999", "213 3000001", "550 None", "213 0"}) {
      ScriptedFtp server =
          serverWith({transfer("STOR", {{"final", final}}), {{"on", "SIZE"}, {"do", {{{"reply", size}}}}}});
      auto connection = connect(server);
      EXPECT_EQ(put(*connection), error) << size;
      EXPECT_EQ(server.commandCount("SIZE"), 1) << size;
      EXPECT_EQ(connection->LastServerText(), final.is_null() ? "" : "426 Aborted");
    }
  }
}

TEST_F(FtpLostReply, AnUploadThatTheServerRefusesAtItsEndIsAFailureWhateverItsSize) {
  awaitFinal("451");
  for (const char* final : {"451 Write error", "452 Full", "552 Full", "550 No"}) {
    ScriptedFtp server = serverWith({transfer("STOR", {{"final", final}})});
    auto connection = connect(server);
    EXPECT_EQ(put(*connection), 12003u) << final;
    EXPECT_EQ(server.commandCount("SIZE"), 0) << final;
  }
}

// The size was asked for while the server was still writing what it had read.
TEST_F(FtpLostReply, TheSizeIsAskedOnceTheServerHasReadTheWholeUpload) {
  internet::Timeouts patient;
  patient.dataError = std::chrono::minutes(10);
  session.SetTimeouts(patient);
  ScriptedFtp server = serverWith({{{"on", "STOR"},
                                    {"do",
                                     {{{"reply", "150 Send"}},
                                      {{"gate", "sent"}},
                                      {{"reply", "426 Aborted"}},
                                      {{"delay_ms", 300}},
                                      {{"normal", {{"opening", nullptr}, {"final", nullptr}}}}}}}});
  auto connection = connect(server);
  auto file = openToWrite(*connection, "/up");
  file->Write("abc", 3);
  session.onStatus = [&server](std::uint32_t status) {
    if (status == internet::kStatusReceivingResponse) server.release("sent");
  };
  EXPECT_EQ(errorOf([&] { return file->Close(); }), 0u);
  EXPECT_EQ(server.content("/up"), "abc");
  session.onStatus = nullptr;
}

TEST_F(FtpLostReply, WhoHasClosedTheConnectionAsksNothing) {
  ScriptedFtp server = serverWith({});
  auto connection = connect(server);
  auto file = openToWrite(*connection, "/up");
  file->Write("abc", 3);
  connection->Close();
  EXPECT_EQ(errorOf([&] { return file->Close(); }), 12030u);
  EXPECT_EQ(server.connections().size(), 1u);
}

}  // namespace
}  // namespace internet_tests
