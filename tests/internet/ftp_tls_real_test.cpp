// SPDX-License-Identifier: MIT
// Transfers on one login at real servers, in every way in which they speak TLS. Most of them demand that data
// connections resume the session of the login, wherever the system can do that.
#include "tests/internet/FtpTlsTransferTest.h"
#include "tests/support/RealServerKind.h"

namespace internet_tests {
namespace {

class FtpTlsReal : public FtpTlsTransfer, public testing::WithParamInterface<ServerAndMode> {
 protected:
  std::unique_ptr<CFtpConnection> login(CInternetSession& through) const {
    const std::string host = hostText(kind.scheme, server, kind.options);
    return std::unique_ptr<CFtpConnection>(through.GetFtpConnection(host.c_str(), server.user().c_str(),
                                                                    server.password().c_str(), server.port(),
                                                                    std::get<1>(GetParam())));
  }

  const ServerKind kind{std::get<0>(GetParam())};
  const fixture::RealServer server{kind.kind.c_str(), kind.script()};
};

TEST_P(FtpTlsReal, SixMixedTransfersResumeTheSessionOfTheirLogin) {
  server.put(json{{"/pub/big", {{"size", kSize}, {"seed", kSeed}}}, {"/pub/dir/file", "x"}}.dump());
  TellingSession telling;
  expectSixTransfers(*login(telling), server, "/pub");
  EXPECT_EQ(server.connectionCount(), 1) << "it was logged in to anew";
  expectSix(telling.encryptions, kind.version(), kind.givesSessions());
}

INSTANTIATE_TEST_SUITE_P(Ways, FtpTlsReal, inEveryEncryption(), serverAndModeName);

}  // namespace
}  // namespace internet_tests
