// SPDX-License-Identifier: MIT
// What must hold when the host does something drastic in the middle of an operation: it frees the client, or
// one of its handlers throws. Run with the sanitizers these tests also prove that nothing freed is used.
#include <chrono>
#include <stdexcept>
#include <thread>

#include "Src/SharedFlag.h"
#include "framework/ModuleState.h"
#include "tests/storm/Build.h"
#include "tests/storm/Count.h"
#include "tests/storm/RunnerTest.h"

namespace storm {
namespace {

using namespace std::chrono_literals;
using Lifetime = RunnerTest;

constexpr auto kPatience = 4s;  // less than it takes until a worker is ended by force

struct HandlerFailed : std::runtime_error {
  HandlerFailed() : std::runtime_error("the host's handler failed") {}
};

[[noreturn]] void fail() { throw HandlerFailed(); }

TEST_F(Lifetime, AThrowingMessageHandlerLeavesNoWorkerBehind) {
  mailbox.post(&fail);
  EXPECT_THROW(client->Run(), HandlerFailed);
  EXPECT_EQ(running, 0);
  script.attempt = [](QXFtpThread&) { return AttemptOutcome{.ok = true}; };
  EXPECT_TRUE(client->Run()) << "the client is usable afterwards";
}

TEST_F(Lifetime, AThrowingPollLeavesNoWorkerBehind) {
  script.onPoll = [this](QXBool&) -> bool {
    if (entered) fail();
    return false;
  };
  EXPECT_THROW(client->Run(), HandlerFailed);
  EXPECT_EQ(running, 0);
}

TEST_F(Lifetime, AHookThatThrowsInTheWorkerFailsTheOperation) {
  script.attempt = [this](QXFtpThread& record) {
    const Presence presence(running);
    record.pQXIP->OnIPError(12002, "text", record.pRetries);
    return AttemptOutcome{.ok = true};
  };
  script.onIPError = [](std::uint32_t, std::uint32_t*) { fail(); };
  EXPECT_FALSE(client->Run(3));
  EXPECT_EQ(running, 0);
}

// A cancelled worker that ends only after a message which it has posted itself was handled.
class UnwindingWorker : public RunnerTest {
 protected:
  void CancelAndHandle(const Mailbox::Work& react) {
    Count handled;
    script.attempt = [&](QXFtpThread&) {
      const Presence presence(running);
      AwaitStop();
      mailbox.post([&] {
        handled.add();
        react();
      });
      handled.waitFor(1);
      return AttemptOutcome{};
    };
    script.onPoll = [this](QXBool&) { return CancelOnceEntered(); };
    EXPECT_FALSE(client->Run());
    EXPECT_EQ(running, 0);
  }
};

TEST_F(UnwindingWorker, LetsMessagesFlow) {
  bool handled = false;
  CancelAndHandle([&] { handled = true; });
  EXPECT_TRUE(handled);
}

// Without the kill the thread's own destructor waited, which dispatches nothing.
TEST_F(UnwindingWorker, LetsMessagesFlowAlsoWhenAHandlerHasEndedTheWait) {
  Count handled;
  std::atomic<bool> wasHandled{false};
  script.attempt = [&](QXFtpThread&) {
    const Presence presence(running);
    AwaitStop();
    mailbox.post([&] { handled.add(); });
    wasHandled = handled.waitFor(1, kPatience);
    return AttemptOutcome{};
  };
  script.onPoll = [this](QXBool&) -> bool {
    if (entered) fail();
    return false;
  };
  EXPECT_THROW(client->Run(), HandlerFailed);
  EXPECT_TRUE(wasHandled);
  EXPECT_EQ(running, 0);
  dispatchAll();  // what was not handled knows what goes now
}

TEST_F(UnwindingWorker, IsNotLeftByAHandlerThatThrows) { CancelAndHandle(&fail); }

TEST_F(Lifetime, TheClientMayBeFreedByAMessage) {
  mailbox.post([this] { client.release()->Release(); });
  EXPECT_FALSE(client->Run(3));
  EXPECT_EQ(running, 0);
}

// Its workers went on with the memory that was freed.
TEST_F(Lifetime, TheClientMayBeFreedAfterTheHostHasShutItDown) {
  mailbox.post([this] {
    SetFlag(client->m_bInitialized, false);
    client.release()->Release();
    ReleaseModuleRef();  // a client that is not up keeps its own
  });
  EXPECT_FALSE(client->Run(3));
  EXPECT_EQ(running, 0);
}

TEST_F(Lifetime, TheClientMayBeFreedByOnPoll) {
  script.onPoll = [this](QXBool&) {
    if (entered && client) client.release()->Release();
    return false;
  };
  EXPECT_FALSE(client->Run());
}

TEST_F(Lifetime, TheClientMayBeFreedByAMessageOfTheRerun) {
  script.onPoll = [this](QXBool& reconnect) {
    if (script.calls.size() == 1) {
      reconnect = entered.exchange(false) ? 1 : 0;
    } else if (entered && client) {
      client.release()->Release();
    }
    return false;
  };
  EXPECT_FALSE(client->Run());
  EXPECT_EQ(script.calls.size(), 2u);
}

TEST_F(Lifetime, TheClientMayBeFreedByAMessageWhileACancelledWorkerUnwinds) {
  std::atomic<bool> freed{false};
  script.attempt = [&](QXFtpThread&) {
    const Presence presence(running);
    AwaitStop();
    mailbox.post([&] {
      client.release()->Release();
      freed = true;
    });
    platform::stoppableSleep(std::chrono::hours(1));
    return AttemptOutcome{};
  };
  script.onPoll = [this](QXBool&) { return CancelOnceEntered(); };
  EXPECT_FALSE(client->Run());
  if (!freed) dispatchAll();
  EXPECT_TRUE(freed);
}

TEST_F(Lifetime, TheClientMayBeFreedByAMessageOfANestedOperation) {
  Script innerScript{.attempt = [this](QXFtpThread&) { return Hang(); }};
  Client inner = makeClient(innerScript, nullptr);
  mailbox.post([&] {
    mailbox.post([this] { client.release()->Release(); });
    innerScript.onPoll = [this](QXBool&) { return client == nullptr; };
    EXPECT_FALSE(inner->Run()) << "cancelled once the outer client is gone";
  });
  EXPECT_FALSE(client->Run());
}

// The keep-alive worker needs no server: without a connection it sleeps its turns away.
class KeepAliveLifetime : public RunnerTest {
 protected:
  void SetUp() override { SetFlag(client->m_bConnected, true); }
};

TEST_F(KeepAliveLifetime, TheClientMayBeFreedByAMessage) {
  mailbox.post([this] { client.release()->Release(); });
  client->FTPKeepAlive();
}

TEST_F(KeepAliveLifetime, TheClientMayBeFreedByAnotherThreadAtAnyMoment) {
  for (int round = 0; round < kRounds; ++round) {
    client = makeClient(script, &error);
    SetFlag(client->m_bConnected, true);
    Count inside;
    mailbox.post([&] { inside.add(); });
    std::thread other([&] {
      inside.waitFor(1);
      // By the clock: with other programs beside it a yield can take a hundred times as long.
      const auto moment = std::chrono::steady_clock::now() + round % 64 * 5us;
      while (std::chrono::steady_clock::now() < moment) platform::yieldProcessor();
      client.release()->Release();
    });
    TQXIP* const object = client.get();
    object->FTPKeepAlive();
    other.join();
  }
}

TEST_F(KeepAliveLifetime, ReturnsWhenAMessageDisconnects) {
  mailbox.post([this] { EXPECT_TRUE(client->FTPDisconnect()); });
  client->FTPKeepAlive();
  EXPECT_EQ(client->m_bConnected, 0);
}

TEST_F(KeepAliveLifetime, ReturnsAtOnceOnAClientThatIsNotInitialised) {
  SetFlag(client->m_bInitialized, false);
  bool dispatched = false;
  mailbox.post([&] { dispatched = true; });
  client->FTPKeepAlive();
  EXPECT_FALSE(dispatched);
  dispatchAll();
  SetFlag(client->m_bInitialized, true);
}

TEST_F(KeepAliveLifetime, ReturnsAtOnceWithoutAConnection) {
  SetFlag(client->m_bConnected, false);
  client->FTPKeepAlive();
}

}  // namespace
}  // namespace storm
