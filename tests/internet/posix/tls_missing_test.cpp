// SPDX-License-Identifier: MIT
// A system without a TLS library: the test's environment hides those that this one has.
#include <gtest/gtest.h>

#include "framework/platform/tls.h"
#include "tests/internet/FtpTest.h"
#include "tests/internet/TlsPeer.h"

namespace internet::tls_testing {
namespace {

TEST(TlsMissing, IsAFailureThatSaysSo) {
  const Failure failure = failureOf([] { TlsLogin(kName, {}); });
  EXPECT_EQ(failure.error, kSecureChannelFailed);
  EXPECT_EQ(failure.serverText, "no TLS library on this system");
  EXPECT_TRUE(platform::sha256("a", 1).empty());
}

TEST(TlsMissing, PlainConnectionsNeedNone) {
  const fixture::ScriptedFtp server(R"({"tree": {"/a.txt": "hello"}})");
  internet_tests::RecordingSession session;
  const std::unique_ptr<CFtpConnection> connection(
      session.GetFtpConnection(server.host().c_str(), nullptr, nullptr, server.port(), true));
  const std::unique_ptr<CInternetFile> file(
      connection->OpenFile("/a.txt", internet::kGenericRead, internet::kTransferTypeBinary));
  char content[8] = "";
  EXPECT_EQ(file->Read(content, sizeof content), 5U);
  EXPECT_STREQ(content, "hello");
}

}  // namespace
}  // namespace internet::tls_testing
