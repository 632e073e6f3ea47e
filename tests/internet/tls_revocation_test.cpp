// SPDX-License-Identifier: MIT
// What the system knows of revoked certificates counts, and nothing is fetched to know more: on Windows a
// handshake went to wherever the certificate said that its list was, before anybody had judged the server.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/internet/ListOfRevoked.h"
#include "tests/internet/TlsPeer.h"

namespace internet::tls_testing {
namespace {

using ::testing::StartsWith;

std::string listed(const char* certificate, const std::string& url) {
  return std::string(R"({"certificate": ")") + certificate + R"(", "list_at": ")" + url + R"("})";
}

std::string placeAt(const fixture::Server& web) {
  return "http://127.0.0.1:" + std::to_string(web.port()) + "/authority.crl";
}

TEST(TlsRevocation, OfWhichTheSystemKnowsIs12170) {
  const fixture::ScriptedHttp web;
  Peer peer(listed("revoked", placeAt(web)));
  haveListOfRevoked(placeAt(web));
  const Failure failure = failureOf([&] { peer.control(); });
  EXPECT_EQ(failure.error, kCertificateRevoked);
  EXPECT_THAT(failure.serverText, StartsWith("The certificate of localhost has been revoked"));
  EXPECT_NE(failure.serverText.find("SHA-256 " + peer.server.fingerprint()), std::string::npos);
}

TEST(TlsRevocation, ConcernsThoseAloneThatTheListNames) {
  const fixture::ScriptedHttp web;
  Peer peer(listed("good", placeAt(web)));
  haveListOfRevoked(placeAt(web));
  EXPECT_NE(peer.control(), nullptr);
}

TEST(TlsRevocation, IsNotAskedForInTheNetwork) {
  const fixture::ScriptedHttp web;
  Peer peer(listed("good", placeAt(web)));
  EXPECT_NE(peer.control(), nullptr);
  EXPECT_EQ(web.connectionCount(), 0);
}

}  // namespace
}  // namespace internet::tls_testing
