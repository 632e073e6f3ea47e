// SPDX-License-Identifier: MIT
// The runner and the worker's frame by themselves: how an operation with a worker is cancelled, run again and
// repeated, and what it leaves in the object and in the error record.
#include <cstdio>
#include <new>
#include <string>
#include <vector>

#include "Src/SharedFlag.h"
#include "framework/ModuleState.h"
#include "tests/storm/Count.h"
#include "tests/storm/RunnerTest.h"

namespace storm {
namespace {

using Runner = RunnerTest;

void setMessage(TQXIP& client, const char* text) {
  std::snprintf(client.m_szMessage, sizeof client.m_szMessage, "%s", text);
}

TEST_F(Runner, ReturnsWhatItsWorkerStores) {
  script.attempt = [](QXFtpThread&) { return AttemptOutcome{.ok = true}; };
  EXPECT_TRUE(client->Run());
  EXPECT_EQ(script.done, std::vector<QXBool>{1});
  EXPECT_EQ(error.bSet, 0u);
}

TEST_F(Runner, CancelOnTheFirstPollEndsTheWorkerAndFails) {
  int polls = 0;
  script.onPoll = [&](QXBool&) { return ++polls > 0; };
  EXPECT_FALSE(client->Run());
  EXPECT_EQ(polls, 1);
  EXPECT_EQ(running, 0);
  EXPECT_EQ(script.done, std::vector<QXBool>{0});
  EXPECT_STREQ(client->m_szMessage, "TQXIP::Storm 'x' failed!");
  EXPECT_EQ(error.bSet & 0xFF, 1u);
}

TEST_F(Runner, WritesTheOperationsReportWhenCancelled) {
  script.onPoll = [this](QXBool&) { return CancelOnceEntered(); };
  EXPECT_FALSE(client->Run());
  EXPECT_NE(std::string(error.szText).find("TQXIP::Storm 'x' failed!"), std::string::npos) << error.szText;
  EXPECT_NE(std::string(error.szText).find(" 11]"), std::string::npos) << error.szText;
}

// What a worker may still try after it was asked to stop.
class StoppedWorker : public RunnerTest, public testing::WithParamInterface<const char*> {
 protected:
  AttemptOutcome Outlive(QXFtpThread& record) {
    const Presence presence(running);
    AwaitStop();
    const std::string what = GetParam();
    if (what == "fails") return {.ok = false, .error = 5};
    if (what == "succeeds") return {.ok = true};
    if (what == "reports") record.pQXIP->OnIPError(12002, "late", record.pRetries);
    if (what == "complains") record.pQXIP->OnFailure();
    if (what == "asks") static_cast<void>(record.pQXIP->FTPFileSize("y", 3, 0, 0));
    platform::throwIfStopped();
    return {};
  }
};

TEST_P(StoppedWorker, WritesNoMessageNoReportAndNoResult) {
  script.reports = false;
  script.attempt = [this](QXFtpThread& record) { return Outlive(record); };
  script.onPoll = [this](QXBool&) { return CancelOnceEntered(); };
  setMessage(*client, "as it was");
  const std::string message = client->m_szMessage;
  EXPECT_FALSE(client->Run(3));
  EXPECT_EQ(script.end, WaitEnd::cancelled);
  EXPECT_EQ(script.done, std::vector<QXBool>{0});
  EXPECT_EQ(client->m_szMessage, message);
  EXPECT_EQ(error.bSet, 0u);
}

INSTANTIATE_TEST_SUITE_P(Runner, StoppedWorker,
                         testing::Values("fails", "succeeds", "reports", "complains", "asks", "unwinds"),
                         [](const auto& tried) { return std::string(tried.param); });

// The first call is abandoned through *pbReconnect; what the second one does is the test's.
class Reconnect : public RunnerTest {
 protected:
  void SetUp() override {
    script.onPoll = [this](QXBool& reconnect) {
      if (script.calls.size() == 1 && entered) reconnect = 1;
      return false;
    };
  }
};

TEST_F(Reconnect, RunsTheOperationOnceMoreThroughItsSlotWithRetryCountOne) {
  script.attempt = [this](QXFtpThread&) {
    return script.calls.size() == 1 ? Hang() : AttemptOutcome{.ok = true};
  };
  EXPECT_FALSE(client->Run(7)) << "the first worker stored no success";
  EXPECT_EQ(script.calls, (std::vector<std::uint32_t>{7, 1}));
  EXPECT_EQ(script.done, (std::vector<QXBool>{1, 0})) << "the inner call ends first";
}

TEST_F(Reconnect, LetsTheFirstWorkersStoredSuccessDecide) {
  script.shape.storesOutcome = false;
  script.attempt = [this](QXFtpThread& record) {
    record.bResult = 1;
    return script.calls.size() == 1 ? Hang() : AttemptOutcome{.ok = true};
  };
  EXPECT_TRUE(client->Run());
}

TEST_F(Reconnect, FailsWhenTheSecondRunFailsThoughTheFirstStoredASuccess) {
  script.shape.storesOutcome = false;
  script.attempt = [this](QXFtpThread& record) {
    const bool first = script.calls.size() == 1;
    record.bResult = first ? 1 : 0;
    return first ? Hang() : AttemptOutcome{.ok = true};
  };
  EXPECT_FALSE(client->Run());
}

TEST_F(Reconnect, IsNothingWhenTheHostCancelsAtTheSameTime) {
  script.onPoll = [](QXBool& reconnect) {
    reconnect = 1;
    return true;
  };
  EXPECT_FALSE(client->Run());
  EXPECT_EQ(script.calls.size(), 1u);
}

// Each body looks for what the attempts before it have left.
class FailingWorker : public RunnerTest {
 protected:
  using Clock = std::chrono::steady_clock;

