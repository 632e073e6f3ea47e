// SPDX-License-Identifier: MIT
// The system's settings of proxies, for this process alone: its environment, or on Windows a registry of its
// own. While one lives, every connection of the process goes by it, also one to this machine. No other thread
// may be at work when it comes and when it goes.
#pragma once

#include <memory>
#include <string>

#include "tests/support/Fixture.h"

namespace testing_support {

enum class ProxyKind { socks, http };

class SystemProxies {
 public:
  // `login`: "", or "user:password". `exceptions`: a host that is reached straight.
  SystemProxies(ProxyKind kind, const fixture::Server& proxy, const std::string& login = {},
                const std::string& exceptions = {});
  ~SystemProxies();
  SystemProxies(const SystemProxies&) = delete;
  SystemProxies& operator=(const SystemProxies&) = delete;

 private:
  struct Settings;
  std::unique_ptr<Settings> settings_;
};

}  // namespace testing_support
