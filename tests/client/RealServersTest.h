// SPDX-License-Identifier: MIT
// A test at one real server, plain or encrypted, in passive or in active mode.
#pragma once

#include <algorithm>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "tests/client/TransferTest.h"
#include "tests/support/TestTrust.h"

// Kind of the server, and whether the mode is passive. Behind a kind, and a blank, stands what the host's
// text has in front of the name, and its options: "vsftpd ftps://;tls=1.2".
using ServerAndMode = std::tuple<const char*, bool>;

// The system's TLS under Wine resumes no session, and takes no authority of ours.
inline constexpr bool kOwnTls = std::filesystem::path::preferred_separator == '/';

struct ServerKind {
  explicit ServerKind(const std::string& text)
      : kind(text.substr(0, text.find(' '))),
        scheme(text.substr(std::min(kind.size() + 1, text.size()))),
        options(scheme.substr(std::min(scheme.find(';'), scheme.size()))) {
    scheme.resize(scheme.size() - options.size());
    if (!kOwnTls && !scheme.empty()) options += ";verify=no";
  }
  [[nodiscard]] std::string script() const {
    if (scheme.empty()) return "{}";
    const std::string implicit = scheme == "ftps://" ? "true" : "false";
    return R"({"tls": {"implicit": )" + implicit + R"(, "reuse": )" + (kOwnTls ? "true" : "false") + "}}";
  }

  std::string kind;
  std::string scheme;
  std::string options;
};

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
    if constexpr (kOwnTls) testing_support::trustTestAuthority();
    client.FTPSetLogin(host.c_str(), server.user().c_str(), server.password().c_str(), server.port(),
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

// Each kind in plain text; and, where the system's TLS can resume sessions, encrypted.
inline auto inBothModes() {
  std::vector<ServerAndMode> all;
  for (const char* kind : kServerKinds) all.insert(all.end(), {{kind, false}, {kind, true}});
  if (kOwnTls) {
    all.insert(all.end(), {{"vsftpd ftpes://", true}, {"vsftpd ftps://;tls=1.2", false}});
    all.insert(all.end(), {{"proftpd ftpes://", false}, {"proftpd ftps://;tls=1.2", true}});
    all.insert(all.end(), {{"pure-ftpd ftpes://", true}, {"pyftpdlib ftpes://;tls=1.2", true}});
  }
  return testing::ValuesIn(all);
}

inline std::string serverAndModeName(const testing::TestParamInfo<ServerAndMode>& instance) {
  std::string name = std::get<0>(instance.param);
  std::erase_if(name, [](char c) { return !std::isalnum(static_cast<unsigned char>(c)); });
  return name + (std::get<1>(instance.param) ? "Passive" : "Active");
}