  void SetUp() override {
    script.attempt = [this](QXFtpThread& record) {
      starts.push_back(Clock::now());
      messages.emplace_back(record.pQXIP->m_szMessage);
      reports.push_back(record.pQXIP->m_pErrorInfo->bSet & 0xFF);
      const auto attempt = static_cast<std::uint32_t>(starts.size());
      setMessage(*record.pQXIP, ("attempt " + std::to_string(attempt)).c_str());
      return AttemptOutcome{.ok = attempt == successfulAttempt, .error = 100 + attempt};
    };
    script.shape.pause = std::chrono::milliseconds(10);
    script.shape.reportsAttemptError = true;
    setMessage(*client, "before");
  }

  std::uint32_t successfulAttempt = 0;
  std::vector<Clock::time_point> starts;
  std::vector<std::string> messages;
  std::vector<std::uint32_t> reports;
};

TEST_F(FailingWorker, RunsFourTimesTenMillisecondsApartForThreeRetries) {
  EXPECT_FALSE(client->Run(3));
  ASSERT_EQ(starts.size(), 4u);
  for (std::size_t i = 1; i < starts.size(); ++i)
    EXPECT_GE(starts[i] - starts[i - 1], std::chrono::milliseconds(10));
}

TEST_F(FailingWorker, WritesNoFailedLineAndNoReportBeforeTheLastAttemptHasEnded) {
  EXPECT_FALSE(client->Run(3));
  EXPECT_EQ(messages, (std::vector<std::string>{"before", "attempt 1", "attempt 2", "attempt 3"}));
  EXPECT_EQ(reports, std::vector<std::uint32_t>(4, 0));
}

TEST_F(FailingWorker, ReportsTheLastAttemptFirstAndTheRecordKeepsThat) {
  EXPECT_FALSE(client->Run(3));
  EXPECT_EQ(error.nError, 104u);
  EXPECT_NE(std::string(error.szText).find("TQXIP::StormThr 'x' failed!"), std::string::npos) << error.szText;
  EXPECT_STREQ(client->m_szMessage, "TQXIP::Storm 'x' failed!");
}

TEST_F(FailingWorker, LeavesTheReportOfItsLastFailureWhenARetrySucceeds) {
  successfulAttempt = 3;
  EXPECT_TRUE(client->Run(5));
  EXPECT_EQ(starts.size(), 3u);
  EXPECT_EQ(error.nError, 102u);
}

TEST_F(FailingWorker, WithoutMemoryIsOneAndIsRetried) {
  script.attempt = [this](QXFtpThread&) -> AttemptOutcome {
    starts.push_back(Clock::now());
    throw std::bad_alloc();
  };
  EXPECT_FALSE(client->Run(2));
  EXPECT_EQ(starts.size(), 3u);
  EXPECT_EQ(error.nError, 8u);
  EXPECT_NE(std::string(error.szText).find("[8 QXIP 22]"), std::string::npos) << error.szText;
}

TEST_F(FailingWorker, HasOneAttemptWithoutRetries) {
  EXPECT_FALSE(client->Run(0));
  EXPECT_EQ(starts.size(), 1u);
  EXPECT_EQ(script.done, std::vector<QXBool>{1});
}

TEST_F(Runner, StartsNoWorkerOnAClientThatIsNotInitialised) {
  std::atomic<int> bodies{0};
  script.attempt = [&](QXFtpThread&) {
    ++bodies;
    return AttemptOutcome{.ok = true};
  };
  int polls = 0;
  script.onPoll = [&](QXBool&) { return ++polls < 0; };
  SetFlag(client->m_bInitialized, false);
  EXPECT_FALSE(client->Run(3));
  EXPECT_EQ(bodies, 0);
  EXPECT_EQ(polls, 0);
  EXPECT_EQ(script.done, std::vector<QXBool>{0});
  SetFlag(client->m_bInitialized, true);
}

TEST(Worker, WithoutARecordDoesNothing) {
  RunWorker(nullptr, {.failedLine = &kWorkerSite}, [](QXFtpThread&) -> AttemptOutcome {
    ADD_FAILURE() << "ran";
    return {};
  });
}

TEST_F(Runner, DoesNotPollWhileTheWorkerUpdatesTheCounters) {
  std::atomic<int> polls{0};
  Count turns;
  script.polling = Polling::unlessUpdating;
  script.onPoll = [&](QXBool&) { return ++polls < 0; };
  // One message is dispatched per turn at most: a turn has passed once one posted now was seen.
  const auto passTurns = [&](int count) {
    for (int turn = turns.value() + 1; count > 0; --count, ++turn) {
      mailbox.post([&] { turns.add(); });
      turns.waitFor(turn);
    }
  };
  int pollsWhileUpdating = -1;
  script.attempt = [&](QXFtpThread& record) {
    SetFlag(record.bUpdating, true);
    passTurns(2);  // the poll that was running is over
    const int before = polls;
    passTurns(50);
    pollsWhileUpdating = polls - before;
    SetFlag(record.bUpdating, false);
    while (polls == before) platform::yieldProcessor();  // hangs if polling does not come back
    return AttemptOutcome{.ok = true};
  };
  EXPECT_TRUE(client->Run());
  EXPECT_EQ(pollsWhileUpdating, 0);
}

TEST_F(Runner, DoesNotPollWhereTheOperationDoesNotAskFor) {
  int polls = 0;
  script.polling = Polling::none;
  script.onPoll = [&](QXBool&) { return ++polls > 0; };
  script.attempt = [](QXFtpThread&) { return AttemptOutcome{.ok = true}; };
  EXPECT_TRUE(client->Run());
  EXPECT_EQ(polls, 0);
}

// The caller has a framework state of its own installed.
class ModuleStates : public RunnerTest {
 protected:
  void TearDown() override {
    EXPECT_EQ(AfxGetModuleState(), &hosts);
    RunnerTest::TearDown();
  }

