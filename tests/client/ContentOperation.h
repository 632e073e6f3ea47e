// SPDX-License-Identifier: MIT
// The operations with a worker that moves content, as one table: what holds for all of them is tested once.
#pragma once

#include "tests/client/ContentTest.h"

// Where an operation takes its content from and where it puts it: thirty chunks, whose pace leaves a slow
// machine time to break a write off before it ends.
inline constexpr std::size_t kContentSize = 120'000;
inline constexpr std::uint32_t kContentSeed = 7;
// A write replaces that content by another.
inline constexpr std::uint32_t kWrittenSeed = 8;
inline constexpr const char* kContentTree = R"("tree": {"/a": {"size": 120000, "seed": 7}})";

struct OperationCall {
  std::string target;  // a local file, for the operations that have one
  std::uint32_t retries = 0;
  QXHostValue first = 0;
  QXHostValue second = 0;
  bool secondRunSucceeds = false;  // the one that a reconnect asks for
};

struct ContentOperation {
  const char* name;
  const char* verb;  // of its transfer
  int workerLine;    // of the worker's report
  int line;          // of the operation's report
  std::string (*lineOf)(const std::string& operation, const std::string& target);  // "TQXIP::... failed!"
  QXBool (*run)(TQXIP& client, const OperationCall& call);
  const char* function;  // "FTPWriteFile"
  // What has arrived: nothing to compare with where the target is not there.
  bool (*arrived)(const fixture::ScriptedFtp& server, const std::string& target);

  [[nodiscard]] std::string failedLine(const std::string& target) const { return lineOf(function, target); }
  [[nodiscard]] std::string workerFailedLine(const std::string& target) const {
    return lineOf(std::string(function) + "Thr", target);
  }
};

inline std::ostream& operator<<(std::ostream& out, const ContentOperation& operation) {
  return out << operation.name;
}

namespace content_operations {

inline std::string ofOnePath(const std::string& operation, const std::string&) {
  return "TQXIP::" + operation + " '/a' failed!";
}

inline QXBool write(TQXIP& client, const OperationCall& call) {
  const std::string data = patternText(kContentSize, kWrittenSeed);
  return client.FTPWriteFile("/a", data.data(), kContentSize, 0, 0, call.retries, call.first, call.second);
}

// A failed read hands out nothing, unless a second run had more luck; a good one the whole file.
inline QXBool read(TQXIP& client, const OperationCall& call) {
  char before = 0;
  void* data = &before;
  std::uint32_t size = 99;
  const QXBool result = client.FTPReadFile("/a", &data, &size, 0, call.retries, call.first, call.second);
  if (result != 0 || call.secondRunSucceeds) {
    EXPECT_EQ(size, kContentSize);
    EXPECT_TRUE(testing_support::Pattern(kContentSeed).matches(0, data, size));
  } else {
    EXPECT_EQ(data, nullptr);
    EXPECT_EQ(size, 0u);
  }
  EXPECT_EQ(client.FTPFreeFileAPI(data), 1);
  return result;
}

inline QXBool copyToRemote(TQXIP& client, const OperationCall& call) {
  return client.FTPCpyFile("/a", "/b", nullptr, call.retries, call.first, call.second);
}

inline QXBool copyToLocal(TQXIP& client, const OperationCall& call) {
  return client.FTPCpyFile("/a", call.target.c_str(), nullptr, call.retries, call.first, call.second);
}

}  // namespace content_operations

inline const ContentOperation kContentOperations[] = {
    {"Write", "STOR", 8489, 8669, content_operations::ofOnePath, content_operations::write, "FTPWriteFile",
     [](const fixture::ScriptedFtp& server, const std::string&) {
       return server.exists("/a") && server.matches("/a", kWrittenSeed, kContentSize);
     }},
    {"Read", "RETR", 9015, 9201, content_operations::ofOnePath, content_operations::read, "FTPReadFile",
     [](const fixture::ScriptedFtp&, const std::string&) { return true; }},
    {"CopyToRemote", "RETR", 6082, 6259,
     [](const std::string& operation, const std::string&) {
       return "TQXIP::" + operation + " from '/a' to '/b' failed!";
     },
     content_operations::copyToRemote, "FTPCpyFile",
     [](const fixture::ScriptedFtp& server, const std::string&) {
       return server.exists("/b") && server.matches("/b", kContentSeed, kContentSize);
     }},
    {"CopyToLocal", "RETR", 6082, 6259,
     [](const std::string& operation, const std::string& target) {
       return "TQXIP::" + operation + " from '/a' to '" + target + "' failed!";
     },
     content_operations::copyToLocal, "FTPCpyFile",
     [](const fixture::ScriptedFtp&, const std::string& target) {
       const std::string native = target.substr(target.starts_with("Z:/") ? 2 : 0);
       return testing_support::Pattern(kContentSeed).matchesFile(native, kContentSize);
     }},
};

class ContentOperationTest : public ContentTest, public testing::WithParamInterface<ContentOperation> {
 protected:
  const std::string target = localName(local);
  const ContentOperation& operation = GetParam();
  const std::string failedLine = operation.failedLine(target);
  const std::string workerFailedLine = operation.workerFailedLine(target);

  QXBool run(std::uint32_t retries = 0) { return operation.run(client, {target, retries}); }
  int transfers(const fixture::ScriptedFtp& server) const { return server.commandCount(operation.verb); }
  bool arrived(const fixture::ScriptedFtp& server) const { return operation.arrived(server, target); }

  // A server with the content whose transfers go as `rules` say.
  static std::string script(const std::string& rules) {
    return std::string("{") + kContentTree + ", \"rules\": [" + rules + "]}";
  }
  // A rule for the operation's transfer: "nth": 1 and the like, then the step.
  [[nodiscard]] std::string rule(const std::string& which, const std::string& step) const {
    return std::string("{\"on\": \"") + operation.verb + "\", " + which + (which.empty() ? "" : ", ") +
           "\"do\": [" + step + "]}";
  }
};

inline std::string nameOfOperation(const testing::TestParamInfo<ContentOperation>& instance) {
  return instance.param.name;
}
