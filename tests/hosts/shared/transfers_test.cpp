// SPDX-License-Identifier: MIT
#include "hosts/shared/Transfers.h"

#include "hosts/shared/LocalFiles.h"
#include "tests/hosts/shared/AtServer.h"
#include "tests/support/Pattern.h"

namespace hosts {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

constexpr char kFilesScript[] = R"({"tree": {
  "/pub/a.txt": {"text": "hello", "mtime": "20240229123456"}, "/pub/large": {"size": 300000, "seed": 5},
  "/pub/empty": ""}})";

constexpr std::chrono::sys_seconds kTime =
    std::chrono::sys_days{std::chrono::year{2024} / 2 / 29} + std::chrono::seconds(45296);

class Transfers : public AtServer {
 protected:
  Transfers() : AtServer(kFilesScript) {}

  std::ptrdiff_t filesHere() const {
    return std::distance(fs::directory_iterator(scratch.path()), fs::directory_iterator());
  }

  const fs::path local = scratch.path() / "local";
};

TEST_F(Transfers, ADownloadHasTheContentAndTheTimeOfTheServersFile) {
  const Outcome outcome = download(client, {"/pub/a.txt", 5, Moment{kTime}}, local);
  ASSERT_TRUE(outcome) << outcome.text;
  EXPECT_EQ(contentOf(local), "hello");
  std::error_code error;
  EXPECT_EQ(factsOf(local, Links::told, error).changed, kTime);
  EXPECT_EQ(filesHere(), 1);
}

TEST_F(Transfers, AnEmptyFileComes) {
  ASSERT_TRUE(download(client, {"/pub/empty", 0, {}}, local));
  EXPECT_EQ(contentOf(local), "");
  EXPECT_TRUE(fs::exists(local));
}

TEST_F(Transfers, ADownloadThatFailsLeavesTheOldFileAndNothingElse) {
  write(local, "old");
  const Outcome outcome = download(client, {"/pub/none", {}, {}}, local);
  EXPECT_EQ(outcome.state, Outcome::State::failed);
  EXPECT_THAT(outcome.text, HasSubstr("is as it was"));
  EXPECT_EQ(contentOf(local), "old");
  EXPECT_EQ(filesHere(), 1);
}

TEST_F(Transfers, ADownloadThatIsCancelledLeavesNothing) {
  server.reconfigure(
      R"({"rules": [{"on": "RETR", "do": [{"normal": {"stall_after": 100000, "gate": "half"}}]}]})");
  bool isSeen = false;
  polled = [&](const qx::Progress& progress) {
    if (progress.transferred > 0) isSeen = fs::exists(local);
    return progress.transferred > 0 ? qx::Poll::cancel : qx::Poll::goOn;
  };
  const Outcome outcome = download(client, {"/pub/large", 300000, {}}, local);
  EXPECT_EQ(outcome.state, Outcome::State::cancelled);
  EXPECT_THAT(outcome.text, HasSubstr("cancelled; nothing is left here"));
  EXPECT_EQ(filesHere(), 0);
  EXPECT_FALSE(isSeen) << "a name stands for a whole file";
}

TEST_F(Transfers, AFileThatIsShorterThanTheServerSaysIsNoFile) {
  server.reconfigure(
      R"({"rules": [{"on": "RETR", "do": [{"normal": {"close_after": 1000, "final": "226 Done"}}]}]})");
  const Outcome outcome = download(client, {"/pub/large", 300000, {}}, local);
  EXPECT_EQ(outcome.state, Outcome::State::failed);
  EXPECT_EQ(filesHere(), 0);
}

TEST_F(Transfers, ASizeThatOnlyTheListingTellsWrongDoesNoHarm) {
  EXPECT_TRUE(download(client, {"/pub/a.txt", 512, {}}, local));
  EXPECT_EQ(contentOf(local), "hello");
}

TEST_F(Transfers, AFileOfWhichTheServerTellsAnotherSizeIsNoFile) {
  server.reconfigure(R"({"rules": [{"on": "SIZE", "do": [{"reply": "213 512"}]}, {"on": "MLST", "do": [
    {"reply": ["250-Listing", " type=file;size=512; /pub/a.txt", "250 End"]}]}]})");
  const Outcome outcome = download(client, {"/pub/a.txt", 512, {}}, local);
  EXPECT_EQ(outcome.state, Outcome::State::failed);
  EXPECT_NE(outcome.text, "");
  EXPECT_EQ(filesHere(), 0);
}

