// SPDX-License-Identifier: MIT
// Encrypted streams: what goes through, how they end, and what they resume.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <nlohmann/json.hpp>
#include <string>
#include <thread>
#include <vector>

#include "tests/internet/TlsPeer.h"
#include "tests/support/Pattern.h"
#include "tests/support/TestTrust.h"

namespace internet::tls_testing {
namespace {

using platform::IoStatus;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

constexpr std::uint64_t kMegabytes = 3'000'000;

TEST(TlsStream, BytesGoBothWays) {
  Peer peer(R"({"connections": [{"steps": [{"send": {"text": "220 Welcome"}}, {"receive": 4},
                                           {"say_closed": true}]}]})");
  const auto sock = peer.control();
  ASSERT_EQ(sendAll(*sock, "QUIT", Deadline(kLong)), IoStatus::done);
  const Received all = receiveAll(*sock);
  EXPECT_EQ(all.bytes, "220 Welcome");
  EXPECT_EQ(all.end, IoStatus::closed);
  EXPECT_EQ(peer.closed(1).at("received"), "QUIT");
}

TEST(TlsStream, CarriesMegabytesInRecordsOfAnySize) {
  Peer peer(R"({"connections": [
      {"steps": [{"send": {"size": 3000000, "seed": 5}}, {"say_closed": true}]},
      {"steps": [{"send": {"size": 20000, "seed": 5}, "record": 1}, {"say_closed": true}]}]})");
  const testing_support::Pattern pattern(5);
  for (const std::uint64_t size : {kMegabytes, std::uint64_t{20'000}}) {
    const auto sock = peer.data();
    const Received all = receiveAll(*sock);
    EXPECT_EQ(all.bytes.size(), size);
    EXPECT_TRUE(pattern.matches(0, all.bytes.data(), all.bytes.size()));
    EXPECT_EQ(all.end, IoStatus::closed);
  }
}

// The caller waits for the socket, which does not know of bytes that the stream holds back.
TEST(TlsStream, NothingReadableIsHeldBack) {
  Peer peer(
      R"({"connections": [{"steps": [{"send": {"size": 5000, "seed": 1}, "record": 100}, {"gate": "g"}]}]})");
  const auto sock = peer.data();
  peer.server.waitAtGate("g");
  std::vector<char> buffer(5000);
  const auto head = receiveSome(*sock, std::span(buffer).first(777), Deadline(kLong));
  EXPECT_EQ(head.bytes, 777U) << "which is no end of a record";
  EXPECT_EQ(sock->receive(buffer.data() + 777, buffer.size() - 777).bytes, buffer.size() - 777);
  EXPECT_TRUE(testing_support::Pattern(1).matches(0, buffer.data(), buffer.size()));
  EXPECT_EQ(sock->receive(buffer.data(), buffer.size()).status, IoStatus::wouldBlock);
}

TEST(TlsStream, APeerThatReadsLateGetsEverything) {
  Peer peer(R"({"connections": [{"steps": [{"gate": "g"}, {"receive_all": true}]}]})");
  const auto sock = peer.data();
  std::string sent;
  std::vector<char> block(100'000);
  const testing_support::Pattern pattern(9);
  for (;;) {
    pattern.fill(sent.size(), block.data(), block.size());
    const auto result = sock->send(block.data(), block.size());
    if (result.status == IoStatus::wouldBlock) break;
    ASSERT_EQ(result.status, IoStatus::done);
    sent.append(block.data(), result.bytes);
    block.assign(block.size(), '\0');  // the stream has a copy
  }
  EXPECT_TRUE(sock->interest(true, false).write) << "there are bytes that wait for room";
  peer.server.release("g");
  IoStatus ended = IoStatus::wouldBlock;
  while ((ended = sock->shutdownSend()) == IoStatus::wouldBlock) {
    std::array watched{sock->interest(false, true)};
    ASSERT_TRUE(wait(watched, Deadline(kLong)));
  }
  EXPECT_EQ(ended, IoStatus::done);
  EXPECT_FALSE(sock->interest(true, false).write);
  const auto closed = peer.closed(1);
  EXPECT_EQ(closed.at("how"), "done") << "the end was announced";
  EXPECT_EQ(closed.at("bytes"), sent.size());
  EXPECT_EQ(closed.at("sha256"), sha256Of(sent));
}

TEST(TlsStream, AnEndThatWasNotAnnouncedIsABreak) {
  Peer peer(R"({"connections": [{"steps": [{"send": {"text": "half"}}]}]})");
  const auto sock = peer.control();
  const Received all = receiveAll(*sock);
  EXPECT_EQ(all.bytes, "half");
  EXPECT_EQ(all.end, IoStatus::reset);
  EXPECT_EQ(sock->failureOf(all.end).error, kConnectionReset);
  char more = 0;
  EXPECT_EQ(sock->receive(&more, 1).status, IoStatus::reset) << "once ended, for good";
}

TEST(TlsStream, AnEndOfOursIsAnnouncedOnce) {
  Peer peer(
      R"({"connections": [{"steps": [{"receive_all": true}, {"send": {"text": "226"}}, {"say_closed": true}]}]})");
  const auto sock = peer.control();
  EXPECT_EQ(sock->shutdownSend(), IoStatus::done);
  EXPECT_EQ(sock->shutdownSend(), IoStatus::done);
  const Received all = receiveAll(*sock);
  EXPECT_EQ(all.bytes, "226") << "the peer's stream goes on";
  EXPECT_EQ(all.end, IoStatus::closed);
  EXPECT_EQ(peer.closed(1).at("how"), "done");
}

TEST(TlsStream, ABrokenConnectionIsNoFaultOfTheEncryption) {
  Peer peer(R"({"connections": [{"steps": [{"send": {"text": "a"}}], "end": "reset"}]})");
  const auto sock = peer.control();
  EXPECT_EQ(receiveAll(*sock).end, IoStatus::reset);
}

TEST(TlsStream, ARecordThatCannotBeReadIsAFaultOfTheEncryption) {
  Peer peer(
      R"({"connections": [{"steps": [{"send": {"text": "220"}},
           {"raw": "\u0017\u0003\u0003\u0000\u0020not a record of ours and not long either"},
                                           {"gate": "g"}]}]})");
  const auto sock = peer.control();
  const Received all = receiveAll(*sock);
  EXPECT_EQ(all.bytes, "220");
  EXPECT_EQ(all.end, IoStatus::failed);
  const Failure failure = sock->failureOf(all.end);
  EXPECT_EQ(failure.error, kSecureChannelFailed);
  EXPECT_THAT(failure.serverText, StartsWith("The encryption of the connection has failed"));
}

