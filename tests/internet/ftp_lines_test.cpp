// SPDX-License-Identifier: MIT
// Command lines that travel together, and servers that cannot cope with them: over a network in memory, where
// a packet is what one call has sent and time is counted exactly.
#include <algorithm>

#include "framework/internet/ftp/FtpControl.h"
#include "framework/internet/net/Failure.h"
#include "framework/platform/stop_token.h"
#include "tests/internet/FtpLinesTest.h"

namespace internet_tests {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using testing_support::MemoryFtp;
using testing_support::MemoryLink;
using Lines = std::vector<std::string>;
using Packets = MemoryFtp::Packets;

// It was noticed only when the time for the next reply had run out.
TEST_F(FtpLines, WhatIsNoReplyBehindTheReplyToALineSentAlongIsNoticedAtOnce) {
  for (const char* line : {"hello", "620 What", "999 What", "2x0 What"}) {
    FileServer far;
    far.server.answers["TYPE"] = std::string("200 Binary\r\n") + line + "\r\n";
    auto connection = login();
    const auto before = far.network.now();
    EXPECT_EQ(thrownBy([&] { openToRead(*connection, "/f"); }).error, 12152u) << line;
    EXPECT_EQ(far.network.now(), before) << line;
    EXPECT_EQ(errorOf([&] { return connection->Remove("/f"); }), 12030u) << line;
  }
}

// --- The way back from a directory ---

// A server that takes its time for each answer to CWD.
struct SlowVisits : FileServer {
  SlowVisits() {
    server.answers["CWD"] = "";
    server.onCommand = [this](const std::string& line) {
      behind(line);
      if (!line.starts_with("CWD")) return;
      mostUnanswered = std::max(mostUnanswered, ++unanswered_);
      network.later(seconds(1), [this, line] { answer(line); });
    };
  }

  std::string refused;
  int mostUnanswered = 0;

 private:
  void answer(std::string_view line) {
    --unanswered_;
    server.control->toClient += line == "CWD " + refused ? "550 No\r\n" : "250 Fine\r\n";
  }

  int unanswered_ = 0;
};

class FtpWayBack : public FtpLines {
 protected:
  void logIn() {
    m_connection = loginWithOptions();
    EXPECT_TRUE(finds(*m_connection)) << "and takes two lines in a packet";
  }
  void visit(const std::vector<std::string>& directories) {
    const std::shared_ptr<internet::FtpControl> control = m_connection->Control();
    control->request([&] {
      for (const std::string& directory : directories) {
        internet::FtpControl::DirectoryVisit visit(*control);
        EXPECT_TRUE(visit.enter(directory).completed());
      }
    });
  }
  [[nodiscard]] std::uint32_t removalError() {
    return errorOf([&] { return m_connection->Remove("/f"); });
  }

