// SPDX-License-Identifier: MIT
// The host's window stays alive while an operation waits for a slow server.
#include <algorithm>
#include <iostream>
#include <thread>
#include <vector>

#include "tests/storm/Build.h"
#include "tests/storm/Count.h"
#include "tests/storm/RunnerTest.h"
#include "tests/support/Fixture.h"

namespace storm {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr int kMessages = 600;
constexpr auto kJudgedDelay = 5ms;
constexpr int kMostRounds = kJudgesTimes ? 10 : 3;

// Posts one message per millisecond, and notes how long each waited for its dispatch.
class Poster {
 public:
  explicit Poster(Mailbox& mailbox) : m_mailbox(mailbox) { m_delays.reserve(kMessages); }

  // On a thread of its own.
  void postAll() {
    auto next = Clock::now();
    for (int i = 0; i < kMessages; ++i) {
      std::this_thread::sleep_until(next += 1ms);
      m_mailbox.post([this, posted = Clock::now()] { note(Clock::now() - posted); });
    }
  }

  void waitUntilAllSeen() const { m_seen.waitFor(kMessages); }
  [[nodiscard]] int seen() const { return m_seen.value(); }
  // In rising order.
  [[nodiscard]] std::vector<Clock::duration> delays() const {
    auto sorted = m_delays;
    std::sort(sorted.begin(), sorted.end());
    return sorted;
  }

 private:
  void note(Clock::duration delay) {
    m_delays.push_back(delay);
    m_seen.add();
  }

  Mailbox& m_mailbox;
  std::vector<Clock::duration> m_delays;
  Count m_seen;
};

class Responsive : public RunnerTest {
 protected:
  void SetUp() override { client->FTPSetLogin(server.host().c_str(), "u", "p", server.port(), 1); }

  // The delays of the messages that are posted while a query waits for its server, in rising order. The
  // server answers when all of them were seen.
  std::vector<Clock::duration> DelaysDuringQuery() {
    server.hold("messages");
    Poster poster(mailbox);
    std::thread host([&] {
      poster.postAll();
      poster.waitUntilAllSeen();
      server.release("messages");
    });
    EXPECT_TRUE(client->FTPDirExist("/pub/there", 0, 0, 0)) << error.szText;
    EXPECT_EQ(poster.seen(), kMessages) << "the query cannot end before";
    host.join();
    return poster.delays();
  }

  // The same on a thread that does nothing but dispatch.
  std::vector<Clock::duration> DelaysWithoutAQuery() {
    Poster poster(mailbox);
    std::thread host([&] { poster.postAll(); });
    while (poster.seen() < kMessages) {
      dispatchAll();
      std::this_thread::yield();
    }
    host.join();
    return poster.delays();
  }

  fixture::ScriptedFtp server{R"({
    "reply_delay_ms": 20, "tree": {"/pub/there/": {}},
    "rules": [{"on": "MLSD", "do": [{"gate": "messages"}, "normal"]}]})"};
};

Clock::duration percentile(const std::vector<Clock::duration>& sorted, std::size_t percent) {
  return sorted[std::min(sorted.size() * percent / 100, sorted.size() - 1)];
}

void print(const std::vector<Clock::duration>& sorted) {
  const auto milliseconds = [&](std::size_t percent) {
    return std::chrono::duration<double, std::milli>(percentile(sorted, percent)).count();
  };
  std::cout << sorted.size() << " messages, ms until dispatched: median " << milliseconds(50)
            << ", 99th percentile " << milliseconds(99) << ", longest " << milliseconds(100) << '\n';
}

// Other programs on the machine delay everybody, so the least disturbed of a few rounds is judged: a delay
// that the library makes is there in each of them. Where even a thread that does nothing else cannot dispatch
// in time, that thread is the measure.
TEST_F(Responsive, MessagesAreDispatchedWhileAQueryWaitsForASlowServer) {
  auto best = Clock::duration::max();
  Clock::duration judged = kJudgedDelay;
  for (int round = 0; round < kMostRounds && best >= judged; ++round) {
    judged = std::max<Clock::duration>(judged, 3 * percentile(DelaysWithoutAQuery(), 99));
    const auto delays = DelaysDuringQuery();
    print(delays);
    best = std::min(best, percentile(delays, 99));
  }
  if (kJudgesTimes) {
    EXPECT_LT(best, judged);
  }
}

// These work on the caller's thread in one go.
TEST_F(Responsive, ListingsNeitherDispatchMessagesNorAskOnPoll) {
  server.release("messages");
  bool listing = true;
  bool dispatched = false;
  mailbox.post([&] {
    EXPECT_FALSE(listing);
    dispatched = true;
  });
  script.onPoll = [](QXBool&) {
    ADD_FAILURE() << "asked";
    return true;
  };
  std::uint32_t count = 0;
  EXPECT_TRUE(client->FTPGetDirectory("/pub", nullptr, &count, "*.*", 0));
  EXPECT_EQ(count, 1u);
  EXPECT_TRUE(client->FTPHasSubDir("/pub", 0));
  EXPECT_TRUE(client->FTPCountFolderItems("/pub", nullptr, nullptr, 0));
  listing = false;
  dispatchAll();
  EXPECT_TRUE(dispatched) << "the message waited";
}

}  // namespace
}  // namespace storm
