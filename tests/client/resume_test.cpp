// SPDX-License-Identifier: MIT
// Whole files over connections that break: an attempt goes on where the one before it has ended, or begins
// anew where that would not give the right content.
#include <gmock/gmock.h>

#include "tests/client/BrokenLines.h"
#include "tests/client/SlotHost.h"
#include "tests/client/TransferTest.h"

namespace {

using broken_lines::broken;
using broken_lines::bytesMoved;
using broken_lines::json;
using broken_lines::restarts;
using broken_lines::rule;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing_support::Pattern;

constexpr std::size_t kSize = 100'000;

fixture::ScriptedFtp serving(const std::vector<json>& rules, std::size_t size = kSize) {
  return broken_lines::serving(rules, size);
}

class Resume : public TransferTest {
 protected:
  void expectLocalIsWhole() const { EXPECT_TRUE(Pattern(9).matchesFile(local, kSize)); }
  void expectRemoteIsWhole(const fixture::ScriptedFtp& server) const {
    EXPECT_TRUE(server.matches("/a", 6, kSize));
  }
};

TEST_F(Resume, ADownloadGoesOnWhereItHasBrokenOff) {
  const auto server = serving({broken("RETR", {1, 2, 3})});
  loginAt(server);
  EXPECT_EQ(download("/a", 3), 1);
  expectLocalIsWhole();
  EXPECT_THAT(restarts(server), ElementsAre("REST 20480", "REST 40960", "REST 61440"));
}

TEST_F(Resume, ResetConnectionsDoNotHarmTheContentOfADownload) {
  const auto server = serving({rule("RETR", {{"normal", {{"reset_after", 30'000}}}}, {1, 2, 3})});
  loginAt(server);
  EXPECT_EQ(download("/a", 5), 1);
  expectLocalIsWhole();
}

TEST_F(Resume, ADownloadBeginsAnewWhenTheFileHasChanged) {
  for (const char* verb : {"MDTM", "SIZE"}) {
    SCOPED_TRACE(verb);
    std::filesystem::remove(local);
    const auto server = serving(
        {broken("RETR", 1), {{"on", verb}, {"connection", 3}, {"do", {{{"reply", "213 20010203040506"}}}}}});
    loginAt(server);
    EXPECT_EQ(download("/a", 1), 1);
    expectLocalIsWhole();
    EXPECT_THAT(restarts(server), IsEmpty());
  }
}

TEST_F(Resume, ADownloadBeginsAnewAtAServerThatTellsNoTimes) {
  const auto server = serving({broken("RETR", 1), {{"on", "MDTM"}, {"do", {{{"reply", "500 What?"}}}}}});
  loginAt(server);
  EXPECT_EQ(download("/a", 1), 1);
  expectLocalIsWhole();
  EXPECT_THAT(restarts(server), IsEmpty());
}

TEST_F(Resume, ADownloadBeginsAnewAtAServerThatDoesNotRestart) {
  const auto server = serving({broken("RETR", 1), {{"on", "REST"}, {"do", {{{"reply", "502 No"}}}}}});
  loginAt(server);
  EXPECT_EQ(download("/a", 1), 1);
  expectLocalIsWhole();
  EXPECT_THAT(restarts(server), ElementsAre("REST 20480"));
}

TEST_F(Resume, AnAttemptThatMovesNothingIsNotFollowedByOneThatGoesOn) {
  for (const json& second : {broken("RETR", 2, 0), rule("RETR", "reset", 2)}) {
    const auto server = serving({broken("RETR", 1), second});
    loginAt(server);
    EXPECT_EQ(download("/a", 2), 1);
    expectLocalIsWhole();
    EXPECT_THAT(restarts(server), ElementsAre("REST 20480"));
    std::filesystem::remove(local);
  }
}

TEST_F(Resume, AnUploadThatMovesNothingIsNotFollowedByOneThatGoesOn) {
  const auto server = serving({broken("STOR", 1), rule("STOR", "reset", 2)});
  loginAt(server);
  Pattern(6).writeFile(local, kSize);
  EXPECT_EQ(upload("/a", 2), 1);
  expectRemoteIsWhole(server);
  EXPECT_THAT(restarts(server), ElementsAre("REST 20480"));
}

// A break before the file is asked for says nothing of the part: the attempt behind it began at the start.
TEST_F(Resume, AnAttemptThatNeverAskedForTheFileLeavesThePartAsItIs) {
  for (const char* verb : {"RETR", "STOR"}) {
    SCOPED_TRACE(verb);
    for (const char* breaks : {"USER", "SIZE", "EPSV", "REST"}) {
      SCOPED_TRACE(breaks);
      const int before = breaks == std::string_view("REST") ? 0 : 1;
      const auto server =
          serving({broken(verb, 1), {{"on", breaks}, {"after", before}, {"first", 1}, {"do", {"reset"}}}});
      loginAt(server);
      std::filesystem::remove(local);
      if (verb == std::string_view("STOR")) Pattern(6).writeFile(local, kSize);
      EXPECT_EQ(verb == std::string_view("STOR") ? upload("/a", 3) : download("/a", 3), 1);
      EXPECT_THAT(restarts(server), Contains("REST 20480"));
      EXPECT_EQ(server.commandCount(verb), 2);
    }
  }
}

// What came behind a position that the server had taken and not kept to was put behind the part.
TEST_F(Resume, ADownloadBeginsAnewAtAServerThatRestartsInWordsOnly) {
  const auto server = serving({broken("RETR", 1), {{"on", "REST"}, {"do", {{{"reply", "350 Restarting"}}}}}});
  loginAt(server);
  EXPECT_EQ(download("/a", 2), 1);
  expectLocalIsWhole();
  EXPECT_THAT(restarts(server), ElementsAre("REST 20480"));
}

// The rest that such a server stored from the start passed for the whole.
TEST_F(Resume, AnUploadBeginsAnewAtAServerThatRestartsInWordsOnly) {
  const auto server = serving({broken("STOR", 1), {{"on", "REST"}, {"do", {{{"reply", "350 Restarting"}}}}}});
  loginAt(server);
  Pattern(6).writeFile(local, kSize);
  EXPECT_EQ(upload("/a", 1), 1);
  expectRemoteIsWhole(server);
  EXPECT_THAT(restarts(server), ElementsAre("REST 20480", "REST 0"));
}

TEST_F(Resume, WithoutRetriesNothingIsAskedForThem) {
  const auto server = serving({});
  loginAt(server);
  EXPECT_EQ(download("/a", 0), 1);
  EXPECT_EQ(server.commandCount("MDTM"), 0);
}

TEST_F(Resume, APartIsDeletedAfterTheLastAttempt) {
  const auto server = serving({broken("RETR", {1, 2})});
  loginAt(server);
  EXPECT_EQ(download("/a", 1), 0);
  EXPECT_FALSE(exists());
}

// A size that cannot be asked for counts as 0, with which an existing local file counts as the download.
TEST_F(Resume, APartIsNeverTakenForTheFileOfAServerThatIsGone) {
  const auto server = serving({broken("RETR", 1), {{"on", "CONNECT"}, {"after", 1}, {"do", {"close"}}}});
  loginAt(server);
  EXPECT_EQ(download("/a", 2), 0);
  EXPECT_FALSE(exists());
}

TEST_F(Resume, AHostsOwnFunctionFindsNoPart) {
  const auto server = serving({broken("RETR", 1)});
  SlotHost host;
  host.FTPSetLogin("127.0.0.1", "user", "secret", server.port(), 1);
  bool wasThere = false;
  host.download = [&](const std::string&, const std::string&) {
    wasThere = exists();
    return QXBool{1};
  };
  EXPECT_EQ(host.TQXIP::FTPDownloadFile("/a", local.c_str(), 1), 1);
  EXPECT_FALSE(wasThere);
}

TEST_F(Resume, AnUploadGoesOnWhereItHasBrokenOff) {
  const auto server = serving({broken("STOR", {1, 2, 3})});
  loginAt(server);
  Pattern(6).writeFile(local, kSize);
  EXPECT_EQ(upload("/a", 3), 1);
  expectRemoteIsWhole(server);
  EXPECT_THAT(restarts(server), ElementsAre("REST 20480", "REST 40960", "REST 61440"));
}

TEST_F(Resume, AnUploadBeginsAnewWhereTheServersFileIsStillTheOldOne) {
  const auto server = serving({broken("STOR", 1), {{"on", "SIZE"}, {"do", {{{"reply", "213 20480"}}}}}});
  loginAt(server);
  Pattern(6).writeFile(local, kSize);
  EXPECT_EQ(upload("/a", 1), 1);
  expectRemoteIsWhole(server);
  EXPECT_THAT(restarts(server), IsEmpty());
}

TEST_F(Resume, AnUploadBeginsAnewWhereTheServerHasMoreThanWasSent) {
  const auto server =
      serving({broken("STOR", 1), {{"on", "SIZE"}, {"after", 1}, {"do", {{{"reply", "213 900000"}}}}}});
  loginAt(server);
  Pattern(6).writeFile(local, kSize);
  EXPECT_EQ(upload("/a", 1), 1);
  expectRemoteIsWhole(server);
  EXPECT_THAT(restarts(server), IsEmpty());
}

TEST_F(Resume, AnUploadBeginsAnewAtAServerThatStoresFromTheStartOnly) {
  const auto server = serving({broken("STOR", 1), rule("STOR", {{"reply", "451 Restart not permitted"}}, 2)});
  loginAt(server);
  Pattern(6).writeFile(local, kSize);
  EXPECT_EQ(upload("/a", 1), 1);
  expectRemoteIsWhole(server);
  EXPECT_THAT(restarts(server), ElementsAre("REST 20480", "REST 0"));
}

TEST_F(Resume, ALineThatBreaksAllTheTimeMovesLittleMoreThanTheFile) {
  constexpr std::size_t kLarge = std::size_t{16} << 20;
  constexpr std::size_t kPiece = std::size_t{3} << 20;
  const auto server =
      serving({broken("RETR", {1, 2, 3, 4, 5}, kPiece), broken("STOR", {1, 2, 3, 4, 5}, kPiece)}, kLarge);
  loginAt(server);
  EXPECT_EQ(download("/a", 20), 1);
  EXPECT_TRUE(Pattern(9).matchesFile(local, kLarge));
  const std::uint64_t down = bytesMoved(server);
  EXPECT_LE(down, kLarge * 13 / 10);
  EXPECT_EQ(upload("/b", 20), 1);
  EXPECT_TRUE(server.matches("/b", 9, kLarge));
  EXPECT_LE(bytesMoved(server) - down, kLarge * 13 / 10);
}

}  // namespace
