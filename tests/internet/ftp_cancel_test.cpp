// SPDX-License-Identifier: MIT
// A worker that is asked to stop leaves at once, wherever it waits, and leaves nothing behind. Measured from
// the raising of the token until the worker has unwound everything: finder, file, connection and session.
#include <filesystem>
#include <nlohmann/json.hpp>
#include <thread>

#include "framework/internet/ftp/FtpControl.h"
#include "framework/internet/net/Failure.h"
#include "tests/internet/CancelTest.h"
#include "tests/internet/FtpTest.h"
#include "tests/internet/ListedText.h"
#include "tests/support/ProcessCounters.h"

namespace internet_tests {
namespace {

using fixture::ScriptedFtp;
using nlohmann::json;
using namespace nlohmann::literals;

class FtpCancel : public FtpTest {
 protected:
  // A login that runs on the calling thread and unwinds with it.
  struct Worker {
    explicit Worker(const fixture::Server& server, bool passive = true)
        : connection(
              session.GetFtpConnection(server.host().c_str(), "user", "secret", server.port(), passive)) {}
    RecordingSession session;
    std::unique_ptr<CFtpConnection> connection;
  };

  static ScriptedFtp serving(const char* verb, const json& steps) {
    return ScriptedFtp(json{{"tree", {{"/big", {{"size", 50'000'000}, {"seed", 3}}}}},
                            {"rules", {{{"on", verb}, {"do", json::array({steps})}}}}});
  }
  static ScriptedFtp transferring(const char* verb, const json& options) {
    return serving(verb, {{"normal", options}});
  }

  static void readAll(const fixture::Server& server, bool passive = true) {
    Worker worker(server, passive);
    auto file = openToRead(*worker.connection, "/big");
    std::vector<char> buffer(65536);
    while (file->Read(buffer.data(), 65536) > 0) {
    }
    file->Close();
    platform::throwIfStopped();
  }