  AFX_MODULE_STATE hosts;
  AFX_MAINTAIN_STATE2 installed{&hosts};
};

TEST_F(ModuleStates, AreTheLibrarysInTheWorkerAndInOnPollAndRestoredAfterwards) {
  std::atomic<AFX_MODULE_STATE*> inWorker{nullptr};
  AFX_MODULE_STATE* inPoll = nullptr;
  Count polled;
  script.onPoll = [&](QXBool&) {
    inPoll = AfxGetModuleState();
    polled.add();
    return false;
  };
  script.attempt = [&](QXFtpThread&) {
    inWorker = AfxGetModuleState();
    polled.waitFor(1);
    return AttemptOutcome{.ok = true};
  };
  EXPECT_TRUE(client->Run());
  EXPECT_EQ(inWorker, AfxGetAppModuleState());
  EXPECT_EQ(inPoll, AfxGetAppModuleState());
}

TEST_F(ModuleStates, AreRestoredAfterACancel) {
  script.onPoll = [this](QXBool&) { return CancelOnceEntered(); };
  EXPECT_FALSE(client->Run());
}

TEST_F(ModuleStates, AreRestoredWhenTheClientIsGone) {
  mailbox.post([this] { client.release()->Release(); });
  EXPECT_FALSE(client->Run());
}

}  // namespace
}  // namespace storm
