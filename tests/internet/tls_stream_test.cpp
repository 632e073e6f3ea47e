// SPDX-License-Identifier: MIT
// Encrypted streams: what goes through, how they end, and what they resume.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "tests/internet/TlsPeer.h"
#include "tests/support/Pattern.h"
#include "tests/support/TestTrust.h"

namespace internet::tls_testing {
namespace {

using platform::IoStatus;
using ::testing::EndsWith;
using ::testing::StartsWith;

// A server, and a login at it.
struct Peer {
  explicit Peer(const char* script, const TlsPolicy& policy = {}) : server(script) {
    testing_support::trustTestAuthority();
    login.emplace(kName, policy);
  }
  std::unique_ptr<Sock> control() { return secured(*login, server); }
  std::unique_ptr<Sock> data() { return secured(*login, server, platform::TlsUse::data); }

  fixture::ScriptedTls server;
  std::optional<TlsLogin> login;
};

TEST(TlsStream, BytesGoBothWays) {
  Peer peer(R"({"connections": [{"steps": [{"send": {"text": "220 Welcome"}}, {"receive": 4},
                                           {"say_closed": true}]}]})");
  const auto sock = peer.control();
  ASSERT_EQ(sendAll(*sock, "QUIT", Deadline(kLong)), IoStatus::done);
  const Received all = receiveAll(*sock);
  EXPECT_EQ(all.bytes, "220 Welcome");
  EXPECT_EQ(all.end, IoStatus::closed);
  peer.server.waitUntilClosed(1);
  EXPECT_EQ(peer.server.log().at("closed").at(0).at("received"), "QUIT");
}

TEST(TlsStream, AnEndThatWasNotAnnouncedIsABreak) {
  Peer peer(R"({"connections": [{"steps": [{"send": {"text": "half"}}]}]})");
  const auto sock = peer.control();
  const Received all = receiveAll(*sock);
  EXPECT_EQ(all.bytes, "half");
  EXPECT_EQ(all.end, IoStatus::reset);
}

TEST(TlsStream, TellsWhatItIs) {
  Peer peer("{}");
  peer.control();
  EXPECT_THAT(peer.login->description(), StartsWith("TLS 1."));
  EXPECT_THAT(peer.login->description(), ::testing::HasSubstr(", TLS_"));
}

}  // namespace
}  // namespace internet::tls_testing
