// SPDX-License-Identifier: MIT
// What happens seldom between sockets, and never when a test wants it: over a network in memory.
#include <chrono>
#include <optional>

#include "framework/internet/FtpFileFind.h"
#include "framework/platform/last_error.h"
#include "framework/platform/stop_token.h"
#include "framework/platform/wait_watch.h"
#include "tests/internet/FtpMemoryTest.h"

namespace internet_tests {
namespace {

using testing_support::MemoryFtp;

// Such a socket stayed ready, and the wait ran in circles until its limit.
TEST_F(FtpMemory, AListeningSocketThatFailsIsNotWaitedFor) {
  Far far;
  far.server.answers["RETR"] = "150 Here\r\n";
  std::uint16_t port = 0;
  far.server.onCommand = [&](const std::string& line) {
    if (line.starts_with("EPRT")) port = MemoryFtp::portOf(line);
    if (line.starts_with("RETR")) far.network.failAccepts(port);
  };
  auto connection = login(false);
  const auto before = far.network.now();
  EXPECT_EQ(thrownBy([&] { openToRead(*connection, "/f"); }).error, 12029u);
  EXPECT_LE(far.network.now() - before, internet::Timeouts().dataError)
      << "for a reason that the server tells";
  connection.reset();
  EXPECT_EQ(far.network.openSockets(), 0u);
}

// Only the first preliminary reply was looked at, and a part passed for the whole.
TEST_F(FtpMemory, TheSizeThatIsAnnouncedBehindAnotherPreliminaryReplyCounts) {
  const std::string last = "150 Here (5 bytes)\r\n";
  for (const auto& [opening, atTheEnd] :
       {std::pair("125 Wait\r\n" + last, std::string()), std::pair(std::string("125 Wait\r\n"), last)}) {
    for (const char* content : {"abc", "abcde"}) {
      Far far;
      far.server.answers["RETR"] = opening;
      auto connection = login(true);
      const auto file = openToRead(*connection, "/f");
      far.server.data->toClient = content;
      far.server.data->server = testing_support::MemoryLink::End::ended;
      far.server.control->toClient += atTheEnd + "226 Done\r\n";
      std::string read;
      const std::uint32_t error = thrownBy([&] { read = readToEnd(*file); }).error;
      EXPECT_EQ(error, std::string_view(content) == "abc" ? 12030u : 0u);
    }
  }
}

// Has listed an empty directory; its next data connection is on the way, and gets no further by itself.
class FtpMemoryConnecting : public FtpMemory {
 protected:
  Far far;
  std::unique_ptr<CFtpConnection> connection = login();
  CFtpFileFind finder{connection.get()};

