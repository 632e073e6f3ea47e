// SPDX-License-Identifier: MIT
// Peers that break the handshake off, spoil it, or let it hang.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <nlohmann/json.hpp>

#include "framework/platform/process.h"
#include "tests/internet/CancelTest.h"
#include "tests/internet/TlsPeer.h"
#include "tests/support/ProcessCounters.h"

namespace internet::tls_testing {
namespace {

using internet_tests::expectPrompt;
using internet_tests::latencyMs;
using ::testing::AnyOf;
using ::testing::StartsWith;

// Of the handshake, as the server sends it: TLS 1.2 has two flights, TLS 1.3 one and then its tickets.
struct Flight {
  const char* newest;
  int number;
};
constexpr Flight kFlights[] = {{"1.2", 1}, {"1.2", 2}, {"1.3", 1}};

std::string spoilt(const Flight& flight, const char* how) {
  return std::string(R"({"newest": ")") + flight.newest + R"(", "connections": [{"flight": {"number": )" +
         std::to_string(flight.number) + R"(, "does": ")" + how + R"(", "gate": "g"}}]})";
}

TEST(TlsHostile, GarbageInAFlightIsAFaultOfTheEncryption) {
  for (const Flight& flight : kFlights) {
    SCOPED_TRACE(std::string(flight.newest) + ", flight " + std::to_string(flight.number));
    Peer peer(spoilt(flight, "garbage"));
    const Failure failure = failureOf([&] { peer.control(); });
    EXPECT_EQ(failure.error, kSecureChannelFailed);
    EXPECT_THAT(failure.serverText, StartsWith("The encryption of the connection has failed"));
  }
}

TEST(TlsHostile, AFlightThatEndsInTheMiddleIsABrokenConnection) {
  for (const Flight& flight : kFlights) {
    SCOPED_TRACE(std::string(flight.newest) + ", flight " + std::to_string(flight.number));
    Peer cut(spoilt(flight, "cut"));
    EXPECT_EQ(failureOf([&] { cut.control(); }).error, kConnectionAborted);
    Peer reset(spoilt(flight, "reset"));
    EXPECT_THAT(failureOf([&] { reset.control(); }).error, AnyOf(kConnectionReset, kConnectionAborted));
  }
}

TEST(TlsHostile, AFlightMayComeByteByByte) {
  for (const Flight& flight : kFlights) {
    SCOPED_TRACE(std::string(flight.newest) + ", flight " + std::to_string(flight.number));
    Peer peer(spoilt(flight, "bytewise"));
    EXPECT_NE(peer.control(), nullptr);
  }
}

TEST(TlsHostile, AFlightThatStallsEndsWithTheDeadline) {
  for (const Flight& flight : kFlights) {
    Peer peer(spoilt(flight, "stall"));
    const auto shakeHands = [&] {
      peer.login->secure(connectTo(peer.server), platform::TlsUse::control,
                         Deadline(std::chrono::milliseconds(200)));
    };
    EXPECT_EQ(failureOf(shakeHands).error, kTimeout);
  }
}

TEST(TlsHostile, AWorkerLeavesAStalledFlightAtOnce) {
  for (const Flight& flight : kFlights) {
    const std::string place =
        std::string("TLS ") + flight.newest + ", flight " + std::to_string(flight.number);
    expectPrompt(place.c_str(), [&] {
      Peer peer(spoilt(flight, "stall"));
      return latencyMs([&] { peer.control(); }, [&] { peer.server.waitAtGate("g"); });
    });
  }
}

// A second handshake could lead to somebody else.
TEST(TlsHostile, NobodyShakesHandsTwice) {
  Peer peer(R"({"connections": [{"renegotiates": true}]})");
  const auto sock = peer.control();
  const Received all = receiveAll(*sock);
  EXPECT_EQ(all.bytes, "220 Hello\r\n");
  EXPECT_EQ(sock->failureOf(all.end).error, kSecureChannelFailed);
  EXPECT_EQ(peer.closed(1).at("how"), "refused");
}

TEST(TlsHostile, AServerThatSpeaksNoTlsIsAFaultOfTheEncryption) {
  const fixture::ScriptedFtp plain;
  TlsLogin login(kName, {});
  const Failure failure = failureOf([&] { secured(login, plain); });
  EXPECT_EQ(failure.error, kSecureChannelFailed);
}

TEST(TlsHostile, AServerThatSaysNothingEndsWithTheDeadline) {
  const fixture::Blackhole silent;
  TlsLogin login(kName, {});
  const auto shakeHands = [&] {
    login.secure(connectTo(silent), platform::TlsUse::control, Deadline(std::chrono::milliseconds(200)));
  };
  EXPECT_EQ(failureOf(shakeHands).error, kTimeout);
}

TEST(TlsHostile, AWaitThatGivesUpGivesNoStream) {
  Peer peer(spoilt(kFlights[0], "stall"));
  int waits = 0;
  const auto gaveUp = peer.login->secure(connectTo(peer.server), platform::TlsUse::control,
                                         [&](const platform::SocketInterest& interest) {
                                           std::array watched{interest};
                                           return ++waits < 2 && wait(watched, Deadline(kLong));
                                         });
  EXPECT_EQ(gaveUp, nullptr);
  EXPECT_EQ(waits, 2);
}

// What one handshake keeps, some hundred make visible. QX_HANDSHAKES asks for more of them.
TEST(TlsHostile, HandshakesLeaveNothingBehind) {
  const char* const more = std::getenv("QX_HANDSHAKES");
  const int logins = more ? std::stoi(more) / 2 : 60;  // two handshakes each
  constexpr std::uint64_t kMost = std::uint64_t{QX_MEMORY_SLACK_MIB} << 20U;
  Peer peer(R"({"connections": [{"steps": [{"send": {"text": "220"}}]}]})");
  const auto once = [&] {
    TlsLogin login(kName, {});
    const auto control = secured(login, peer.server);
    std::array<char, 8> greeting;
    static_cast<void>(receiveSome(*control, greeting, Deadline(kLong)));
    secured(login, peer.server, platform::TlsUse::data);
  };
  for (int i = 0; i < logins / 2; ++i) once();
  const auto before = testing_support::processCounters();
  for (int i = 0; i < logins; ++i) once();
  const auto after = testing_support::processCounters();
  EXPECT_LE(after.handles, before.handles + testing_support::kLockHandles);
  EXPECT_LE(after.residentBytes, before.residentBytes + kMost);
}

}  // namespace
}  // namespace internet::tls_testing
