// SPDX-License-Identifier: MIT
// Clients in great number: one after the other, and side by side on threads of their own.
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "tests/storm/Build.h"
#include "tests/storm/Health.h"
#include "tests/storm/RunnerTest.h"
#include "tests/support/Fixture.h"
#include "tests/support/Pattern.h"
#include "tests/support/ScratchFolder.h"

namespace storm {
namespace {

constexpr std::uint64_t kMemorySlack = 4U << 20;
constexpr int kCycles = kSanitized ? kRounds : 1000;

bool connect(TQXIP& client, const fixture::Server& server) {
  return client.FTPConnect(server.host().c_str(), "u", "p", server.port(), 1, 0, nullptr) != 0;
}

// The names in a folder; empty after a failure.
std::vector<std::string> list(TQXIP& client, const std::string& folder) {
  std::uint32_t count = 0;
  if (client.FTPGetDirectory(folder.c_str(), nullptr, &count, "*.*", 0) == 0) return {};
  std::vector<QXDirEntry> entries(count + 1);
  if (client.FTPGetDirectory(folder.c_str(), entries.data(), &count, "*.*", 0) == 0) return {};
  std::vector<std::string> names;
  for (std::uint32_t i = 0; i < count; ++i) names.emplace_back(entries[i].szName);
  return names;
}

TEST(Cycles, OfConnectListDisconnectAndFreeLeaveNothing) {
  const fixture::ScriptedFtp server(R"({"tree": {"/pub/a.txt": "a", "/pub/b.txt": "b", "/pub/c/": {}}})");
  const auto cycle = [&] {
    Script script;
    QXErrorInfo error{};
    const Client client = makeClient(script, &error);
    ASSERT_TRUE(connect(*client, server)) << error.szText;
    ASSERT_EQ(list(*client, "/pub"), (std::vector<std::string>{"a.txt", "b.txt", "c"})) << error.szText;
    ASSERT_TRUE(client->FTPDisconnect());
  };
  for (int i = 0; i < 20; ++i) ASSERT_NO_FATAL_FAILURE(cycle());
  const Health health;
  for (int i = 0; i < kCycles; ++i) ASSERT_NO_FATAL_FAILURE(cycle()) << "cycle " << i;
  health.expectBack(kMemorySlack);
  server.waitUntilAllClosed();
}

// One client's work on its own folder. Failures are collected: expectations belong on the test's thread.
class Visitor {
 public:
  Visitor(const fixture::Server& server, std::uint32_t number, const std::string& local)
      : m_server(server), m_number(number), m_local(local) {}

  [[nodiscard]] std::uint32_t size() const { return 1000 + m_number; }
  [[nodiscard]] std::string folder() const { return "/dir" + std::to_string(m_number); }
  [[nodiscard]] std::string name() const { return "file" + std::to_string(m_number) + ".bin"; }

  void visit() {
    Script script;
    QXErrorInfo error{};
    const Client client = makeClient(script, &error);
    const std::string file = folder() + "/" + name();
    check(connect(*client, m_server), "connect");
    check(list(*client, folder()) == std::vector<std::string>{name()}, "list");
    check(client->FTPFileExists(file.c_str(), 0, 0, 0) == 1, "exists");
    check(client->FTPFileExists((file + "x").c_str(), 0, 0, 0) == 0, "does not exist");
    check(client->FTPDirExist(folder().c_str(), 0, 0, 0) == 1, "directory");
    check(client->FTPFileSize(file.c_str(), 0, 0, 0) == size(), "size");
    check(client->FTPDownloadFile(file.c_str(), m_local.c_str(), 0) == 1, "download");
    check(testing_support::Pattern(m_number).matchesFile(m_local, size()), "content");
    check(client->FTPDisconnect() == 1, "disconnect");
    if (!m_failures.empty()) m_failures += error.szText;
  }

  [[nodiscard]] const std::string& failures() const { return m_failures; }

 private:
  void check(bool ok, const char* what) {
    if (!ok) m_failures += std::string(what) + ", ";
  }

  const fixture::Server& m_server;
  const std::uint32_t m_number;
  const std::string m_local;
  std::string m_failures;
};

TEST(SideBySide, SixtyFourClientsGetTheirOwnAnswers) {
  const fixture::ScriptedFtp server;
  const testing_support::ScratchFolder folder;
  std::vector<Visitor> visitors;
  for (std::uint32_t i = 1; i <= 64; ++i) {
    const Visitor& visitor = visitors.emplace_back(server, i, folder.file(std::to_string(i)));
    server.put("{\"" + visitor.folder() + "/" + visitor.name() + "\": {\"size\": " +
               std::to_string(visitor.size()) + ", \"seed\": " + std::to_string(i) + "}}");
  }
  std::vector<std::thread> threads;
  for (Visitor& visitor : visitors) threads.emplace_back([&] { visitor.visit(); });
  for (std::thread& thread : threads) thread.join();
  for (const Visitor& visitor : visitors) EXPECT_EQ(visitor.failures(), "") << visitor.name();
  server.waitUntilAllClosed();
}

}  // namespace
}  // namespace storm
