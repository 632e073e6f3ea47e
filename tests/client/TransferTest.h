// SPDX-License-Identifier: MIT
// What the tests of whole-file transfers have in common.
#pragma once

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

  QXBool download(const char* remote = "/a", std::uint32_t retries = 0) {
    return client.FTPDownloadFile(remote, local.c_str(), retries);
  }
  QXBool upload(const char* remote = "/a", std::uint32_t retries = 0) {
    return client.FTPUploadFile(remote, local.c_str(), retries);
  }
};