// The library counts sizes modulo 2^32: of such a file five bytes are all to it.
TEST_F(Transfers, WhatIsShorterByFourGibibytesIsNoFile) {
  server.reconfigure(R"({"rules": [{"on": "SIZE", "do": [{"reply": "213 4294967301"}]}, {"on": "MLST", "do": [
    {"reply": ["250-Listing", " type=file;size=4294967301; /pub/a.txt", "250 End"]}]}]})");
  const Outcome outcome = download(client, {"/pub/a.txt", 4294967301, {}}, local);
  EXPECT_EQ(outcome.state, Outcome::State::failed);
  EXPECT_EQ(filesHere(), 0);
}

TEST_F(Transfers, AFolderInTheWayIsToldOf) {
  fs::create_directory(local);
  const Outcome outcome = download(client, {"/pub/a.txt", 5, {}}, local);
  EXPECT_EQ(outcome.state, Outcome::State::failed);
  EXPECT_EQ(filesHere(), 1);
  EXPECT_TRUE(fs::is_directory(local));
}

TEST_F(Transfers, AnUploadIsDoneWhenTheServerHasIt) {
  write(local, "content");
  const Outcome outcome = upload(client, local, "/pub/new");
  ASSERT_TRUE(outcome) << outcome.text;
  EXPECT_EQ(server.content("/pub/new"), "content");
}

// The library answers 1 when a server refuses an upload in the middle.
TEST_F(Transfers, AnUploadThatTheServerHasNotGotFails) {
  server.reconfigure(
      R"({"rules": [{"on": "STOR", "do": [{"normal": {"close_after": 1000, "final": "552 Disk full"}}]}]})");
  write(local, std::string(5000, 'x'));
  const Outcome outcome = upload(client, local, "/pub/new");
  EXPECT_EQ(outcome.state, Outcome::State::failed);
  EXPECT_THAT(outcome.text, HasSubstr("the server has 1000 bytes as /pub/new"));
}

TEST_F(Transfers, AnUploadThatIsCancelledTellsWhatMayBeLeft) {
  server.reconfigure(
      R"({"rules": [{"on": "STOR", "do": [{"normal": {"stall_after": 1000, "gate": "half"}}]}]})");
  write(local, std::string(500000, 'x'));
  polled = [this](const qx::Progress&) {
    return server.commandCount("STOR") > 0 ? qx::Poll::cancel : qx::Poll::goOn;
  };
  const Outcome outcome = upload(client, local, "/pub/new");
  EXPECT_EQ(outcome.state, Outcome::State::cancelled);
  EXPECT_THAT(outcome.text, HasSubstr("a part of it may be on the server as /pub/new"));
}

TEST_F(Transfers, AMissingFileIsNotSent) {
  const Outcome outcome = upload(client, local, "/pub/new");
  EXPECT_EQ(outcome.state, Outcome::State::failed);
  EXPECT_THAT(outcome.text, HasSubstr("nothing was sent"));
  EXPECT_TRUE(server.connections().empty());
}

TEST_F(Transfers, AFolderIsNotSent) {
  const Outcome outcome = upload(client, scratch.path(), "/pub/new");
  EXPECT_EQ(outcome.state, Outcome::State::failed);
  EXPECT_THAT(outcome.text, HasSubstr("nothing was sent"));
  EXPECT_EQ(server.commandCount("STOR"), 0);
}

TEST_F(Transfers, AServerThatCannotBeReachedIsToldApart) {
  const fixture::RefusedPort closed;
  ASSERT_TRUE(client.setLogin({.host = "127.0.0.1", .port = closed.port()}));
  write(local, "content");
  EXPECT_TRUE(upload(client, local, "/pub/new").isServerLost);
  EXPECT_TRUE(download(client, {"/pub/a.txt", 5, {}}, scratch.path() / "b").isServerLost);
  EXPECT_FALSE(download(client, {"/pub/a.txt", 5, {}}, scratch.path() / "b").isDiskFull);
}

}  // namespace
}  // namespace hosts
