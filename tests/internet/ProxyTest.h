// SPDX-License-Identifier: MIT
// What the tests of proxies over a network in memory have in common.
#pragma once

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "framework/internet/net/NameLookup.h"
#include "tests/internet/FtpMemoryTest.h"
#include "tests/support/MemoryProxy.h"
#include "tests/support/ProxiesInUse.h"

namespace internet_tests {

using testing_support::ProxiesInUse;

// Nothing is looked up here while it lives, but what is asked for is noted.
class NoLookups {
 public:
  NoLookups() {
    asked = {};
    internet::setResolverForTesting(&lookUp);
  }
  ~NoLookups() { internet::setResolverForTesting(nullptr); }
  NoLookups(const NoLookups&) = delete;
  NoLookups& operator=(const NoLookups&) = delete;

  static inline std::vector<std::string> asked;

 private:
  static std::vector<platform::SocketAddress> lookUp(const std::string& host, std::uint16_t) {
    asked.push_back(host);
    return {};
  }
};

// A server behind a proxy, and the way to both.
struct Behind {
  testing_support::MemoryFtp server;
  testing_support::MemoryProxy proxy{server};
  testing_support::MemoryNetwork network{proxy};
};

class LoggingSession : public RecordingSession {
 public:
  [[nodiscard]] bool WantsProtocol() const noexcept override { return true; }
  void OnProtocolLine(const char* line) override { lines.emplace_back(line); }
  [[nodiscard]] bool has(const std::string& line) const {
    return std::find(lines.begin(), lines.end(), line) != lines.end();
  }
  [[nodiscard]] std::string all() const {
    std::string text;
    for (const std::string& line : lines) text += line + '\n';
    return text;
  }
  std::vector<std::string> lines;
};

class ProxyTest : public FtpTest {
 protected:
  static constexpr const char* kHost = "ftp.example.com";

  std::unique_ptr<CFtpConnection> login(const char* host = kHost, bool passive = true) {
    return std::unique_ptr<CFtpConnection>(session.GetFtpConnection(host, "user", "secret", 21, passive));
  }

  NoLookups lookups;
  LoggingSession session;
};

}  // namespace internet_tests
