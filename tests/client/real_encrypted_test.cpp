// SPDX-License-Identifier: MIT
// Every operation at real servers, in every way in which they speak TLS.
#include <algorithm>

#include "tests/client/LoggingClient.h"
#include "tests/client/OperationTour.h"
#include "tests/client/RealServersTest.h"

namespace {

class RealEncrypted : public RealServersTest {
 protected:
  // One encryption in full for each login, and all others resume its session.
  void expectResumed(const std::vector<std::string>& lines) const {
    std::ptrdiff_t full = 0;
    std::ptrdiff_t resumed = 0;
    for (const std::string& line : lines) {
      if (!line.starts_with("* TLS ")) continue;
      EXPECT_TRUE(line.starts_with("* TLS " + serverKind.version() + ", ")) << line;
      ++(line.ends_with(", resumed") ? resumed : full);
    }
    const auto logins = std::count_if(lines.begin(), lines.end(),
                                      [](const std::string& line) { return line.starts_with("> USER "); });
    EXPECT_GT(full + resumed, logins);
    if (!kResumesSessions) return;
    EXPECT_EQ(full == logins, serverKind.givesSessions()) << full << " in full, " << logins << " logins";
  }
};

// Queries go over the object's connection, all others over connections of their own.
TEST_P(RealEncrypted, EveryOperationWorks) {
  LoggingClient visitor;
  ASSERT_EQ(visitor.FTPConnect(host.c_str(), server.user().c_str(), server.password().c_str(), server.port(),
                               passive ? 1 : 0, 0, nullptr),
            1);
  operation_tour::run(visitor, {server.folder(), folder.path().string()});
  expectResumed(visitor.takeLines());
}

INSTANTIATE_TEST_SUITE_P(Ways, RealEncrypted, inEveryEncryption(), serverAndModeName);

}  // namespace
