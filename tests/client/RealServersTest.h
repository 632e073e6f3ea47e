// SPDX-License-Identifier: MIT
// A test at one real server, plain or encrypted, in passive or in active mode.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "tests/client/TransferTest.h"
#include "tests/support/RealServerKind.h"
#include "tests/support/TestTrust.h"

// The servers of a program, one of each kind for all its tests: starting one costs more than a test.
class RunningServers : public testing::Environment {
 public:
  static const fixture::RealServer& get(const ServerKind& wanted) {
    const std::string script = wanted.script();
    auto& known = servers[wanted.kind + script];
    if (!known) known = std::make_unique<fixture::RealServer>(wanted.kind.c_str(), script);
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
  const ServerKind serverKind{std::get<0>(GetParam())};
  const std::string& kind = serverKind.kind;
  const fixture::RealServer& server = RunningServers::get(serverKind);
  // What the client is told.
  const std::string host = serverKind.scheme + server.host() + serverKind.options;
  const bool passive = std::get<1>(GetParam());

  void SetUp() override {
    if (!serverKind.scheme.empty()) testing_support::trustTestAuthority();
    client.FTPSetLogin(host.c_str(), server.user().c_str(), server.password().c_str(), server.port(),
                       passive ? 1 : 0);
  }
  // A path below the folder that may be changed.
  [[nodiscard]] std::string at(const std::string& path) const { return server.folder() + path; }
  void put(const std::string& path, const std::string& file) const {
    server.put("{\"" + at(path) + "\": " + file + "}");
  }
};

// Each kind in plain text; and, where the system's TLS can resume sessions, encrypted.
inline auto inBothModes() {
  std::vector<ServerAndMode> all;
  for (const char* kind : kServerKinds) all.insert(all.end(), {{kind, false}, {kind, true}});
  if (kResumesSessions) {
    all.insert(all.end(), {{"vsftpd ftpes://", true}, {"vsftpd ftps://;tls=1.2", false}});
    all.insert(all.end(), {{"proftpd ftpes://", false}, {"proftpd ftps://;tls=1.2", true}});
    all.insert(all.end(), {{"pure-ftpd ftpes://", true}, {"pyftpdlib ftpes://;tls=1.2", true}});
  }
  return testing::ValuesIn(all);
}
