// SPDX-License-Identifier: MIT
#include "tests/support/SystemProxies.h"

#include "tests/support/windows/OwnSettings.h"

namespace testing_support {

struct SystemProxies::Settings {
  OwnSettings own;
};

SystemProxies::SystemProxies(ProxyKind kind, const fixture::Server& proxy, const std::string& login,
                             const std::string& exceptions) {
  const std::string protocol = kind == ProxyKind::socks ? "socks=" : "";
  const std::string place = proxy.host() + ":" + std::to_string(proxy.port());
  const std::string text = protocol + (login.empty() ? "" : login + "@") + place;
  settings_.reset(new Settings{OwnSettings({false, "", text, exceptions + ";<-loopback>"})});
}

SystemProxies::~SystemProxies() = default;

}  // namespace testing_support
