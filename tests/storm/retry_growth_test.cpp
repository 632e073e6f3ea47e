// SPDX-License-Identifier: MIT
// A retry count of 4,294,967,295 against a server that refuses: however often an operation is repeated, its
// stack and its memory stay as they are.
#include <algorithm>
#include <iostream>
#include <limits>

#include "Src/PrivateConnection.h"
#include "tests/storm/Build.h"
#include "tests/storm/Health.h"
#include "tests/storm/RunnerTest.h"
#include "tests/support/Fixture.h"
#include "tests/support/ScratchFolder.h"

namespace storm {
namespace {

constexpr std::uint32_t kForever = std::numeric_limits<std::uint32_t>::max();
constexpr std::uint64_t kMemorySlack = 2U << 20;
constexpr int kManyAttempts = 100 * kRounds;

// How deep the stack was at each of several places of the same depth.
class StackDepths {
 public:
  void note(const void* frame) {
    const auto address = reinterpret_cast<std::uintptr_t>(frame);
    m_lowest = std::min(m_lowest, address);
    m_highest = std::max(m_highest, address);
    ++m_count;
  }
  [[nodiscard]] int count() const { return m_count; }
  [[nodiscard]] std::uintptr_t spread() const { return m_highest - m_lowest; }

 private:
  std::uintptr_t m_lowest = std::numeric_limits<std::uintptr_t>::max();
  std::uintptr_t m_highest = 0;
  std::atomic<int> m_count = 0;
};

class RetryGrowth : public RunnerTest {
 protected:
  void LogInTo(const fixture::Server& target) {
    client->FTPSetLogin(target.host().c_str(), "u", "p", target.port(), 1);
  }

  // Every failure counts as one attempt; after `attempts` of them the login data are those of the good
  // server.
  void ComeUpAfter(int attempts) {
    LogInTo(refused);
    script.onIPError = [this, attempts](std::uint32_t, std::uint32_t*) {
      depths.note(__builtin_frame_address(0));
      if (depths.count() == attempts) LogInTo(server);
    };
  }

  void ExpectAttempts(int attempts) {
    EXPECT_EQ(depths.count(), attempts);
    EXPECT_EQ(depths.spread(), 0u) << "the stack grew";
  }

