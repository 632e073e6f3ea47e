// SPDX-License-Identifier: MIT
// What happens seldom between sockets, and never when a test wants it: over a network in memory.
#include "tests/internet/FtpTest.h"
#include "tests/support/MemoryFtp.h"

namespace internet_tests {
namespace {

using testing_support::MemoryFtp;
using testing_support::MemoryNetwork;

// A server and the way to it.
struct Far {
  MemoryFtp server;
  MemoryNetwork network{server};
};

class FtpMemory : public FtpTest {
 protected:
  std::unique_ptr<CFtpConnection> login(bool passive) {
    return std::unique_ptr<CFtpConnection>(
        session.GetFtpConnection("127.0.0.1", "user", "secret", 21, passive));
  }
};

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

}  // namespace
}  // namespace internet_tests
