// SPDX-License-Identifier: MIT
// What the tests of whole-file transfers have in common.
#pragma once

#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>

#include "tests/client/ServerTest.h"
#include "tests/client/TestPaths.h"
#include "tests/support/Pattern.h"
#include "tests/support/ScratchFolder.h"

class TransferTest : public ServerTest {
 protected:
  const testing_support::ScratchFolder folder;
  const std::string local = folder.file("local");

  [[nodiscard]] bool exists() const { return std::filesystem::exists(local); }
  [[nodiscard]] std::string content() const {
    std::ifstream file(local, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  void write(const std::string& text) const { std::ofstream(local, std::ios::binary) << text; }

  static void expectAttempts(const fixture::ScriptedFtp& server, std::size_t count) {
    server.waitFor("{\"connections\": " + std::to_string(count) + ", \"open\": 0}");
    EXPECT_EQ(server.connections().size(), count);
  }

  // `run(retries)` is refused the login: it connects once more than the retries say, 10 ms apart, and
  // OnIPError hears of each attempt without a counter.
  template <typename Run>
  void expectRefusedLogins(const std::string& failedLine, Run&& run) {
    for (const std::uint32_t retries : {0u, 1u, 3u}) {
      const fixture::ScriptedFtp server(R"({"password": "another"})");
      loginAt(server);
      client.forget();
      record = {};
      const auto start = std::chrono::steady_clock::now();
      EXPECT_EQ(run(retries), 0);
      EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(10) * retries);
      expectAttempts(server, retries + 1);
      EXPECT_EQ(client.count("OnIPError 12014"), retries + 1);
      EXPECT_EQ(client.count("OnIPError"), retries + 1);
      for (const std::string& call : client.calls())
        EXPECT_EQ(call.find(" retries "), std::string::npos) << call;
      EXPECT_EQ(client.m_szMessage, failedLine);
      EXPECT_EQ(record.nError, 12014u);
    }
  }

  QXBool download(const char* remote = "/a", std::uint32_t retries = 0) {
    return client.FTPDownloadFile(remote, local.c_str(), retries);
  }
  QXBool upload(const char* remote = "/a", std::uint32_t retries = 0) {
    return client.FTPUploadFile(remote, local.c_str(), retries);
  }
};