  fixture::ScriptedFtp server{R"({"tree": {"/there/": {}, "/file.txt": "content"}})"};
  fixture::RefusedPort refused;
  testing_support::ScratchFolder folder;
  StackDepths depths;
};

TEST_F(RetryGrowth, AWorkerThatFailsAtOnce) {
  script.attempt = [this](QXFtpThread&) {
    depths.note(__builtin_frame_address(0));
    return AttemptOutcome{.ok = false, .error = 5};
  };
  script.onPoll = [this](QXBool&) { return depths.count() >= kManyAttempts; };
  const Health health;
  EXPECT_FALSE(client->Run(kForever));
  health.expectBack(kMemorySlack);
  EXPECT_GE(depths.count(), kManyAttempts);
  EXPECT_EQ(depths.spread(), 0u);
}

TEST_F(RetryGrowth, AWorkerWhoseConnectionsAreRefused) {
  LogInTo(refused);
  script.attempt = [this](QXFtpThread& record) {
    depths.note(__builtin_frame_address(0));
    PrivateConnection connection(*record.pQXIP);
    return AttemptOutcome{.ok = connection.Open()};
  };
  script.onPoll = [this](QXBool&) { return depths.count() >= kRounds; };
  const Health health;
  EXPECT_FALSE(client->Run(kForever));
  health.expectBack(kMemorySlack);
  EXPECT_EQ(depths.spread(), 0u);
}

TEST_F(RetryGrowth, AQueryUntilTheServerIsThere) {
  ComeUpAfter(kRounds);
  const Health health;
  EXPECT_TRUE(client->FTPDirExist("/there", kForever, 0, 0));
  health.expectBack(kMemorySlack);
  ExpectAttempts(kRounds);
}

TEST_F(RetryGrowth, ADownloadUntilTheServerIsThere) {
  // Each attempt has a pause of 10 ms.
  constexpr int kAttempts = kRounds / 4;
  ComeUpAfter(kAttempts);
  const Health health;
  EXPECT_TRUE(client->FTPDownloadFile("/file.txt", folder.file("file.txt").c_str(), kForever));
  health.expectBack(kMemorySlack);
  ExpectAttempts(kAttempts);
  EXPECT_EQ(std::filesystem::file_size(folder.path() / "file.txt"), 7u);
}

// An operation with a worker, called for "/file.txt" and a local file.
struct Operation {
  const char* name;
  QXBool (*run)(TQXIP& client, const char* local);
};

QXBool removeFile(TQXIP& client, const char* /*local*/) {
  return client.TQXIP::FTPRmvFile("/file.txt", 0, kForever, 0, 0);  // the test client has its own
}

QXBool readFile(TQXIP& client, const char* /*local*/) {
  void* block = nullptr;
  std::uint32_t size = 0;
  return client.FTPReadFile("/file.txt", &block, &size, 0, kForever, 0, 0);
}

QXBool writeFile(TQXIP& client, const char* /*local*/) {
  return client.FTPWriteFile("/file.txt", "content", 7, 0, 0, kForever, 0, 0);
}

QXBool copyToServer(TQXIP& client, const char* local) {
  return client.FTPCpyFile(local, "/file.txt", nullptr, kForever, 0, 0);
}

QXBool copyFromServer(TQXIP& client, const char* local) {
  return client.FTPCpyFile("/file.txt", local, nullptr, kForever, 0, 0);
}

QXBool copyOnServer(TQXIP& client, const char* /*local*/) {
  return client.FTPCpyFile("/file.txt", "/copy.txt", nullptr, kForever, 0, 0);
}

// Who refuses, and what: no rules: the port itself.
struct Refusal {
  const char* name;
  const char* rules;
};

constexpr Refusal kRefusedPort{"Connection", nullptr};
constexpr Refusal kLogin{"Login", R"({"on": "PASS", "do": [{"reply": "530 No"}]})"};
constexpr Refusal kWelcome421{"Welcome421",
                              R"({"on": "CONNECT", "do": [{"reply": "421 Shutting down"}, "close"]})"};
constexpr Refusal kWelcome550{"Welcome550", R"({"on": "CONNECT", "do": [{"reply": "550 No"}]})"};
constexpr Refusal kTransfer{"Transfer", R"({"on": ["RETR", "STOR"], "do": [{"reply": "550 No"}]})"};

class RetryGrowthOf : public RetryGrowth, public testing::WithParamInterface<std::tuple<Operation, Refusal>> {
 protected:
  const Operation operation = std::get<0>(GetParam());
  const Refusal refusal = std::get<1>(GetParam());
};

TEST_P(RetryGrowthOf, AnOperationThatIsCancelledAfterSecondsOfRetries) {
  const int attempts = refusal.rules == nullptr ? 200 : 100;  // each with a pause of 10 ms
  if (refusal.rules == nullptr) {
    LogInTo(refused);
  } else {
    server.reconfigure(std::string("{\"rules\": [") + refusal.rules + "]}");
    LogInTo(server);
  }
  script.onIPError = [this](std::uint32_t, std::uint32_t*) { depths.note(__builtin_frame_address(0)); };
  int attemptsWhenCancelled = 0;
  script.onPoll = [&](QXBool&) {
    attemptsWhenCancelled = depths.count();
    return attemptsWhenCancelled >= attempts;
  };
  const std::string local = testing_support::localName(folder.file("file.txt"));
  const Health health;
  EXPECT_EQ(operation.run(*client, local.c_str()), 0);
  health.expectBack(kMemorySlack);
  EXPECT_GE(attemptsWhenCancelled, attempts);
  EXPECT_LE(depths.count(), attemptsWhenCancelled + attempts / 2) << "it went on after the cancel";
  EXPECT_EQ(depths.spread(), 0u) << "the stack grew";
}

std::string nameOf(const testing::TestParamInfo<std::tuple<Operation, Refusal>>& instance) {
  return std::string(std::get<0>(instance.param).name) + std::get<1>(instance.param).name;
}

constexpr Operation kRemove{"Remove", &removeFile};
constexpr Operation kRead{"Read", &readFile};
constexpr Operation kWrite{"Write", &writeFile};
constexpr Operation kCopyFromServer{"CopyFromServer", &copyFromServer};
constexpr Operation kCopyOnServer{"CopyOnServer", &copyOnServer};

INSTANTIATE_TEST_SUITE_P(NobodyListens, RetryGrowthOf,
                         testing::Combine(testing::Values(kRemove, kRead, kWrite,
                                                          Operation{"CopyToServer", &copyToServer},
                                                          kCopyFromServer, kCopyOnServer),
                                          testing::Values(kRefusedPort)),
                         nameOf);

INSTANTIATE_TEST_SUITE_P(TheServerRefuses, RetryGrowthOf,
                         testing::Combine(testing::Values(kRead, kWrite, kCopyFromServer),
                                          testing::Values(kLogin, kTransfer)),
                         nameOf);

INSTANTIATE_TEST_SUITE_P(TheServerRefusesToBegin, RetryGrowthOf,
                         testing::Combine(testing::Values(kRemove),
                                          testing::Values(kLogin, kWelcome421, kWelcome550)),
                         nameOf);

TEST_F(RetryGrowth, ACountOfFolderItemsWhoseListingFails) {
  script.onGetDirectory = [this](std::uint32_t* pnCount) {
    depths.note(__builtin_frame_address(0));
    *pnCount = 0;
    return depths.count() >= kManyAttempts;
  };
  const Health health;
  std::uint32_t files = 1;
  EXPECT_TRUE(client->FTPCountFolderItems("/there", &files, nullptr, kForever));
  health.expectBack(kMemorySlack);
  EXPECT_EQ(files, 0u);
  EXPECT_EQ(depths.spread(), 0u) << "the stack grew";
}

// A slot that the host has replaced has to be called again through itself, so there the stack does grow.
TEST_F(RetryGrowth, AReplacedSlotTakesLittleStackPerRetry) {
  constexpr int kAttempts = 200;
  script.onHasSubDir = [this] { depths.note(__builtin_frame_address(0)); };
  script.onGetDirectory = [this](std::uint32_t* pnCount) {
    *pnCount = 0;
    return depths.count() >= kAttempts;
  };
  EXPECT_FALSE(client->FTPHasSubDir("/there", kForever)) << "an empty folder";
  ASSERT_EQ(depths.count(), kAttempts);
  const auto perRetry = depths.spread() / (kAttempts - 1);
  std::cout << perRetry << " bytes of stack per retry\n";
  if (!kSanitized) {
    EXPECT_LE(perRetry, 2048u);
  }
}

}  // namespace
}  // namespace storm
