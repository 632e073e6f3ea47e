// SPDX-License-Identifier: MIT
// A thousand cancels in a row: the caller is free at once each time, and nothing of the workers is left.
#include <string>
#include <vector>

#include "Src/PrivateConnection.h"
#include "framework/internet/InternetFile.h"
#include "tests/storm/CancelStormTest.h"

namespace storm {
namespace {

constexpr const char* kServer = R"({
  "tree": {"/normal.txt": "still there", "/stalled.bin": {"size": 65536, "seed": 1}, "/silent.bin": "never sent"},
  "rules": [
    {"on": "RETR", "argument": "/stalled.bin", "do": [{"normal": {"stall_after": 4096, "gate": "never"}}]},
    {"on": "RETR", "argument": "/silent.bin", "do": ["silent"]},
    {"on": "MLST", "argument": "/stuck", "do": ["silent"]}
  ]})";

class CancelStorm : public CancelStormTest {
 protected:
  void SetUp() override {
    CancelStormTest::SetUp();
    LogInTo(server);
  }

  bool Operate() override { return client->Run(3); }
  void AfterRound() override {
    ASSERT_EQ(running, 0);
    ASSERT_EQ(script.done.back(), 0);
  }

  // For a worker that is stuck where only the server knows: waits until that has seen this command in the
  // round.
  void WaitAtServerFor(const char* verb) {
    untilStuck = [this, verb] { server.waitForCommand(verb, started); };
  }

  void Storm() { CancelStormTest::Storm(kRounds, 100ms); }

  void ExpectNormalWork() override {
    LogInTo(server);
    script.attempt = [](QXFtpThread& record) {
      return AttemptOutcome{.ok = record.pQXIP->FTPFileSize("/normal.txt", 0, 0, 0) == 11};
    };
    EXPECT_TRUE(client->Run());
    server.waitUntilAllClosed();
  }

  // A worker that works on a connection of its own.
  void OnConnection(std::function<bool(CFtpConnection& connection)> work) {
    script.attempt = [this, work = std::move(work)](QXFtpThread& record) {
      const Presence presence(running);
      PrivateConnection connection(*record.pQXIP);
      return AttemptOutcome{.ok = connection.Open() && work(*connection.Connection())};
    };
  }

  fixture::ScriptedFtp server{std::string_view(kServer)};
};

TEST_F(CancelStorm, AsTheWorkerStarts) {
  script.onPoll = [this](QXBool&) {
    cancelledAt = Clock::now();
    return true;
  };
  Storm();
}

TEST_F(CancelStorm, InAStalledTransfer) {
  OnConnection([this](CFtpConnection& connection) {
    const std::unique_ptr<CInternetFile> file(connection.OpenFile("/stalled.bin", internet::kGenericRead));
    std::vector<char> block(4096);
    static_cast<void>(file->Read(block.data(), 4096));
    entered = true;
    return file->Read(block.data(), 4096) > 0;
  });
  Storm();
}

TEST_F(CancelStorm, WhileAReplyIsMissing) {
  OnConnection([this](CFtpConnection& connection) {
    entered = true;
    const std::unique_ptr<CInternetFile> file(connection.OpenFile("/silent.bin", internet::kGenericRead));
    return file != nullptr;
  });
  WaitAtServerFor("RETR");
  Storm();
}

TEST_F(CancelStorm, WhileConnectingHangs) {
  const fixture::Blackhole blackhole(false);
  LogInTo(blackhole);
  script.attempt = [this](QXFtpThread& record) {
    const Presence presence(running);
    PrivateConnection connection(*record.pQXIP);
    entered = true;
    return AttemptOutcome{.ok = connection.Open()};
  };
  Storm();
}

TEST_F(CancelStorm, AtAnyMomentOfConnectingAndLoggingIn) {
  script.attempt = [this](QXFtpThread& record) {
    const Presence presence(running);
    entered = true;
    while (PrivateConnection(*record.pQXIP).Open()) {
    }
    return AttemptOutcome{};
  };
  Storm();
}

TEST_F(CancelStorm, InALongSleep) { Storm(); }

TEST_F(CancelStorm, InANestedOperation) {
  script.attempt = [this](QXFtpThread& record) {
    const Presence presence(running);
    entered = true;
    const bool found = started % 2 == 0 ? record.pQXIP->FTPFileSize("/stuck", 3, 0, 0) != 0
                                        : record.pQXIP->FTPDirExist("/stuck/below", 3, 0, 0) != 0;
    return AttemptOutcome{.ok = found};
  };
  WaitAtServerFor("MLST");
  Storm();
}

TEST_F(CancelStorm, WhileTheHeapIsBusy) {
  script.attempt = [this](QXFtpThread&) {
    const Presence presence(running);
    entered = true;
    for (std::size_t size = 1;; size = size * 7 % 10'007) {
      try {
        throw std::string(size, 'x');
      } catch (const std::string& thrown) {
        const std::vector<std::string> copies(3, thrown);
      }
      platform::throwIfStopped();
    }
    return AttemptOutcome{};
  };
  Storm();
}

}  // namespace
}  // namespace storm
