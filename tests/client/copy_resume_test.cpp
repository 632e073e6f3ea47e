// SPDX-License-Identifier: MIT
// Copies from a server over connections that break. Each attempt began at the file's start, and one that
// broke at the same place each time never came to the end.
#include <gmock/gmock.h>

#include "framework/internet/net/InternetErrors.h"
#include "framework/platform/last_error.h"
#include "tests/client/BrokenLines.h"
#include "tests/client/ContentTest.h"
#include "tests/client/ProgressLog.h"
#include "tests/client/SlotHost.h"

namespace {

using broken_lines::broken;
using broken_lines::bytesMoved;
using broken_lines::json;
using broken_lines::restarts;
using broken_lines::rule;
using testing::ElementsAre;
using testing::IsEmpty;
using testing_support::Pattern;

constexpr std::size_t kSize = 100'000;

fixture::ScriptedFtp breaking(const std::vector<json>& rules) { return broken_lines::serving(rules, kSize); }

// To the local disk (0), or to the server through the temporary copy (1).
class CopyResume : public ContentTest, public testing::WithParamInterface<bool> {
 protected:
  const bool toServer = GetParam();
  const std::string target = toServer ? "/b" : localName(local);
  const ProgressLog progress;

  QXBool copy(std::uint32_t retries) {
    return client.FTPCpyFile("/a", target.c_str(), &ProgressLog::note, retries, 0, 0);
  }
  void expectWhole(const fixture::ScriptedFtp& server) const {
    EXPECT_TRUE(toServer ? server.matches("/b", 9, kSize) : Pattern(9).matchesFile(local, kSize));
    EXPECT_EQ(leftInTemporary(), Names{});
  }
};

TEST_P(CopyResume, GoesOnWhereItHasBrokenOff) {
  const auto server = breaking({broken("RETR", {1, 2, 3})});
  loginAt(server);
  EXPECT_EQ(copy(3), 1);
  expectWhole(server);
  EXPECT_THAT(restarts(server), ElementsAre("REST 20480", "REST 40960", "REST 61440"));
  EXPECT_EQ(bytesMoved(server), toServer ? 2 * kSize : kSize);
}

TEST_P(CopyResume, BeginsAnewWhenTheSourceHasChanged) {
  for (const char* verb : {"MDTM", "SIZE"}) {
    SCOPED_TRACE(verb);
    const auto server = breaking(
        {broken("RETR", 1), {{"on", verb}, {"after", 1}, {"do", {{{"reply", "213 20010203040506"}}}}}});
    loginAt(server);
    EXPECT_EQ(copy(1), 1);
    expectWhole(server);
    EXPECT_THAT(restarts(server), IsEmpty());
  }
}

TEST_P(CopyResume, BeginsAnewAtAServerThatDoesNotRestart) {
  const auto server = breaking({broken("RETR", 1), {{"on", "REST"}, {"do", {{{"reply", "502 No"}}}}}});
  loginAt(server);
  EXPECT_EQ(copy(1), 1);
  expectWhole(server);
}

TEST_P(CopyResume, BeginsAnewAtAServerThatRestartsInWordsOnly) {
  const auto server = breaking({broken("RETR", 1), {{"on", "REST"}, {"do", {{{"reply", "350 Yes"}}}}}});
  loginAt(server);
  EXPECT_EQ(copy(2), 1);
  expectWhole(server);
}

TEST_P(CopyResume, AnAttemptThatMovesNothingIsNotFollowedByOneThatGoesOn) {
  const auto server = breaking({broken("RETR", 1), broken("RETR", 2, 0)});
  loginAt(server);
  EXPECT_EQ(copy(2), 1);
  expectWhole(server);
  EXPECT_THAT(restarts(server), ElementsAre("REST 20480"));
}

TEST_P(CopyResume, AfterTheLastAttemptNoTemporaryPartIsLeft) {
  const auto server = breaking({broken("RETR", {1, 2})});
  loginAt(server);
  EXPECT_EQ(copy(1), 0);
  EXPECT_EQ(leftInTemporary(), Names{});
  EXPECT_FALSE(server.exists("/b"));
}

TEST_P(CopyResume, ACopyThatTheHostStopsBeginsAtTheStartTheNextTime) {
  const auto server = breaking({broken("RETR", {1})});
  loginAt(server);
  ProgressLog::stop() = []() -> QXBool { return ProgressLog::calls().size() == 7; };
  EXPECT_EQ(copy(1), 1);
  EXPECT_THAT(restarts(server), ElementsAre("REST 20480"));
  EXPECT_EQ(leftInTemporary(), Names{});
  EXPECT_EQ(copy(1), 1);
  expectWhole(server);
  EXPECT_THAT(restarts(server), ElementsAre("REST 20480"));
}

TEST_P(CopyResume, TheFiguresGoOnWhereTheCopyDoes) {
  const auto server = breaking({broken("RETR", {2})});
  loginAt(server);
  EXPECT_EQ(copy(1), 1);
  const auto whole = progress.percentages();
  ProgressLog::clear();
  EXPECT_EQ(copy(1), 1);
  EXPECT_EQ(progress.percentages(), whole) << "no figure is told twice";
  EXPECT_EQ(progressIn(client.m_Transfer), (Progress{1, kSize, kSize}));
}

TEST_P(CopyResume, WithoutRetriesNothingIsAskedForThem) {
  const auto server = breaking({});
  loginAt(server);
  EXPECT_EQ(copy(0), 1);
  EXPECT_EQ(server.commandCount("MDTM"), 0);
}

// A part of which somebody has taken something is no part.
TEST_P(CopyResume, BeginsAnewWhenItsPartIsNotWhatItWas) {
  const auto server = breaking({broken("RETR", 1)});
  SlotHost host;
  host.FTPSetLogin("127.0.0.1", "user", "secret", server.port(), 1);
  const auto part = toServer ? temporaryFile("b") : std::filesystem::path(local);
  host.size = [&, asked = 0]() mutable {
    if (++asked == 2) std::filesystem::resize_file(part, 10'000);
    return std::uint32_t{kSize};
  };
  EXPECT_EQ(host.FTPCpyFile("/a", target.c_str(), nullptr, 1, 0, 0), 1);
  expectWhole(server);
  EXPECT_THAT(restarts(server), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Target, CopyResume, testing::Bool(),
                         [](const auto& instance) { return instance.param ? "Server" : "Local"; });

// What was fetched may be older than the server's file by then.
TEST(CopyResumeSlots, AfterAnUploadThatBrokeTheSourceIsFetchedAnew) {
  const auto server = breaking({});
  SlotHost host;
  host.FTPSetLogin("127.0.0.1", "user", "secret", server.port(), 1);
  host.upload = [](const std::string&, const std::string&) {
    platform::setLastError(internet::kConnectionReset);
    return QXBool{0};
  };
  EXPECT_EQ(host.FTPCpyFile("/a", "/b", nullptr, 1, 0, 0), 0);
  EXPECT_EQ(bytesMoved(server), 2 * kSize);
}

class CopyResumeLocal : public ContentTest {};

// The local file was emptied before the server had said where it begins.
TEST_F(CopyResumeLocal, ThePartStaysUntilTheServerHasAgreed) {
  const auto server = breaking({broken("RETR", 1), rule("RETR", {{"reply", "550 Gone"}}, 2)});
  loginAt(server);
  EXPECT_EQ(client.FTPCpyFile("/a", localName(local).c_str(), nullptr, 1, 0, 0), 0);
  EXPECT_TRUE(Pattern(9).matchesFile(local, 20'480));
}

}  // namespace
