// SPDX-License-Identifier: MIT
// The environment that this program is started with (CMakeLists.txt) counts.
#include "tests/internet/HttpTest.h"

namespace internet_tests {
namespace {

using ProxyVariables = HttpTest;

TEST_F(ProxyVariables, NameProxies) {
  const Thrown ftp = thrownBy([&] { session.GetFtpConnection("ftp.example", "user", "secret"); });
  EXPECT_EQ(ftp.error, 12029u);
  EXPECT_EQ(ftp.text, "Proxy https://proxy.example: Proxies of this kind are not supported");
  const Thrown https = thrownBy([&] { HttpFetch(session, "https://web.example", 0).request->SendRequest(); });
  EXPECT_EQ(https.text, "Proxy socks4://proxy.example:1: Proxies of this kind are not supported");
}

TEST_F(ProxyVariables, NameWhatIsReachedWithoutOne) {
  const fixture::ScriptedFtp server;
  const std::unique_ptr<CFtpConnection> connection(
      session.GetFtpConnection(server.host().c_str(), "user", "secret", server.port()));
  EXPECT_NE(connection, nullptr);
}

TEST_F(ProxyVariables, OfOtherProtocolsAreNotTaken) {
  const auto server = answering({{"body", {{"size", 3}}}});
  const HttpFetch fetch(session, server);
  EXPECT_TRUE(fetch.request->SendRequest());
  EXPECT_EQ(fetch.status(), 200u);
}

}  // namespace
}  // namespace internet_tests