  static void writeALot(const fixture::Server& server) {
    Worker worker(server);
    auto file = openToWrite(*worker.connection, "/up");
    const std::vector<char> buffer(1'000'000);
    for (int i = 0; i < 50; ++i) file->Write(buffer.data(), 1'000'000);
  }
};

TEST_F(FtpCancel, InTheLookup) {
  const SlowLookup slow;
  int count = 0;
  expectPrompt("lookup", [&] {
    return latencyMs([] { RecordingSession().GetFtpConnection("slow.test"); },
                     [&] { SlowLookup::awaitRunning(++count); });
  });
}

TEST_F(FtpCancel, InConnecting) {
  const fixture::Blackhole hanging(false);
  expectPromptInConnecting(
      [&](CInternetSession& own) { own.GetFtpConnection(hanging.host().c_str(), "u", "p", hanging.port()); });
}

TEST_F(FtpCancel, InTheGreeting) {
  expectPrompt("greeting", [&] {
    fixture::Blackhole silent;
    return latencyMs([&] { Worker worker(silent); }, [&] { silent.waitFor(R"({"connections": 1})"); });
  });
}

TEST_F(FtpCancel, InAReply) {
  expectPrompt("reply", [&] {
    ScriptedFtp server = serving("DELE", "silent");
    return latencyMs([&] { Worker(server).connection->Remove("/x"); },
                     [&] { server.waitForCommand("DELE"); });
  });
}

TEST_F(FtpCancel, InTheFirstReplyOfATransfer) {
  expectPrompt("transfer's first reply", [&] {
    ScriptedFtp server = serving("RETR", "silent");
    return latencyMs([&] { readAll(server); }, [&] { server.waitForCommand("RETR"); });
  });
}

TEST_F(FtpCancel, InThePassiveDataConnect) {
  expectPrompt("passive data connect", [&] {
    ScriptedFtp server = serving("EPSV", {{"passive", {{"listen", "full"}}}});
    return latencyMs([&] { readAll(server); }, [&] { server.waitForCommand("EPSV"); });
  });
}

TEST_F(FtpCancel, InTheActiveDataConnect) {
  expectPrompt("active data connect", [&] {
    ScriptedFtp server = transferring("RETR", {{"connect", "never"}});
    return latencyMs([&] { readAll(server, false); }, [&] { server.waitForCommand("RETR"); });
  });
}

TEST_F(FtpCancel, InRead) {
  expectPrompt("data, read", [&] {
    ScriptedFtp server = transferring("RETR", {{"stall_after", 100'000}, {"gate", "rest"}});
    return latencyMs([&] { readAll(server); }, [&] { server.waitAtGate("rest"); });
  });
}

TEST_F(FtpCancel, InReadWhileDataFlows) {
  expectPrompt("data that flows", [&] {
    ScriptedFtp server = transferring("RETR", {{"pace", {{"bytes", 1000}, {"ms", 1}}}});
    return latencyMs([&] { readAll(server); }, [&] { server.waitFor(R"({"data_bytes": 10000})"); });
  });
}

TEST_F(FtpCancel, InWrite) {
  expectPrompt("data, write", [&] {
    ScriptedFtp server = transferring("STOR", {{"stall_after", 100'000}, {"gate", "rest"}});
    return latencyMs([&] { writeALot(server); }, [&] { server.waitAtGate("rest"); });
  });
}

TEST_F(FtpCancel, InAListing) {
  expectPrompt("listing", [&] {
    ScriptedFtp server = transferring("LIST", {{"stall_after", 0}, {"gate", "rest"}});
    return latencyMs(
        [&] {
          Worker worker(server);
          const auto& control = worker.connection->Control();
          control->request([&] { listedBy(*control, "LIST"); });
        },
        [&] { server.waitAtGate("rest"); });
  });
}

TEST_F(FtpCancel, InTheFinalReplyOfADownload) {
  const testing_support::ScratchFolder folder;
  const std::string local = folder.file("local");
  expectPrompt("final reply, GetFile", [&] {
    ScriptedFtp server =
        transferring("RETR", {{"close_after", 1000}, {"opening", "150 Here"}, {"final", nullptr}});
    const double latency = latencyMs([&] { Worker(server).connection->GetFile("/big", local.c_str()); },
                                     [&] { server.waitFor(R"({"data_closed": 1})"); });
    EXPECT_FALSE(std::filesystem::exists(local));
    return latency;
  });
}

TEST_F(FtpCancel, InCloseOfAnUpload) {
  expectPrompt("final reply, Close", [&] {
    ScriptedFtp server = transferring("STOR", {{"final", nullptr}});
    return latencyMs(
        [&] {
          Worker worker(server);
          auto file = openToWrite(*worker.connection, "/up");
          file->Write("abc", 3);
          EXPECT_FALSE(file->Close()) << "does not throw";
          platform::throwIfStopped();
        },
        [&] { server.waitFor(R"({"data_closed": 1})"); });
  });
}

TEST_F(FtpCancel, InAnEarlyCloseOfADownload) {
  expectPrompt("early Close", [&] {
    ScriptedFtp server = transferring("RETR", {{"final", nullptr}});
    return latencyMs(
        [&] {
          Worker worker(server);
          auto file = openToRead(*worker.connection, "/big");
          EXPECT_FALSE(file->Close()) << "does not throw";
          platform::throwIfStopped();
        },
        [&] { server.waitFor(R"({"data_closed": 1})"); });
  });
}

TEST_F(FtpCancel, AStopThatACloseHadToSwallowIsThrownByTheNextCall) {
  ScriptedFtp server = transferring("RETR", {{"final", nullptr}});
  latencyMs(
      [&] {
        Worker worker(server);
        auto file = openToRead(*worker.connection, "/big");
        EXPECT_FALSE(file->Close());
        // As the operations go on after a Close; no failure of theirs may be seen any more.
        static_cast<void>(worker.connection->Remove("/x"));
        ADD_FAILURE() << "came back";
      },
      [&] { server.waitFor(R"({"data_closed": 1})"); });
}

TEST_F(FtpCancel, InWaitIdle) {
  ScriptedFtp server;
  expectPrompt("idle", [&] {
    Signal idle;
    return latencyMs(
        [&] {
          Worker worker(server);
          idle.give();
          worker.connection->WaitIdle(std::chrono::hours(1));
        },
        [&] { idle.await(); });
  });
}

TEST_F(FtpCancel, AConnectionThatWasLeftInMidCommandIsDead) {
  // Else the next command would take the late answer to this one for its own.
  ScriptedFtp server = serving("DELE", {{"gate", "late"}});
  auto connection = connect(server);
  platform::StopToken token;
  std::thread stopper([&] {
    server.waitAtGate("late");
    token.raise();
  });
  {
    const platform::StopToken::Scope scope(&token);
    EXPECT_THROW(connection->Remove("/x"), platform::OperationStopped);
  }
  stopper.join();
  EXPECT_EQ(errorOf([&] { return connection->Remove("/y"); }), 12030u);
}

TEST_F(FtpCancel, AStopShowsAsAStopAlsoWhereItHasBrokenTheConnectionFirst) {
  ScriptedFtp server(R"({"tree": {"/pub/": {}}})"_json);
  auto connection = connect(server);
  const auto& control = connection->Control();
  platform::StopToken token;
  const platform::StopToken::Scope scope(&token);
  const auto work = [&] {
    {
      internet::FtpControl::DirectoryVisit visit(*control);
      EXPECT_TRUE(visit.enter("/pub").completed());
      token.raise();
    }
    control->command("NOOP");
  };
  EXPECT_THROW(internet::answer([&] { control->request(work); }), platform::OperationStopped);
}

TEST_F(FtpCancel, AStoppedWorkerNotifiesNothingMore) {
  ScriptedFtp server = serving("DELE", "silent");
  RecordingSession own;
  latencyMs(
      [&] {
        const std::unique_ptr<CFtpConnection> connection(
            own.GetFtpConnection(server.host().c_str(), "u", "p", server.port()));
        connection->Remove("/x");
      },
      [&] { server.waitForCommand("DELE"); });
  EXPECT_FALSE(own.statuses.empty());
  EXPECT_FALSE(toldOfAnEnd(own.statuses));
}

TEST_F(FtpCancel, AWorkerStoppedBeforehandConnectsToNothing) {
  ScriptedFtp server;
  latencyMs(
      [&] {
        while (!platform::stopRequested()) std::this_thread::yield();
        Worker worker(server);
      },
      [] {});
  EXPECT_TRUE(server.connections().empty());
}

// Only what came to wait noticed a stop.
TEST_F(FtpCancel, WhereAReplyIsThereAlready) {
  ScriptedFtp server;
  latencyMs(
      [&] {
        Worker worker(server);
        worker.session.onStatus = [&](std::uint32_t status) {
          if (status != internet::kStatusRequestSent) return;
          while (server.repliesSent() < 4) std::this_thread::yield();
          platform::StopToken::current()->raise();
        };
        static_cast<void>(worker.connection->CreateDirectory("/new"));
      },
      [&] { server.waitForCommand("MKD"); });
}

TEST_F(FtpCancel, AStoppedUploadIsNeverTakenForAWholeFile) {
  for (int i = 0; i < 20; ++i) {
    ScriptedFtp server;
    latencyMs(
        [&] {
          Worker worker(server);
          auto file = openToWrite(*worker.connection, "/up");
          file->Write("half a file", 11);
          platform::stoppableSleep(std::chrono::hours(1));
        },
        [&] { server.waitFor(R"({"data_bytes": 11})"); });
    server.waitFor(R"({"data_closed": 1})");
    EXPECT_NE(server.dataConnections().at(0).how, "complete");
  }
}

// Its data connection ended in good order, as that of an empty file does.
TEST_F(FtpCancel, AnUploadThatIsStoppedBeforeItsReplyIsBrokenOff) {
  for (int i = 0; i < 20; ++i) {
    ScriptedFtp server = transferring("STOR", {{"opening", nullptr}});
    latencyMs(
        [&] {
          Worker worker(server);
          openToWrite(*worker.connection, "/up");
        },
        [&] { server.waitFor(R"({"data": 1})"); });
    server.waitFor(R"({"data_closed": 1})");
    EXPECT_NE(server.dataConnections().at(0).how, "complete");
  }
}

TEST_F(FtpCancel, AHundredCancelsLeaveNothingBehind) {
  ScriptedFtp server = transferring("RETR", {{"stall_after", 1000}, {"gate", "rest"}});
  const auto cancelOnce = [&](int count) {
    latencyMs([&] { readAll(server); }, [&] { server.waitForCommand("RETR", count); });
  };
  cancelOnce(1);
  const auto before = testing_support::processCounters();
  for (int i = 0; i < 100; ++i) cancelOnce(i + 2);
  const auto after = testing_support::processCounters();
  EXPECT_LE(after.handles, before.handles + testing_support::kLockHandles);
  EXPECT_EQ(after.threads, before.threads);
  server.waitUntilAllClosed();
}

}  // namespace
}  // namespace internet_tests
