// SPDX-License-Identifier: MIT
// Command lines that travel together, and servers that cannot cope with them: over a network in memory, where
// a packet is what one call has sent and time is counted exactly.
#include <algorithm>
#include <string_view>

#include "framework/internet/FtpFileFind.h"
#include "framework/internet/ftp/FtpControl.h"
#include "framework/internet/net/Failure.h"
#include "framework/platform/stop_token.h"
#include "tests/internet/FtpMemoryTest.h"

namespace internet_tests {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using testing_support::MemoryFtp;
using testing_support::MemoryLink;
using Lines = std::vector<std::string>;
using Packets = MemoryFtp::Packets;

// A server with one file, "/f" with the content "abc", where everything can be deleted.
struct FileServer : Far {
  explicit FileServer(Packets packets = Packets::taken) {
    server.packets = packets;
    server.answers["FEAT"] = "211-Features\r\n MLST type*;size*;\r\n UTF8\r\n211 End\r\n";
    server.answers["MLST"] = "250-Facts\r\n type=file;size=3; /f\r\n250 End\r\n";
    server.answers["DELE"] = "250 Deleted\r\n";
    server.answers["RETR"] = "150 Here\r\n";
    server.onCommand = [this](const std::string& line) { behind(line); };
  }

  void behind(const std::string& line) {
    if (line.starts_with("EPRT")) port_ = MemoryFtp::portOf(line);
    if (!line.starts_with("RETR")) return;
    if (port_ != 0) server.data = network.connectToClient(port_);
    server.data->toClient = "abc";
    server.data->server = MemoryLink::End::ended;
    server.control->toClient += "226 Done\r\n";
  }

  // The reply to `verb` comes so much later, and those to what arrives meanwhile behind it.
  void delay(const std::string& verb, milliseconds time) {
    const std::string reply = std::exchange(server.answers[verb], "");
    server.answers["NOOP"] = server.answers["PWD"] = "";
    server.onCommand = [this, verb, reply, time](const std::string& line) {
      const auto say = [this](milliseconds after, const std::string& text) {
        network.later(after, [this, text] { server.control->toClient += text; });
      };
      if (line.starts_with(verb)) say(time, reply);
      if (line == "NOOP") say(milliseconds(0), "200 Nothing\r\n");
      if (line == "PWD") say(milliseconds(0), "257 \"/\"\r\n");
      behind(line);
    };
  }

  [[nodiscard]] std::ptrdiff_t count(std::string_view verb) const {
    return std::count_if(server.lines.begin(), server.lines.end(),
                         [verb](const std::string& line) { return line.starts_with(verb); });
  }

 private:
  std::uint16_t port_ = 0;
};

class FtpLines : public FtpMemory {
 protected:
  static std::string read(CFtpConnection& connection) {
    const auto file = openToRead(connection, "/f");
    std::string content = readToEnd(*file);
    EXPECT_EQ(errorOf([&] { return file->Close(); }), 0u);
    return content;
  }

  // How long a log-in and a download take.
  std::chrono::nanoseconds transferTime(FileServer& far, bool passive = true) {
    const auto before = far.network.now();
    const auto connection = login(passive);
    EXPECT_EQ(read(*connection), "abc");
    EXPECT_TRUE(works(*connection));
    return far.network.now() - before;
  }

  static bool finds(CFtpConnection& connection) {
    CFtpFileFind finder(&connection);
    if (!finder.FindFile("/f")) return false;
    finder.FindNextFile();
    return finder.GetFileName() == "f" && finder.GetLength() == 3;
  }

  // The next connection knows what the first one has learnt of the features, and sends OPTS along.
  std::unique_ptr<CFtpConnection> loginWithOptions() {
    const auto first = login();
    EXPECT_TRUE(finds(*first));
    return login();
  }
};

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

// --- Replies that nobody has asked for ---

// A client that has come to be a reply behind took the port of a transfer for the answer to a removal, and
// the file for removed.
TEST_F(FtpLines, WhatAnswersAnotherCommandEndsTheConnection) {
  for (const char* reply : {"213 3", "227 Here (127,0,0,1,3,232)", "229 Here (|||1000|)"}) {
    FileServer far;
    const auto connection = login();
    far.server.answers["DELE"] = std::string(reply) + "\r\n";
    EXPECT_EQ(errorOf([&] { return connection->Remove("/f"); }), 12152u) << reply;
    EXPECT_EQ(errorOf([&] { return connection->Remove("/f"); }), 12030u) << reply;
  }
}

TEST_F(FtpLines, ThePortOfTheOlderCommandIsNoPortAndNoHarm) {
  FileServer far;
  far.server.answers["EPSV"] = far.server.answers["PASV"] = "227 Here (127,0,0,1,3,232)\r\n";
  EXPECT_EQ(transferTime(far), seconds(0));
  EXPECT_EQ(far.count("PASV"), 1);
}

// It was taken for the answer to the next line: a missing file was there.
TEST_F(FtpLines, ASecondReplyToALineSentAlongIsDropped) {
  FileServer far;
  const auto connection = loginWithOptions();
  far.server.answers["OPTS"] = "200 Fine\r\n200 Really\r\n";
  far.server.answers["TYPE"] = "200 Binary\r\n200 Really\r\n";
  far.server.answers["MLST"] = "550 No such file\r\n";
  const auto before = far.network.now();
  EXPECT_FALSE(finds(*connection));
  far.server.answers["DELE"] = "550 No such file\r\n";
  EXPECT_EQ(errorOf([&, fresh = login()] { return fresh->Remove("/f"); }), 12003u);
  for (const bool passive : {true, false}) {
    const auto fresh = login(passive);
    EXPECT_EQ(read(*fresh), "abc") << passive;
    EXPECT_TRUE(works(*fresh));
  }
  EXPECT_EQ(far.network.now(), before);
}

TEST_F(FtpLines, AnotherGoodAnswerToThePortIsNotWaitedOn) {
  FileServer far;
  far.server.answers["EPRT"] = "250 Done otherwise\r\n";
  for (int i = 0; i < 3; ++i) EXPECT_EQ(transferTime(far, false), seconds(0)) << i;
  EXPECT_EQ(far.count("RETR"), 3);
}

TEST_F(FtpLines, AnOddAnswerIsTakenWhenNoOtherComes) {
  FileServer far;
  far.server.answers["EPSV"] = "228 Here (|||1000|)\r\n";
  EXPECT_EQ(transferTime(far), seconds(2));
  EXPECT_EQ(far.count("EPSV"), 1);
  EXPECT_EQ(transferTime(far), seconds(0));
}

// The client waited, asked, and was a reply behind from then on.
TEST_F(FtpLines, AnOddAnswerIsTakenAtOnceWhereTheNextLineIsAnsweredBehindIt) {
  FileServer far;
  far.server.answers["TYPE"] = "250 Done otherwise\r\n";
  EXPECT_EQ(transferTime(far), seconds(0));
  EXPECT_EQ(far.count("NOOP"), 0);
}

}  // namespace
}  // namespace internet_tests
