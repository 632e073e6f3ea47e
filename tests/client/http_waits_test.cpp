// SPDX-License-Identifier: MIT
// A web server that keeps its caller waiting before the body begins used to freeze the host for as long as
// the time-outs last: nobody was asked whether to go on while it connected, sent, and waited for the head.
#include <chrono>
#include <memory>

#include "framework/internet/net/Sock.h"
#include "tests/client/HttpMemoryTest.h"
#include "tests/unit/TestQueue.h"

namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

// Where a server leaves its caller waiting.
struct Phase {
  const char* name;
  void (*stall)(MemoryWeb& server);
  std::size_t links;  // connections until then
  bool lengthAlone = false;
};

const Phase kPhases[] = {
    {"Connecting", [](MemoryWeb& server) { server.firstState = MemoryWeb::State::connecting; }, 1},
    {"Sending", [](MemoryWeb& server) { server.firstRoom = 20; }, 1},
    {"TheHead", [](MemoryWeb&) {}, 1},
    {"HalfTheHead", [](MemoryWeb& server) { server.answer = "HTTP/1.1 200 OK\r\nContent-"; }, 1},
    {"TheRedirectsHead",
     [](MemoryWeb& server) {
       server.answer = "HTTP/1.1 302 Found\r\nLocation: http://127.0.0.1/b\r\n\r\n";
       server.onAnswer = [&server] { server.answer.clear(); };
     },
     2},
    {"TheLength", [](MemoryWeb& server) { server.answer = "HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\n"; },
     1, true}};

class HttpWaits : public HttpMemoryTest, public testing::WithParamInterface<Phase> {
 protected:
  HttpWaits() {
    GetParam().stall(server);
    write("older");
  }
  std::uint32_t fetch() {
    std::uint64_t length = 0;
    return client.HTTPDownloadFile("127.0.0.1", "/a", 80, local.c_str(),
                                   GetParam().lengthAlone ? &length : nullptr, 11, 22);
  }
  // No box, no trace of a file or a connection.
  void expectLeft() {
    EXPECT_EQ(content(), "older");
    EXPECT_EQ(server.links.size(), GetParam().links);
    EXPECT_EQ(network.openSockets(), 0u);
  }
};

TEST_P(HttpWaits, OnPollEndsTheCallWithin100Milliseconds) {
  const auto start = network.now();
  client.poll = [&](auto... given) -> QXBool {
    expectDownloads(given...);
    return network.now() - start >= milliseconds(1'000);  // the user has pressed the button
  };
  EXPECT_TRUE(boxesOf([&] { EXPECT_EQ(fetch(), 0u); }).empty());
  EXPECT_LE(network.now() - start, milliseconds(1'100));
  expectLeft();
}

TEST_P(HttpWaits, OnPollIsAskedEvery50Milliseconds) {
  std::vector<milliseconds> times;
  const auto start = network.now();
  client.poll = [&](auto...) -> QXBool {
    times.push_back(std::chrono::duration_cast<milliseconds>(network.now() - start));
    return times.size() == 3;
  };
  EXPECT_EQ(fetch(), 0u);
  EXPECT_EQ(times, (std::vector{milliseconds(50), milliseconds(100), milliseconds(150)}));
}

TEST_P(HttpWaits, MessagesAreDispatched) {
  bool dispatched = false;
  TestQueue queue([&](unsigned) { dispatched = true; });
  queue.post(1);
  client.poll = [&](auto...) -> QXBool { return dispatched; };
  EXPECT_EQ(fetch(), 0u);
  EXPECT_TRUE(dispatched);
}

TEST_P(HttpWaits, AMessageMayFreeTheClient) {
  auto own = std::make_unique<RecordingClient>();
  TestQueue queue([&](unsigned) { own.reset(); });
  queue.post(1);
  std::uint64_t length = 0;
  EXPECT_TRUE(boxesOf([&] {
                EXPECT_EQ(own->HTTPDownloadFile("127.0.0.1", "/a", 80, local.c_str(),
                                                GetParam().lengthAlone ? &length : nullptr, 0, 0),
                          0u);
              }).empty());
  EXPECT_EQ(own, nullptr);
  expectLeft();
}

INSTANTIATE_TEST_SUITE_P(Phases, HttpWaits, testing::ValuesIn(kPhases),
                         [](const auto& instance) { return instance.param.name; });

using HttpSteps = HttpMemoryTest;

// A byte every 10 ms, none of which is waited for so long by itself.
TEST_F(HttpSteps, OnPollIsAskedWhileAHeadTricklesIn) {
  const std::string whole = head(1) + 'x';
  server.onAnswer = [&] {
    for (const char byte : whole)
      network.later(milliseconds(10), [&, byte] { server.links[0]->toClient += byte; });
  };
  std::size_t polls = 0;
  pollBy([&] { ++polls; });
  EXPECT_EQ(fetch(), 1u);
  EXPECT_EQ(polls, (whole.size() - 1) / 5 + 1) << "and one for the body";
  EXPECT_EQ(content(), "x");
}

TEST_F(HttpSteps, AServerThatDoesNotTarryHasItAskedForTheBodyAlone) {
  server.answer = head(4096) + std::string(4096, 'x');
  int polls = 0;
  pollBy([&] { ++polls; });
  EXPECT_EQ(fetch(), 1u);
  EXPECT_EQ(polls, 1);
}

// What a host does in there may wait for the network as well, on the same thread.
TEST_F(HttpSteps, OnPollIsNotAskedWithinItself) {
  server.onAnswer = [&] { network.later(seconds(3), [&] { server.links[0]->toClient = head(0); }); };
  bool inside = false;
  int polls = 0;
  pollBy([&] {
    EXPECT_FALSE(inside);
    inside = true;
    if (++polls == 1) static_cast<void>(internet::wait({}, internet::Deadline(seconds(1))));
    inside = false;
  });
  EXPECT_EQ(fetch(), 1u);
  EXPECT_GT(polls, 1) << "later it is";
}

}  // namespace
