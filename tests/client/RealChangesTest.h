// SPDX-License-Identifier: MIT
// A test that changes a real server, in a folder of its own there.
#pragma once

#include <string>
#include <vector>

#include "tests/client/RealServersTest.h"

class RealChangesTest : public RealServersTest {
 protected:
  static inline int made = 0;
  const std::string own = at("/own" + std::to_string(++made));

  void SetUp() override {
    RealServersTest::SetUp();
    server.put("{\"" + own + "/\": {}}");
  }
  void make(const std::string& path, const std::string& file = R"("content")") const {
    server.put("{\"" + own + path + "\": " + file + "}");
  }
  [[nodiscard]] bool isThere(const std::string& path) const { return server.exists(own + path); }

  // The operations, below the own folder.
  QXBool writeFile(const std::string& path, const std::string& data, bool append = false) {
    return client.FTPWriteFile((own + path).c_str(), data.data(), static_cast<std::uint32_t>(data.size()),
                               append ? 1 : 0, 0, 0, 0, 0);
  }
  // Takes the content of a successful read.
  QXBool readFile(const std::string& path, std::string& content) {
    void* block = nullptr;
    std::uint32_t size = 0;
    const QXBool ok = client.FTPReadFile((own + path).c_str(), &block, &size, 0, 0, 0, 0);
    if (ok != 0) content.assign(static_cast<const char*>(block), size);
    client.FTPFreeFileAPI(block);
    return ok;
  }
  QXBool copyFile(const std::string& from, const std::string& to) {
    return client.FTPCpyFile(from.c_str(), to.c_str(), nullptr, 0, 0, 0);
  }
  QXBool moveFile(const std::string& from, const std::string& to) {
    return client.FTPMovFile(from.c_str(), to.c_str(), nullptr, 0, 0, 0);
  }
  QXBool renameFile(const std::string& from, const std::string& to) {
    return client.FTPRenameFile((own + from).c_str(), (own + to).c_str(), 0);
  }
  QXBool removeFile(const std::string& path) { return client.FTPRmvFile((own + path).c_str(), 0, 0, 0, 0); }
  QXBool removeDirectory(const std::string& path) { return client.FTPRmvDir((own + path).c_str(), 0, 0, 0); }
  QXBool createDirectory(const std::string& path) {
    return client.FTPCreateDir((own + path).c_str(), 0, 0, 0);
  }

  // The operation before has failed and has said so.
  void expectReport(const std::string& what) {
    EXPECT_EQ(record.bSet, 1u) << what;
    record = {};
  }
};
