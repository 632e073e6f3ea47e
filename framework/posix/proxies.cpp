// SPDX-License-Identifier: MIT
#include "framework/platform/proxies.h"

#include <cstdlib>

#include "framework/platform/proxy_environment.h"

namespace platform {

std::optional<std::vector<Proxy>> proxiesAtOnce(const ProxyTarget& target) { return proxiesFor(target); }

std::vector<Proxy> proxiesFor(const ProxyTarget& target) {
  const auto environment = [](const char* name) -> std::string_view {
    const char* const value = std::getenv(name);
    return value ? value : "";
  };
  return proxiesFrom(environment, target);
}

}  // namespace platform
