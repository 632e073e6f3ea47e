// SPDX-License-Identifier: MIT
// What the tests of the operations that change the server have in common.
#pragma once

#include <algorithm>
#include <chrono>
#include <string>
#include <utility>

#include "tests/client/ServerTest.h"
#include "tests/client/SlotHost.h"
#include "tests/client/TestPaths.h"

class ChangeTest : public ServerTest {
 protected:
  // The command lines that look at or change directories and files, in the order of their coming.
  static Names changes(const fixture::ScriptedFtp& server) {
    Names lines = server.commands();
    std::erase_if(lines, [](const std::string& line) {
      constexpr const char* kVerbs[] = {"PWD", "CWD", "CDUP", "DELE", "RMD", "MKD", "STOR", "APPE", "RNFR"};
      return std::none_of(std::begin(kVerbs), std::end(kVerbs), [&](const std::string& verb) {
        return line == verb || line.starts_with(verb + " ");
      });
    });
    return lines;
  }
  static int lineCount(const fixture::ScriptedFtp& server, const std::string& line) {
    const Names lines = server.commands();
    return static_cast<int>(std::count(lines.begin(), lines.end(), line));
  }

  // One file or folder ("/a/") of a tree.
  static std::string treeWith(const std::string& path) {
    std::string key;
    for (const char c : path) key += c == '"' ? "\\\"" : std::string(1, c);
    return R"({"tree": {")" + key + (path.ends_with('/') ? R"(": {}}})" : R"(": "x"}})");
  }

  // Operations with functions of a host's own in their way.
  void loginHostAt(const fixture::Server& server) {
    host.FTPSetLogin(server.host().c_str(), "user", "secret", server.port(), 1);
  }

  // What comes before any connection, for the operation that goes by `name` in its failed line.
  template <typename Operation>
  void ExpectChecksItsArguments(const std::string& name, int line, Operation&& operation) {
    const fixture::ScriptedFtp server;
    loginAt(server);
    const std::pair<const char*, const char*> missing[] = {{nullptr, "(null)"}, {"", ""}};
    for (const auto& [path, shown] : missing) {
      record = {};
      EXPECT_EQ(operation(path), 0);
      EXPECT_THAT(record, ReportsLastError("TQXIP::" + name + " '" + shown + "' failed!", 87u, line));
    }
    record = {};
    client.m_bInitialized = 0;
    EXPECT_EQ(operation("/a"), 0);
    client.m_bInitialized = 1;
    EXPECT_THAT(record, ReportsFrom("TQXIP::" + name + " '/a' failed!", line));
    EXPECT_TRUE(server.connections().empty());
  }
  // An over-long path and one with a control character are failures, whatever is there.
  template <typename Operation>
  void ExpectRefusesBadPaths(Operation&& operation) {
    const fixture::ScriptedFtp server(R"({"tree": {"/b": "x"}})");
    loginAt(server);
    for (const std::string& path : kBadPaths) {
      record = {};
      EXPECT_EQ(operation(path.c_str()), 0);
      EXPECT_EQ(record.bSet, 1u);
    }
    EXPECT_TRUE(server.connections().empty());
    EXPECT_TRUE(server.exists("/b"));
  }

  SlotHost host{&record};
};
