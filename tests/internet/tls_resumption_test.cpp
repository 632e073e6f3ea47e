// SPDX-License-Identifier: MIT
// Sessions that data connections resume. Not for Wine, which resumes none.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <nlohmann/json.hpp>

#include "tests/internet/TlsPeer.h"

namespace internet::tls_testing {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;

// Several servers refuse data connections that do not resume the control connection's session, and whatever
// descends from another data connection's, too.
class DataStreams : public ::testing::TestWithParam<const char*> {};

TEST_P(DataStreams, AllResumeTheControlConnectionsSession) {
  constexpr int kData = 6;
  Peer peer(std::string(R"({"newest": ")") + GetParam() +
            R"(", "connections": [{"steps": [{"send": {"text": "220"}}, {"receive_all": true}]},
                                 {"steps": [{"send": {"text": "data"}}, {"say_closed": true}]}]})");
  const auto control = peer.control();
  std::array<char, 16> buffer;
  ASSERT_EQ(receiveSome(*control, buffer, Deadline(kLong)).bytes, 3U);
  for (int i = 0; i < kData; ++i) {
    EXPECT_EQ(receiveAll(*peer.data()).bytes, "data");
    EXPECT_THAT(peer.login->description(), EndsWith(", resumed"));
  }
  const auto handshakes = peer.server.log().at("handshakes");
  ASSERT_EQ(handshakes.size(), 1U + kData);
  for (const auto& handshake : handshakes)
    EXPECT_EQ(handshake.at("resumed"), handshake.at("connection") != 1);
}

// A login of its own is a session of its own.
TEST_P(DataStreams, DoNotResumeAnotherLoginsSession) {
  Peer peer(std::string(R"({"newest": ")") + GetParam() +
            R"(", "connections": [{"steps": [{"send": {"text": "220"}}]}]})");
  receiveAll(*peer.control());
  TlsLogin another(kName, {});
  secured(another, peer.server);
  EXPECT_THAT(another.description(), Not(HasSubstr("resumed")));
}

INSTANTIATE_TEST_SUITE_P(Versions, DataStreams, ::testing::Values("1.2", "1.3"),
                         [](const auto& version) { return version.param[2] == '2' ? "Tls12" : "Tls13"; });

// A data connection that resumes shows no certificate of its own; the session's is judged.
TEST(TlsResumption, TheSessionsCertificateIsJudged) {
  Peer peer(R"({"connections": [{"steps": [{"send": {"text": "220"}}]}]})");
  receiveAll(*peer.control());
  EXPECT_NE(peer.data(), nullptr);
  EXPECT_THAT(peer.login->description(), EndsWith(", resumed"));
}

}  // namespace
}  // namespace internet::tls_testing
