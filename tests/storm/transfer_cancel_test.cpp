// SPDX-License-Identifier: MIT
// The operations that move and remove files, cancelled again and again while the server keeps them waiting.
#include <filesystem>
#include <string>

#include "framework/platform/file.h"
#include "tests/storm/CancelStormTest.h"
#include "tests/support/ScratchFolder.h"

namespace storm {
namespace {

constexpr auto kMedian = kSanitized ? 100ms : kNative ? 20ms : 50ms;

// All kinds together make a storm; each round takes connections, and time on a busy machine.
constexpr int kRoundsOfAKind = kRounds * 3 / 10;

// Of the operations whose blocks are paced by 20 ms: reaches the pauses as well as the waits for the server.
constexpr auto kPacedStep = 4ms;
constexpr int kPacedRounds = kRounds / 10;
static_assert(3 * kRoundsOfAKind + 2 * kPacedRounds >= kRounds);

class TransferCancel : public CancelStormTest {
 protected:
  void SetUp() override {
    CancelStormTest::SetUp();
    LogInTo(server);
    untilStuck = [this] { server.waitAtGate("never"); };
  }

  bool Operate() override {
    entered = true;
    return operation();
  }
  // A connection of the round before may still wait at the gate.
  void BeforeRound() override { server.waitFor(R"({"open": 0})"); }
  void ExpectNormalWork() override {
    server.reconfigure(R"({"rules": []})");
    EXPECT_TRUE(operation());
    server.waitUntilAllClosed();
  }

  void StormAt(const std::string& verb, const std::string& stall) {
    server.reconfigure("{\"rules\": [{\"on\": \"" + verb + "\", \"do\": [" + stall + "]}]}");
    Storm(rounds, kMedian);
  }
  // The first 4096 bytes move.
  void StormInTheMiddleOf(const std::string& verb) {
    StormAt(verb, R"({"normal": {"stall_after": 4096, "gate": "never"}})");
  }

  bool Copy(const std::string& target) {
    return client->FTPCpyFile("/file", target.c_str(), nullptr, 3, 0, 0) != 0;
  }

  const fixture::ScriptedFtp server{R"({"tree": {"/file": {"size": 65536, "seed": 1}}})"};
  const testing_support::ScratchFolder folder;
  std::function<bool()> operation;
  int rounds = kRoundsOfAKind;
};

TEST_F(TransferCancel, OfAStalledRead) {
  step = kPacedStep;
  rounds = kPacedRounds;
  operation = [this] {
    void* block = nullptr;
    std::uint32_t size = 0;
    const bool ok = client->FTPReadFile("/file", &block, &size, 0, 3, 0, 0) != 0;
    EXPECT_EQ(block != nullptr, ok);
    client->FTPFreeFileAPI(block);
    return ok;
  };
  StormInTheMiddleOf("RETR");
}

TEST_F(TransferCancel, OfAStalledWrite) {
  step = kPacedStep;
  rounds = kPacedRounds;
  operation = [this] {
    const std::string content(3 * 4096, 'x');
    return client->FTPWriteFile("/new", content.data(), 3 * 4096, 0, 0, 3, 0, 0) != 0;
  };
  StormInTheMiddleOf("STOR");
  EXPECT_EQ(server.size("/new"), 3u * 4096);
}

TEST_F(TransferCancel, OfACopyWithAStalledDownload) {
  const std::string target = folder.file("copy");
  operation = [&] { return Copy(testing_support::localName(target)); };
  StormInTheMiddleOf("RETR");
  EXPECT_EQ(std::filesystem::file_size(target), 65536u);
}

TEST_F(TransferCancel, OfACopyWithAStalledUploadLeavesNoTemporaryCopy) {
  char start[256] = "";
  ASSERT_NE(platform::temporaryFolder(start, sizeof start), 0u);
  const std::string name = folder.path().filename().string();  // nobody else's
  const auto temporaryCopy = std::filesystem::path(start) / "FTP" / name;
  operation = [&] { return Copy("/" + name); };
  untilStuck = [&, wait = untilStuck] {
    wait();
    EXPECT_TRUE(std::filesystem::exists(temporaryCopy));
  };
  StormInTheMiddleOf("STOR");
  EXPECT_FALSE(std::filesystem::exists(temporaryCopy));
  EXPECT_TRUE(server.matches("/" + name, 1, 65536));
}

// The test client has a function of its own in the slot.
TEST_F(TransferCancel, OfARemovalWithoutAReply) {
  operation = [this] { return client->TQXIP::FTPRmvFile("/file", 0, 3, 0, 0) != 0; };
  StormAt("DELE", R"({"gate": "never"}, "normal")");
  EXPECT_FALSE(server.exists("/file"));
}

}  // namespace
}  // namespace storm