TEST(TlsStream, TellsWhatItIs) {
  Peer peer("{}");
  peer.control();
  EXPECT_THAT(peer.login->description(), StartsWith("TLS 1."));
  EXPECT_THAT(peer.login->description(), HasSubstr(", TLS_"));
  EXPECT_THAT(peer.login->description(), Not(HasSubstr("resumed")));
}

TEST(TlsStream, SpeaksTls12AloneWhereThatIsWanted) {
  TlsPolicy older;
  older.onlyTls12 = true;
  Peer peer("{}", older);
  peer.control();
  EXPECT_THAT(peer.login->description(), StartsWith("TLS 1.2, TLS_ECDHE_"));
}

// Under Wine a login whose data resumes nothing took it.
TEST(TlsStream, AServerOfAnOlderVersionIsRefused) {
  const Peer peer(R"({"newest": "1.1"})");
  for (const bool resumesData : {true, false}) {
    TlsLogin login(kName, {}, resumesData);
    EXPECT_EQ(failureOf([&] { secured(login, peer.server); }).error, kSecureChannelFailed) << resumesData;
  }
}

TEST(TlsStream, LoginsOnSeveralThreadsKeepOutOfEachOthersWay) {
  constexpr std::uint64_t kSize = 100'000;
  const fixture::ScriptedTls server(
      R"({"connections": [{"steps": [{"send": {"size": 100000, "seed": 3}}, {"say_closed": true}]}]})");
  testing_support::trustTestAuthority();
  std::array<std::string, 4> received;
  std::vector<std::thread> threads;
  threads.reserve(received.size());
  for (std::string& bytes : received) {
    threads.emplace_back([&bytes, &server] {
      TlsLogin login(kName, {});
      receiveAll(*secured(login, server));
      bytes = receiveAll(*secured(login, server, platform::TlsUse::data)).bytes;
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (const std::string& bytes : received) {
    EXPECT_EQ(bytes.size(), kSize);
    EXPECT_TRUE(testing_support::Pattern(3).matches(0, bytes.data(), bytes.size()));
  }
}

}  // namespace
}  // namespace internet::tls_testing