  void listsAndConnects() {
    far.server.answers["LIST"] = "150 Here\r\n226 Done\r\n";
    far.server.onCommand = [&](const std::string& line) {
      if (line == "LIST") far.server.data->server = testing_support::MemoryLink::End::ended;
    };
    EXPECT_EQ(errorOf([&] { return finder.FindFile("/d/*"); }), platform::kErrorNoMoreFiles) << "works";
    far.server.passiveState = testing_support::MemoryLink::State::connecting;
  }
};

// A reset can come before the client has seen its connection stand, and the refusal with it. The rows that
// went with the reset are lost all the same.
TEST_F(FtpMemoryConnecting, AListingThatIsResetWhileItBeginsIsBrokenNotRefused) {
  listsAndConnects();
  far.server.onCommand = [&](const std::string& line) {
    if (line == "LIST") far.server.data->state = testing_support::MemoryLink::State::refused;
  };
  far.server.answers["LIST"] = "150 Here\r\n451 Local error\r\n";
  EXPECT_EQ(thrownBy([&] { finder.FindFile("/d/*"); }).error, 12003u);
  far.server.answers["LIST"] = "451 Local error\r\n";
  EXPECT_EQ(errorOf([&] { return finder.FindFile("/d/*"); }), 12003u) << "never begun";
}

// Its two connections ended in either order, and with the order the number changed.
TEST_F(FtpMemoryConnecting, AServerThatLeavesBeforeTheDataConnectionStandsHasBrokenTheConnection) {
  listsAndConnects();
  far.server.answers["RETR"] = "";
  far.server.onCommand = [&](const std::string& line) {
    if (!line.starts_with("RETR")) return;
    far.server.data->state = testing_support::MemoryLink::State::refused;
    far.network.later(std::chrono::milliseconds(10),
                      [&] { far.server.control->server = testing_support::MemoryLink::End::ended; });
  };
  EXPECT_EQ(thrownBy([&] { openToRead(*connection, "/f"); }).error, 12030u);
}

// Uploads in each mode, stopped at the first, the second, ... call that the client makes of the network.
TEST_F(FtpMemory, AnUploadThatIsStoppedAtAnyMomentNeverEndsInGoodOrder) {
  for (const bool passive : {true, false}) {
    bool stopped = true;
    for (std::uint64_t call = 1; stopped; ++call) {
      internet::forgetCachedTraits();
      Far far;
      std::uint16_t port = 0;
      far.server.answers["STOR"] = "150 Send\r\n";
      far.server.onCommand = [&](const std::string& line) {
        if (line.starts_with("EPRT")) port = MemoryFtp::portOf(line);
        if (line.starts_with("STOR") && !passive) far.server.data = far.network.connectToClient(port);
      };
      far.server.onLeft = [&](const MemoryFtp::Link& link) {
        if (link != far.server.data || link->clientBroken) return;
        EXPECT_EQ(link->sent, 6u) << "stopped at call " << call;
        far.server.control->toClient += "226 Done\r\n";
      };
      platform::StopToken token;
      const platform::StopToken::Scope scope(&token);
      far.network.stopAt(call);
      try {
        auto connection = login(passive);
        auto file = openToWrite(*connection, "/up");
        file->Write("abc", 3);
        file->Write("def", 3);
        EXPECT_TRUE(file->Close() || token.raised());
      } catch (const platform::OperationStopped&) {
        EXPECT_TRUE(token.raised());
      }
      stopped = token.raised();
      EXPECT_EQ(far.network.openSockets(), 0u);
    }
  }
}

// The system may wake a wait for nothing. The first such one used to pass for what the server sends.
TEST_F(FtpMemory, AnEarlyCloseWaitsForTheServersDataAlsoWhenItIsWokenForNothing) {
  using std::chrono::milliseconds;
  Far far;
  far.server.answers["RETR"] = "150 Here\r\n";
  auto connection = login(true);
  const auto file = openToRead(*connection, "/f");
  const platform::WaitWatch wakes(milliseconds(10), [] {});
  far.network.later(milliseconds(100), [&] { far.server.data->toClient = "a"; });
  const auto start = far.network.now();
  std::optional<std::chrono::nanoseconds> brokenAfter;
  far.server.onLeft = [&](const MemoryFtp::Link& link) {
    if (link != far.server.data) return;
    brokenAfter = far.network.now() - start;
    far.server.control->toClient += "426 Broken off\r\n";
  };
  EXPECT_TRUE(file->Close());
  EXPECT_EQ(brokenAfter, milliseconds(100));
}

// One that was left between USER and PASS passed for a connection.
TEST_F(FtpMemory, AStopAtAnyMomentOfANewLogInLeavesNoHalfOne) {
  bool stopped = true;
  for (std::uint64_t moment = 1; stopped; ++moment) {
    internet::forgetCachedTraits();
    Far far;
    far.server.answers["CWD"] = "550 No directory\r\n";
    far.server.answers["SIZE"] = "213 5\r\n";
    auto connection = login(true);
    connection->ReopenOnDemand(true);
    CFtpFileFind finder(connection.get());
    far.server.control->server = testing_support::MemoryLink::End::ended;
    MemoryFtp::Link loggedIn;
    far.server.onCommand = [&](const std::string& line) {
      if (line.starts_with("USER")) return;
      if (line.starts_with("PASS")) loggedIn = far.server.control;
      EXPECT_EQ(loggedIn, far.server.control) << line << " at " << moment;
    };
    platform::StopToken token;
    {
      const platform::StopToken::Scope scope(&token);
      far.network.stopAt(far.network.calls() + moment);
      try {
        static_cast<void>(finder.FindFile("/x"));
      } catch (const platform::OperationStopped&) {
      }
    }
    stopped = token.raised();
    EXPECT_TRUE(finder.FindFile("/x")) << moment;
  }
}

}  // namespace
}  // namespace internet_tests
