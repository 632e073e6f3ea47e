// SPDX-License-Identifier: MIT
// When FTPKeepAlive looks whether it goes on: the worker every 100 ms, the caller at once.
#include <algorithm>

#include "Src/SharedFlag.h"
#include "tests/storm/RunnerTest.h"

namespace storm {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr auto kTurn = 100ms;
constexpr auto kBegun = 30ms;  // its first turn has begun by then, as a rule
constexpr int kCalls = 20;     // some of them are not disturbed by other programs

struct Durations {
  Clock::duration shortest = Clock::duration::max();
  Clock::duration longest = Clock::duration::zero();
};

class KeepAliveTurn : public RunnerTest {
 protected:
  // How long the call takes in which `end` happens in a message.
  Clock::duration callUntil(void (*end)(TQXIP& ending)) {
    client = makeClient(script, &error);
    SetFlag(client->m_bConnected, true);
    const auto start = Clock::now();
    Mailbox::Work wait = [&] {
      if (Clock::now() - start < kBegun) {
        mailbox.post(wait);
      } else {
        end(*client);
      }
    };
    mailbox.post(wait);
    client->FTPKeepAlive();
    const auto duration = Clock::now() - start;
    dispatchAll();
    SetFlag(client->m_bInitialized, true);
    return duration;
  }

  Durations callsUntil(void (*end)(TQXIP& ending)) {
    Durations durations;
    for (int call = 0; call < kCalls; ++call) {
      const auto duration = callUntil(end);
      durations.shortest = std::min(durations.shortest, duration);
      durations.longest = std::max(durations.longest, duration);
    }
    return durations;
  }
};

TEST_F(KeepAliveTurn, OfTheWorkerLasts100Milliseconds) {
  const Durations durations = callsUntil([](TQXIP& ending) { ending.OnDisconnect(); });
  EXPECT_GE(durations.longest, kTurn);
  EXPECT_LT(durations.shortest, 2 * kTurn) << "it looks later than at its next turn";
}

TEST_F(KeepAliveTurn, IsNotAwaitedWhenTheClientIsShutDown) {
  const Durations durations = callsUntil([](TQXIP& ending) { SetFlag(ending.m_bInitialized, false); });
  EXPECT_LT(durations.shortest, kTurn);
}

}  // namespace
}  // namespace storm