  SlowVisits m_far;
  std::unique_ptr<CFtpConnection> m_connection;
};

TEST_F(FtpWayBack, TheNextDirectoryDoesNotWaitForIt) {
  logIn();
  visit({"/pub", "/pub"});
  EXPECT_EQ(m_far.mostUnanswered, 2);
  EXPECT_TRUE(works(*m_connection));
}

TEST_F(FtpWayBack, ARelativeNameWaitsForIt) {
  logIn();
  visit({"/pub", "pub"});
  EXPECT_EQ(m_far.mostUnanswered, 1);
}

TEST_F(FtpWayBack, AServerOfSingleLinesIsWaitedFor) {
  m_far.server.packets = Packets::cutToOneLine;
  logIn();
  visit({"/pub", "/pub"});
  EXPECT_EQ(m_far.mostUnanswered, 1);
}

TEST_F(FtpWayBack, NothingIsDeletedBeforeItsAnswer) {
  logIn();
  m_far.refused = "/";
  visit({"/pub"});
  EXPECT_EQ(removalError(), 12030u);
  EXPECT_EQ(m_far.count("DELE"), 0);
}

TEST_F(FtpWayBack, WhatHasGoneOutBehindOneThatIsRefusedFails) {
  logIn();
  m_far.refused = "/";
  EXPECT_THROW(visit({"/pub", "/pub"}), internet::Failure);
  EXPECT_EQ(removalError(), 12030u);
}

// --- Servers that take one line per packet ---

// Such a server had no transfer: each attempt waited for 30 seconds.
TEST_F(FtpLines, AServerThatTakesOneLinePerPacketCostsItsFirstTransferTwoSecondsAndTheNextOnesNothing) {
  for (const bool passive : {true, false}) {
    internet::forgetCachedTraits();
    FileServer far(Packets::cutToOneLine);
    EXPECT_EQ(transferTime(far, passive), seconds(2)) << passive;
    EXPECT_EQ(far.server.crowdedPackets, 1u);
    EXPECT_EQ(transferTime(far, passive), seconds(0)) << passive;
    EXPECT_EQ(far.server.crowdedPackets, 1u) << "remembered";
  }
}

TEST_F(FtpLines, AServerThatRefusesAPacketOfSeveralLinesAsAWholeIsNoticedAtOnce) {
  for (const bool passive : {true, false}) {
    internet::forgetCachedTraits();
    FileServer far(Packets::refused);
    EXPECT_EQ(transferTime(far, passive), seconds(0)) << passive;
    EXPECT_EQ(transferTime(far, passive), seconds(0)) << passive;
    EXPECT_EQ(far.server.crowdedPackets, 1u) << "remembered";
  }
}

TEST_F(FtpLines, AGoodServerGetsItsLinesTogetherAndNoQuestion) {
  FileServer far;
  EXPECT_EQ(transferTime(far), seconds(0));
  EXPECT_EQ(far.server.lines,
            (Lines{"USER user", "PASS secret", "TYPE I", "SIZE /f", "EPSV", "RETR /f", "PWD", "QUIT"}));
  EXPECT_EQ(far.server.crowdedPackets, 1u);
}

TEST_F(FtpLines, TheLostLineIsSentAgainAlsoWhereTheServerDoesNotKnowTheQuestion) {
  FileServer far(Packets::cutToOneLine);
  far.server.answers["NOOP"] = "502 No such command\r\n";
  EXPECT_EQ(transferTime(far), seconds(2));
  EXPECT_EQ(far.count("EPSV"), 1);
}

TEST_F(FtpLines, OneLinePerPacketServesALineThatIsAnsweredLikeTheOneBeforeIt) {
  for (const Packets packets : {Packets::cutToOneLine, Packets::refused}) {
    internet::forgetCachedTraits();
    FileServer far;
    const auto connection = loginWithOptions();
    far.server.packets = packets;
    far.server.answers["OPTS"] = "501 No options\r\n";
    EXPECT_EQ(read(*connection), "abc") << "behind OPTS and TYPE";
    EXPECT_TRUE(finds(*connection));
    EXPECT_EQ(errorOf([&] { return connection->Remove("/f"); }), 0u);
  }
}

TEST_F(FtpLines, AChangeThatWasLostIsMadeOnce) {
  for (const Packets packets : {Packets::cutToOneLine, Packets::refused}) {
    internet::forgetCachedTraits();
    FileServer far;
    const auto connection = loginWithOptions();
    far.server.packets = packets;
    EXPECT_TRUE(connection->Remove("/f"));
    EXPECT_EQ(far.count("DELE"), 1);
    EXPECT_TRUE(works(*connection));
  }
}

TEST_F(FtpLines, AStopAtAnyMomentWithAServerOfSingleLinesLeavesNothing) {
  for (const Packets packets : {Packets::cutToOneLine, Packets::refused}) {
    bool stopped = true;
    for (std::uint64_t call = 1; stopped; ++call) {
      internet::forgetCachedTraits();
      FileServer far(packets);
      platform::StopToken token;
      const platform::StopToken::Scope scope(&token);
      far.network.stopAt(call);
      try {
        const auto connection = login();
        EXPECT_EQ(read(*connection), "abc");
      } catch (const platform::OperationStopped&) {
        EXPECT_TRUE(token.raised());
      }
      stopped = token.raised();
      EXPECT_EQ(far.network.openSockets(), 0u) << call;
    }
  }
}

TEST_F(FtpLines, ALostLineWhoseServerGoesAwayIsAFailureOfTheConnection) {
  for (const auto& [answer, end, error] :
       {std::tuple("421 Enough\r\n", MemoryLink::End::open, 12030u),
        std::tuple("", MemoryLink::End::ended, 12030u), std::tuple("", MemoryLink::End::broken, 12031u)}) {
    internet::forgetCachedTraits();
    FileServer far(Packets::cutToOneLine);
    far.server.answers["NOOP"] = answer;
    far.server.onCommand = [&far, how = end](const std::string& line) {
      if (line == "NOOP") far.server.control->server = how;
    };
    const auto connection = login();
    EXPECT_EQ(thrownBy([&] { openToRead(*connection, "/f"); }).error, error);
  }
}

TEST_F(FtpLines, AServerThatSaysNothingMoreIs12002InTheTimeOfOneReply) {
  FileServer far(Packets::cutToOneLine);
  far.server.answers["NOOP"] = "";
  const auto connection = login();
  const auto before = far.network.now();
  EXPECT_EQ(thrownBy([&] { openToRead(*connection, "/f"); }).error, 12002u);
  EXPECT_EQ(far.network.now() - before, internet::Timeouts().reply);
}

// --- Servers that are only slow ---

TEST_F(FtpLines, AnAnswerThatComesLateIsTakenAndTheQuestionsDropped) {
  for (const milliseconds late : {milliseconds(1'900), milliseconds(2'100), milliseconds(25'000)}) {
    internet::forgetCachedTraits();
    FileServer far;
    far.delay("EPSV", late);
    const auto connection = login();
    EXPECT_EQ(read(*connection), "abc");
    EXPECT_TRUE(works(*connection)) << "in step";
    EXPECT_EQ(far.count("EPSV"), 1);
    EXPECT_EQ(far.count("NOOP"), late > seconds(2) ? 1 : 0);
    EXPECT_EQ(far.server.crowdedPackets, 1u);
    EXPECT_TRUE(read(*login()) == "abc");
    EXPECT_EQ(far.server.crowdedPackets, 2u) << "it takes lines together";
  }
}

TEST_F(FtpLines, AChangeThatTakesItsTimeIsMadeOnceAndKeepsItsAnswer) {
  for (const char* answer : {"250 Deleted\r\n", "550 No such file\r\n"}) {
    internet::forgetCachedTraits();
    FileServer far;
    const auto connection = loginWithOptions();
    far.server.answers["DELE"] = answer;
    far.delay("DELE", seconds(10));
    EXPECT_EQ(errorOf([&] { return connection->Remove("/f"); }), *answer == '2' ? 0u : 12003u);
    EXPECT_EQ(far.count("DELE"), 1);
    EXPECT_TRUE(works(*connection)) << "in step";
  }
}

// The command of a transfer travels alone, so the line ahead of it is put there by hand.
TEST_F(FtpLines, ATransferThatBeginsLateEndsWithItsOwnReply) {
  FileServer far;
  const auto connection = login();
  const auto& control = connection->Control();
  far.server.answers["NLST"] = far.server.answers["NOOP"] = "";
  const auto later = [&far](milliseconds after, const std::string& text) {
    far.network.later(after, [&far, text] { far.server.control->toClient += text; });
  };
  control->request([&] {
    control->channel().queue("OPTS UTF8 ON", [](const internet::FtpReply&) { return true; });
    later(seconds(5), "150 Here\r\n");
    later(seconds(1), "226 Done\r\n200 Nothing\r\n");
    control->sendCommand("NLST", "");
    EXPECT_EQ(control->channel().reply(seconds(30)).code, 150);
    EXPECT_EQ(control->channel().reply(seconds(30)).code, 226);
  });
  EXPECT_EQ(far.count("NOOP"), 1);
  EXPECT_TRUE(works(*connection)) << "in step";
}

// --- Refusals that mean one line alone ---

TEST_F(FtpLines, ALineThatAServerRefusesIsNoSignOfLostLines) {
  for (const char* refusal : {"500 Unknown\r\n", "501 No options\r\n", "504 No\r\n"}) {
    internet::forgetCachedTraits();
    FileServer far;
    far.server.answers["OPTS"] = refusal;
    EXPECT_TRUE(finds(*loginWithOptions()));
    const auto connection = login();
    EXPECT_EQ(read(*connection), "abc");
    EXPECT_EQ(far.count("NOOP"), 0);
    EXPECT_EQ(far.server.crowdedPackets, 4u) << "OPTS with MLST, with PASS and with USER; TYPE with EPSV";
  }
}

TEST_F(FtpLines, ARefusalOfBinaryTypeIsThatOfTheTransfer) {
  for (const milliseconds late : {milliseconds(0), milliseconds(100)}) {
    internet::forgetCachedTraits();
    FileServer far;
    far.server.answers["TYPE"] = "504 Text alone\r\n";
    if (late > milliseconds(0)) far.delay("SIZE", late);
    const auto connection = login();
    EXPECT_EQ(thrownBy([&] { openToRead(*connection, "/f"); }).text, "504 Text alone");
    EXPECT_TRUE(works(*connection)) << "in step";
    EXPECT_EQ(far.count("NOOP"), late > milliseconds(0) ? 1 : 0);
    EXPECT_EQ(far.count("TYPE"), 1);
  }
}

}  // namespace
}  // namespace internet_tests
