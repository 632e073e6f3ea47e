// SPDX-License-Identifier: MIT
#include "tests/support/SystemProxies.h"

#include <cstdlib>

namespace testing_support {

namespace {

constexpr const char* kVariables[] = {"http_proxy", "https_proxy", "ftp_proxy", "no_proxy"};

}  // namespace

struct SystemProxies::Settings {};

SystemProxies::SystemProxies(ProxyKind kind, const fixture::Server& proxy, const std::string& login,
                             const std::string& exceptions) {
  const std::string scheme = kind == ProxyKind::socks ? "socks5h://" : "http://";
  const std::string place = proxy.host() + ":" + std::to_string(proxy.port());
  const std::string text = scheme + (login.empty() ? "" : login + "@") + place;
  for (const char* name : kVariables) ::setenv(name, text.c_str(), 1);
  ::setenv("no_proxy", exceptions.c_str(), 1);
}

SystemProxies::~SystemProxies() {
  for (const char* name : kVariables) ::unsetenv(name);
}

}  // namespace testing_support
