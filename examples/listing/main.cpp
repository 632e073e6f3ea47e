// SPDX-License-Identifier: MIT
// qxlisting LIBRARY HOST PORT USER PASSWORD PATH: the least that a host in C++20 does to list a directory.
#include <cstdio>
#include <cstdlib>

#include "QXClient.h"

namespace {

int fail(const qx::Report& report) {
  std::fprintf(stderr, "%s\n", report.text.c_str());
  return 1;
}

int list(qx::Client client, const qx::Login& login, const char* path) {
  const auto connected = client.connect(login);
  if (!connected) return fail(connected.report());
  const auto entries = client.list(path);
  if (!entries) return fail(entries.report());
  for (const QXDirEntry& entry : *entries) {
    std::printf("%s%s\n", entry.szName, entry.bIsDirectory != 0 ? "/" : "");
  }
  return 0;
}

}  // namespace

int main(int count, char** words) {
  if (count != 7) return 2;
  const auto exports = qx::loadLibrary(words[1]);
  if (!exports) return fail(exports.report());
  const auto port = static_cast<std::uint32_t>(std::strtoul(words[3], nullptr, 10));
  return list(qx::Client::make(*exports).value(),
              {.host = words[2], .user = words[4], .password = words[5], .port = port}, words[6]);
}
