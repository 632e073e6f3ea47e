// SPDX-License-Identifier: MIT
#include "framework/platform/socket.h"

#include <gtest/gtest.h>

#include <array>
#include <thread>
#include <vector>

#include "framework/internet/net/Sock.h"
#include "framework/platform/process.h"
#include "framework/platform/stop_token.h"
#include "tests/support/ProcessCounters.h"

namespace platform {
namespace {

using std::chrono::milliseconds;
constexpr milliseconds kLong{60'000};

SocketAddress loopback(bool v6 = false) {
  SocketAddress address;
  address.v6 = v6;
  if (v6) {
    address.host[15] = 1;
  } else {
    address.host = {127, 0, 0, 1};
  }
  return address;
}

bool waitToRead(const Socket& socket) {
  std::array interest{SocketInterest{&socket, true, false}};
  return waitForSockets(interest, kLong) == Wake::ready;
}

bool waitToWrite(const Socket& socket) {
  std::array interest{SocketInterest{&socket, false, true}};
  return waitForSockets(interest, kLong) == Wake::ready;
}

// Two ends of one connection.
struct Pair {
  explicit Pair(bool v6 = false) {
    EXPECT_TRUE(startSockets());
    EXPECT_TRUE(listener.listen(loopback(v6)));
    IoStatus status = near.connect(*listener.localAddress());
    while (status == IoStatus::wouldBlock) {
      EXPECT_TRUE(waitToWrite(near));
      status = near.connectResult();
    }
    EXPECT_EQ(status, IoStatus::done);
    while ((status = listener.accept(far, peer)) == IoStatus::wouldBlock) EXPECT_TRUE(waitToRead(listener));
    EXPECT_EQ(status, IoStatus::done);
  }

  // What comes next at the near end.
  IoResult receive() {
    for (;;) {
      const IoResult result = near.receive(buffer.data(), buffer.size());
      if (result.status != IoStatus::wouldBlock) return result;
      EXPECT_TRUE(waitToRead(near));
    }
  }

  Socket listener;
  Socket near;
  Socket far;
  SocketAddress peer;
  std::array<char, 1000> buffer{};
};

TEST(Socket, NoneIsInheritedByAProgramThatTheHostStarts) {
  ASSERT_TRUE(startSockets());
  const int before = testing_support::inheritableHandles();
  const Pair pair;
  EXPECT_EQ(testing_support::inheritableHandles(), before);
}

TEST(Socket, ConnectsInBothFamilies) {
  for (const bool v6 : {false, true}) {
    Pair pair(v6);
    EXPECT_EQ(pair.near.peerAddress()->port, pair.listener.localAddress()->port);
    EXPECT_EQ(pair.near.localAddress()->port, pair.peer.port);
    EXPECT_TRUE(pair.peer.sameHost(loopback(v6)));
    EXPECT_FALSE(pair.peer.sameHost(loopback(!v6)));
    EXPECT_EQ(addressText(pair.peer), v6 ? "::1" : "127.0.0.1");
    ASSERT_EQ(pair.far.send("hello", 5).bytes, 5u);
    EXPECT_EQ(pair.receive().bytes, 5u);
  }
}

TEST(Socket, ARefusedConnectFails) {
  ASSERT_TRUE(startSockets());
  Socket listener;
  ASSERT_TRUE(listener.listen(loopback()));
  const SocketAddress gone = *listener.localAddress();
  listener.close();
  Socket socket;
  IoStatus status = socket.connect(gone);
  while (status == IoStatus::wouldBlock) {
    ASSERT_TRUE(waitToWrite(socket));
    status = socket.connectResult();
  }
  EXPECT_EQ(status, IoStatus::failed);
}

TEST(Socket, TellsAnEndFromABreak) {
  Pair ended;
  ASSERT_EQ(ended.far.send("abc", 3).status, IoStatus::done);
  ended.far.close();
  EXPECT_EQ(ended.receive().bytes, 3u);
  EXPECT_EQ(ended.receive().status, IoStatus::closed);
  EXPECT_EQ(ended.receive().status, IoStatus::closed);

  Pair halfEnded;
  halfEnded.far.shutdownSend();
  EXPECT_EQ(halfEnded.receive().status, IoStatus::closed);

  Pair broken;
  broken.far.abort();
  EXPECT_FALSE(broken.far.isOpen());
  EXPECT_EQ(broken.receive().status, IoStatus::reset);
  EXPECT_EQ(broken.near.send("x", 1).status, IoStatus::reset);
}

TEST(Socket, BlocksWhenTheOtherEndDoesNotRead) {
  Pair pair;
  const std::vector<char> block(1'000'000);
  std::size_t sent = 0;
  IoResult result;
  while ((result = pair.near.send(block.data(), block.size())).status == IoStatus::done) sent += result.bytes;
  EXPECT_EQ(result.status, IoStatus::wouldBlock);
  EXPECT_GT(sent, 0u);
  std::vector<char> sink(1'000'000);
  std::size_t received = 0;
  while (received < sent) {
    const IoResult got = pair.far.receive(sink.data(), sink.size());
    if (got.status == IoStatus::wouldBlock) {
      ASSERT_TRUE(waitToRead(pair.far));
    } else {
      ASSERT_EQ(got.status, IoStatus::done);
      received += got.bytes;
    }
  }
  EXPECT_TRUE(waitToWrite(pair.near)) << "told again after it could not take more";
}

TEST(Socket, AMoveClosesWhatItReplaces) {
  Pair one;
  Pair two;
  one.near = std::move(two.near);
  EXPECT_FALSE(two.near.isOpen());
  std::array<char, 10> buffer;
  ASSERT_TRUE(waitToRead(one.far));
  EXPECT_EQ(one.far.receive(buffer.data(), buffer.size()).status, IoStatus::closed);
  Socket& same = one.near;
  one.near = std::move(same);
  EXPECT_TRUE(one.near.isOpen());
  ASSERT_EQ(two.far.send("x", 1).status, IoStatus::done);
  EXPECT_EQ(one.receive().bytes, 1u);
}

TEST(SocketWait, NamesTheReadyOne) {
  Pair quiet;
  Pair busy;
  std::array<char, 10> buffer;
  EXPECT_EQ(quiet.near.receive(buffer.data(), 10).status, IoStatus::wouldBlock);
  EXPECT_EQ(busy.near.receive(buffer.data(), 10).status, IoStatus::wouldBlock);
  // A fresh connection may tell once that it can be written to.
  std::array watched{SocketInterest{&quiet.near, true, false}, SocketInterest{},
                     SocketInterest{&busy.near, true, false}};
  while (waitForSockets(watched, milliseconds(50)) != Wake::timedOut) {
  }
  ASSERT_EQ(busy.far.send("x", 1).status, IoStatus::done);
  ASSERT_EQ(waitForSockets(watched, kLong), Wake::ready);
  EXPECT_FALSE(watched[0].ready);
  EXPECT_FALSE(watched[1].ready);
  EXPECT_TRUE(watched[2].ready);
}

TEST(SocketWait, EndsByTimeBySignalAndByStop) {
  EXPECT_EQ(waitForSockets({}, milliseconds(1)), Wake::timedOut);
  StopToken signal;
  EXPECT_EQ(waitForSockets({}, milliseconds(1), signal.nativeHandle()), Wake::timedOut);
  signal.raise();
  EXPECT_EQ(waitForSockets({}, kLong, signal.nativeHandle()), Wake::ready);

  StopToken stop;
  const StopToken::Scope scope(&stop);
  EXPECT_EQ(waitForSockets({}, kLong, signal.nativeHandle()), Wake::ready);
  stop.raise();
  EXPECT_EQ(waitForSockets({}, kLong, signal.nativeHandle()), Wake::stopped) << "ahead of everything else";
  EXPECT_EQ(waitForSockets({}, milliseconds(0)), Wake::stopped);
}

TEST(SocketWait, WakesWhenTheOtherThreadRaises) {
  StopToken stop;
  const StopToken::Scope scope(&stop);
  Pair pair;
  std::thread other([&] { stop.raise(); });
  std::array watched{SocketInterest{&pair.near, true, false}};
  Wake woken = Wake::ready;
  while (woken == Wake::ready) woken = waitForSockets(watched, kLong);
  EXPECT_EQ(woken, Wake::stopped);
  other.join();
}

TEST(Socket, ABrokenConnectionRaisesNoSignal) {
  Pair pair;
  pair.far.abort();
  EXPECT_EQ(pair.receive().status, IoStatus::reset);
  EXPECT_EQ(pair.near.send("x", 1).status, IoStatus::reset);
}

TEST(Deadline, RoundsUp) {
  EXPECT_EQ(internet::Deadline(milliseconds(0)).left(), milliseconds(0));
  EXPECT_TRUE(internet::Deadline(milliseconds(0)).passed());
  EXPECT_TRUE(internet::Deadline(milliseconds(-5)).passed());
  const internet::Deadline later(kLong);
  EXPECT_FALSE(later.passed());
  EXPECT_GT(later.left(), kLong / 2);
}

TEST(ConnectToAny, HasNothingToTryWithoutAnAddress) {
  EXPECT_EQ(internet::connectToAny({}, internet::Deadline(kLong)), nullptr);
}

}  // namespace
}  // namespace platform
