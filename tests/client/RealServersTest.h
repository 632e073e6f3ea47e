// SPDX-License-Identifier: MIT
// A test at one real server, in passive or in active mode.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <tuple>

#include "tests/client/TransferTest.h"

// Kind of the server, and whether the mode is passive.
using ServerAndMode = std::tuple<const char*, bool>;

// The servers of a program, one of each kind for all its tests: starting one costs more than a test.
class RunningServers : public testing::Environment {
 public:
  static const fixture::RealServer& get(const std::string& kind) {
    auto& known = servers[kind];
    if (!known) known = std::make_unique<fixture::RealServer>(kind.c_str());
    return *known;
  }
  void TearDown() override { servers.clear(); }

 private:
  static inline std::map<std::string, std::unique_ptr<fixture::RealServer>> servers;
};

inline const testing::Environment* const runningServers =
    testing::AddGlobalTestEnvironment(new RunningServers);

class RealServersTest : public TransferTest, public testing::WithParamInterface<ServerAndMode> {
 protected:
  const std::string kind = std::get<0>(GetParam());
  const fixture::RealServer& server = RunningServers::get(kind);
  const bool passive = std::get<1>(GetParam());

  void SetUp() override {
    client.FTPSetLogin(server.host().c_str(), server.user().c_str(), server.password().c_str(), server.port(),
                       passive ? 1 : 0);
  }
  // A path below the folder that may be changed.
  [[nodiscard]] std::string at(const std::string& path) const { return server.folder() + path; }
  void put(const std::string& path, const std::string& file) const {
    server.put("{\"" + at(path) + "\": " + file + "}");
  }
};

inline constexpr const char* kServerKinds[] = {"vsftpd", "pyftpdlib", "proftpd", "pure-ftpd",
                                               "inetutils-ftpd"};

inline auto inBothModes() { return testing::Combine(testing::ValuesIn(kServerKinds), testing::Bool()); }

inline std::string serverAndModeName(const testing::TestParamInfo<ServerAndMode>& instance) {
  std::string name = std::get<0>(instance.param);
  std::erase(name, '-');
  return name + (std::get<1>(instance.param) ? "Passive" : "Active");
}
