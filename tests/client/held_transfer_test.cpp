// SPDX-License-Identifier: MIT
// What whole files take of memory on their way, over a network in memory: however long they are.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

#include "tests/client/PlainClient.h"
#include "tests/support/AllocationWatch.h"
#include "tests/support/MemoryFtp.h"
#include "tests/support/ScratchFolder.h"

namespace {

using testing_support::MemoryFtp;
using testing_support::MemoryLink;

constexpr std::uint64_t kShort = 1 << 20;
constexpr std::uint64_t kLong = 32 << 20;
constexpr std::uint64_t kAhead = 1 << 20;  // that a server sends before it is taken
constexpr std::uint16_t kWebPort = 80;

// Sends so many bytes as they are taken, by FTP or to a browser, and drops what it gets.
class StreamingServer final : public MemoryFtp {
 public:
  explicit StreamingServer(std::uint64_t size) : m_size(size) {
    answers["RETR"] = "150 Here\r\n";
    answers["STOR"] = "150 Go on\r\n";
    onCommand = [this](const std::string& line) {
      if (line.starts_with("RETR")) begin("", "226 Done\r\n");
    };
    onLeft = [this](const Link& link) {
      if (link != data) return;
      link->server = MemoryLink::End::ended;
      if (control && m_received > 0) control->toClient += "226 Done\r\n";
    };
  }

  void received(const Link& link) override {
    if (link == control) return MemoryFtp::received(link);
    m_received += link->toServer.size();
    if (link->toServer.ends_with("\r\n\r\n")) {
      begin("HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(m_size) + "\r\n\r\n", "");
    }
    link->toServer.clear();
  }

  std::size_t portion(std::size_t most) override {
    refill(most);
    return most;
  }

  [[nodiscard]] std::uint64_t receivedBytes() const noexcept { return m_received; }

 private:
  void begin(const std::string& head, std::string last) {
    data->toClient.reserve(2 * kAhead);
    data->toClient = head;
    m_left = m_size;
    m_last = std::move(last);
    refill(0);
  }

  // So that something is left behind so many bytes.
  void refill(std::size_t taken) {
    if (m_left == 0 || data->toClient.size() > taken) return;
    const std::uint64_t count = std::min<std::uint64_t>(m_left, kAhead);
    data->toClient.append(static_cast<std::size_t>(count), 'x');
    m_left -= count;
    if (m_left > 0) return;
    data->server = MemoryLink::End::ended;
    if (!m_last.empty()) control->toClient += m_last;
  }

  const std::uint64_t m_size;
  std::uint64_t m_left = 0;
  std::string m_last;
  std::uint64_t m_received = 0;
};

class HeldByTransfers : public testing::Test {
 protected:
  // The most that `transfer(client, server)` of a file of that size has held.
  template <class Transfer>
  long heldWith(std::uint64_t size, Transfer transfer) {
    StreamingServer server(size);
    const testing_support::MemoryNetwork network(server);
    QXErrorInfo record{};
    PlainClient client(&record);
    client.FTPSetLogin("127.0.0.1", "user", "password", 21, 1);
    const testing_support::MostBytesHeld held;
    EXPECT_NE(transfer(client, server), 0u);
    return held.beyond();
  }

  template <class Transfer>
  void expectLittleOfAny(Transfer transfer) {
    constexpr long kMost = 6 << 20;
    const long held =
        heldWith(kShort, [&](auto& client, auto& server) { return transfer(client, server, kShort); });
    EXPECT_LT(held, kMost);
    EXPECT_LE(heldWith(kLong, [&](auto& client, auto& server) { return transfer(client, server, kLong); }),
              held + (1 << 20));
  }

  testing_support::ScratchFolder folder;
  std::string local = (folder.path() / "file").string();
};

TEST_F(HeldByTransfers, LittleOfADownload) {
  expectLittleOfAny([&](TQXIP& client, StreamingServer&, std::uint64_t size) {
    std::filesystem::remove(local);
    const bool ok = client.FTPDownloadFile("/f", local.c_str(), 0) != 0;
    EXPECT_EQ(std::filesystem::file_size(local), size);
    return ok ? 1u : 0u;
  });
}

TEST_F(HeldByTransfers, LittleOfAnUpload) {
  expectLittleOfAny([&](TQXIP& client, StreamingServer& server, std::uint64_t size) {
    std::ofstream(local).close();
    std::filesystem::resize_file(local, size);
    const bool ok = client.FTPUploadFile("/f", local.c_str(), 0) != 0;
    EXPECT_EQ(server.receivedBytes(), size);
    return ok ? 1u : 0u;
  });
}

TEST_F(HeldByTransfers, LittleOfAWebDownload) {
  expectLittleOfAny([&](TQXIP& client, StreamingServer&, std::uint64_t size) {
    const std::uint32_t ok =
        client.HTTPDownloadFile("127.0.0.1", "/f", kWebPort, local.c_str(), nullptr, 0, 0);
    EXPECT_EQ(std::filesystem::file_size(local), size);
    return ok;
  });
}

}  // namespace
