// SPDX-License-Identifier: MIT
// Contract: the proxies that the system's settings name on the way to a server. POSIX: the process's
// environment (proxy_environment.h). Windows: the user's Internet settings.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "framework/text/Secret.h"

namespace platform {

struct Proxy {
  enum class Kind : std::uint8_t {
    direct,      // none: straight to the server
    http,        // HTTP, and CONNECT for everything else
    socks,       // SOCKS 5; the proxy resolves the names
    unsupported  // named, but not to be spoken to: a failure, never a way around it
  };
  Kind kind = Kind::direct;
  std::string host;  // a name, or an address without brackets
  std::uint16_t port = 0;
  std::string user;  // empty: it wants none
  secret::Text password;
  std::string text;  // as the settings name it ("socks5://proxy:1080"), without user and password
};

struct ProxyTarget {
  std::string scheme;  // "http", "https" or "ftp" (encrypted or not)
  std::string host;    // a name, or an address without brackets
  std::uint16_t port = 0;
};

// The proxies on the way to `target`, in the order in which they are to be tried; empty: none is named, which
// is as good as `direct`. None (nullopt) when the system has to find out first, which proxiesFor() does.
std::optional<std::vector<Proxy>> proxiesAtOnce(const ProxyTarget& target);

// The same, whatever it takes: a script that comes from the network may take many seconds. Called on a thread
// that nobody has to wait for.
std::vector<Proxy> proxiesFor(const ProxyTarget& target);

}  // namespace platform
