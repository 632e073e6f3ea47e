// SPDX-License-Identifier: MIT
// Which servers are taken for the one that was asked for, and what is said of the others.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "framework/internet/tls/ServerJudgement.h"
#include "tests/internet/TlsPeer.h"

namespace internet::tls_testing {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

struct Case {
  const char* certificate;
  const char* server;  // the name that was asked for
  std::uint32_t error;
  const char* text = "";
};

constexpr const char* kDate = "has expired or is not valid yet";
constexpr const char* kOtherName = "is made out to another name";
constexpr const char* kAuthority = "comes from an authority that this system does not trust";

constexpr Case kCases[] = {
    {"good", "localhost", 0},
    {"good", "LocalHost.", 0},
    {"good", "127.0.0.1", 0},
    {"good", "::1", 0},
    {"good", "192.0.2.1", kCertificateName, kOtherName},
    {"chain", "localhost", 0},
    {"wildcard", "ftp.tests.example", 0},
    {"wildcard", "tests.example", kCertificateName, kOtherName},
    {"wildcard", "a.b.tests.example", kCertificateName, kOtherName},
    {"address", "127.0.0.1", 0},
    {"address", "localhost", kCertificateName, kOtherName},
    {"common-name", "localhost", 0},
    {"common-name", "127.0.0.1", kCertificateName, kOtherName},
    {"wrong-name", "localhost", kCertificateName, kOtherName},
    {"expired", "localhost", kCertificateDate, kDate},
    {"not-yet", "localhost", kCertificateDate, kDate},
    {"self-signed", "localhost", kCertificateAuthority, kAuthority},
    {"unknown-authority", "localhost", kCertificateAuthority, kAuthority},
    {"partial-chain", "localhost", kCertificateAuthority, kAuthority},
};

std::string scriptOf(const char* certificate) {
  return std::string(R"({"certificate": ")") + certificate + R"("})";
}

TEST(TlsCertificate, EachFaultHasItsNumberAndTellsWhatWasShown) {
  for (const Case& expected : kCases) {
    SCOPED_TRACE(std::string(expected.certificate) + " at " + expected.server);
    Peer peer(scriptOf(expected.certificate), {}, expected.server);
    const Failure failure = failureOf([&] { peer.control(); });
    EXPECT_EQ(failure.error, expected.error) << failure.serverText;
    if (expected.error == 0) continue;
    const std::string opening = std::string("The certificate of ") + expected.server + " " + expected.text;
    EXPECT_THAT(failure.serverText, StartsWith(opening));
    EXPECT_THAT(failure.serverText, HasSubstr("SHA-256 " + peer.server.fingerprint()));
    EXPECT_THAT(failure.serverText, HasSubstr(", valid from 20"));
    EXPECT_THAT(failure.serverText, HasSubstr("issued to CN=localhost, O=Tests, by CN="));
  }
}

TlsPolicy pinned(const std::string& fingerprint) {
  TlsPolicy policy;
  auto& bytes = policy.fingerprint.emplace();
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    bytes[i] = static_cast<std::uint8_t>(std::stoi(fingerprint.substr(2 * i, 2), nullptr, 16));
  }
  return policy;
}

// The pin is the user's own judgement, so nothing else is asked.
TEST(TlsCertificate, APinStandsInForEveryOtherCheck) {
  for (const char* certificate :
       {"good", "self-signed", "expired", "wrong-name", "partial-chain", "revoked"}) {
    SCOPED_TRACE(certificate);
    const fixture::ScriptedTls server(scriptOf(certificate));
    TlsLogin login("some.other.example", pinned(server.fingerprint()));
    EXPECT_NE(secured(login, server), nullptr);
  }
}

TEST(TlsCertificate, AnotherOneThanThePinnedIsRefusedHoweverGoodItIs) {
  Peer peer(scriptOf("good"), pinned(fixture::ScriptedTls(scriptOf("chain")).fingerprint()));
  const Failure failure = failureOf([&] { peer.control(); });
  EXPECT_EQ(failure.error, kCertificateInvalid);
  EXPECT_THAT(
      failure.serverText,
      StartsWith("The certificate of localhost is not the one with the expected fingerprint: SHA-256 " +
                 peer.server.fingerprint()));
}

TEST(TlsCertificate, WithoutVerificationAnyWillDo) {
  TlsPolicy careless;
  careless.verifies = false;
  for (const char* certificate : {"self-signed", "expired", "wrong-name", "revoked"}) {
    SCOPED_TRACE(certificate);
    Peer peer(scriptOf(certificate), careless);
    EXPECT_NE(peer.control(), nullptr);
  }
}

// What no server of the tests can show here.
TEST(TlsCertificate, WhatTheSystemAloneFindsIsPassedOn) {
  const auto fault = [](const platform::TlsPeer& peer) { return faultOf(peer, "a.example", {}).value(); };
  platform::TlsPeer peer;
  EXPECT_EQ(fault(peer).error, kCertificateInvalid);
  EXPECT_EQ(fault(peer).serverText, "a.example has shown no certificate");
  peer.certificate = {0x30, 0x00};
  peer.trust = platform::TlsTrust::revoked;
  EXPECT_EQ(fault(peer).error, kCertificateRevoked);
  peer.trust = platform::TlsTrust::invalid;
  peer.text = "made for another use";
  EXPECT_EQ(fault(peer).error, kCertificateInvalid);
  EXPECT_THAT(fault(peer).serverText,
              StartsWith("The certificate of a.example is not valid (made for another use): SHA-256 "));
  peer.trust = platform::TlsTrust::trusted;
  EXPECT_EQ(fault(peer).error, kCertificateInvalid) << "it cannot be read";
}

// TLS 1.3 servers say so only behind the handshake.
TEST(TlsCertificate, AServerThatWantsOursIsTold) {
  for (const char* newest : {"1.2", "1.3"}) {
    SCOPED_TRACE(newest);
    Peer peer(std::string(R"({"wants_certificate": true, "newest": ")") + newest + R"("})");
    const Failure failure = failureOf([&] {
      const auto sock = peer.control();
      throw sock->failureOf(receiveAll(*sock).end);
    });
    EXPECT_EQ(failure.error, kClientCertificateWanted) << failure.serverText;
    EXPECT_THAT(failure.serverText, StartsWith("The server wants a certificate of its client"));
  }
}

}  // namespace
}  // namespace internet::tls_testing
