// SPDX-License-Identifier: MIT
// Servers that have too many logins for a moment. One that came in that moment failed.
#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "framework/internet/ftp/ServerWords.h"
#include "tests/internet/FtpMemoryTest.h"

namespace internet_tests {
namespace {

using internet::tellsOfCrowd;
using std::chrono::milliseconds;
using testing_support::MemoryFtp;
using testing_support::MemoryLink;
using testing_support::MemoryNetwork;

TEST(Crowd, IsToldInManyWords) {
  for (const char* reply :
       {"421 There are too many connected users, please try later.",                               // vsftpd
        "421 There are too many connections from your internet address.",                          // vsftpd
        "530 Sorry, the maximum number of clients (1) for this user are already connected.",       // proftpd
        "530-Welcome\r\n530 Sorry, the maximum number of allowed clients (1) already connected.",  // proftpd
        "421 1 users (the maximum) are already logged in, sorry",      // pure-ftpd
        "421 Too many connections (1) from this IP",                   // pure-ftpd
        "421 Too many connections. Service temporarily unavailable.",  // pyftpdlib
        "421 Too many connections from the same IP address.",          // pyftpdlib
        "421 10 users (the maximum) are already logged on.", "421 Maximum session limit reached.",  // others
        "530 User anonymous access denied. Too many users.", "421 Connection limit of 5 reached."}) {
    EXPECT_TRUE(tellsOfCrowd(reply)) << reply;
  }
}

TEST(Crowd, IsNoOtherRefusal) {
  for (const char* reply :
       {"530 Login incorrect.", "530 Login authentication failed", "530 Not logged in", "421 Timeout",
        "421 Service not available, closing control connection.", "", "421", "530 Too many failed logins",
        "530 Maximum login attempts (3) exceeded, connection refused", "421 Too many login attempts",
        "421 Too many wrong passwords", "421 Login time limit exceeded", "530 User \"too many\" unknown",
        "220 Welcome, 5 of the maximum of 10 users are here", "550 Too many files"}) {
    EXPECT_FALSE(tellsOfCrowd(reply)) << reply;
  }
}

// Lets nobody in at first.
class CrowdedFtp : public MemoryFtp {
 public:
  unsigned refusals = 0;
  std::string refusal = "421 Too many connections\r\n";
  unsigned calls = 0;

  void connecting(const std::shared_ptr<MemoryLink>& link, std::uint16_t port) override {
    MemoryFtp::connecting(link, port);
    if (calls++ >= refusals) return;
    link->toClient = refusal;
    link->server = MemoryLink::End::ended;
  }
};

class FtpCrowd : public FtpTest {
 protected:
  FtpCrowd() {
    internet::Timeouts timeouts;
    timeouts.crowdedRetries = 3;
    session.SetTimeouts(timeouts);
  }

  Thrown login() {
    return thrownBy([&] { delete session.GetFtpConnection("127.0.0.1", "user", "secret", 21, true); });
  }
  [[nodiscard]] milliseconds passed() const {
    return std::chrono::duration_cast<milliseconds>(network.now() - start);
  }

  CrowdedFtp server;
  MemoryNetwork network{server};
  const std::chrono::nanoseconds start = network.now();
};

TEST_F(FtpCrowd, LetsInWhoComesAgainAfterAPause) {
  server.refusals = 3;
  EXPECT_EQ(login().error, 0u);
  EXPECT_EQ(server.calls, 4u);
  EXPECT_EQ(passed(), milliseconds(250 + 500 + 1'000));
}

TEST_F(FtpCrowd, IsGivenUpAfterThreePauses) {
  server.refusals = 9;
  EXPECT_EQ(login().error, 12030u);
  EXPECT_EQ(server.calls, 4u);
  EXPECT_EQ(passed(), milliseconds(1'750));
}

TEST_F(FtpCrowd, EachCallIsAConnectionOfItsOwnToTheSession) {
  server.refusals = 1;
  EXPECT_EQ(login().error, 0u);
  const std::vector<std::uint32_t> connection{10, 11, 20, 21, 40, 50, 51, 10, 11, 20, 21, 40};
  const auto statuses = session.takeStatuses();
  ASSERT_GE(statuses.size(), connection.size());
  EXPECT_EQ(std::vector(statuses.begin(), statuses.begin() + 12), connection);
}

TEST_F(FtpCrowd, MayTellItAtThePassword) {
  server.answers["PASS"] = "530 Sorry, the maximum number of clients (1) already connected.\r\n";
  EXPECT_EQ(login().error, 12014u);
  EXPECT_EQ(server.calls, 4u);
}

TEST_F(FtpCrowd, HasNothingToDoWithAWrongPassword) {
  server.answers["PASS"] = "530 Login incorrect.\r\n";
  EXPECT_EQ(login().error, 12014u);
  EXPECT_EQ(server.calls, 1u);
  EXPECT_EQ(passed(), milliseconds(0));
}

TEST_F(FtpCrowd, IsAtOnceAFailureToWhoDoesNotAskForMore) {
  session.SetTimeouts({});
  server.refusals = 1;
  EXPECT_EQ(login().error, 12030u);
  EXPECT_EQ(server.calls, 1u);
}

}  // namespace
}  // namespace internet_tests
