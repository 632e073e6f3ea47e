// SPDX-License-Identifier: MIT
// The proxies that environment variables name, as curl and what came after it read them. No I/O.
#pragma once

#include <functional>
#include <string_view>
#include <vector>

#include "framework/platform/proxies.h"

namespace platform {

// The value of a variable; empty: not set. A view, for a password in it must not be left behind.
using Environment = std::function<std::string_view(const char* name)>;

// <scheme>_proxy, else all_proxy, in small or capital letters (but not HTTP_PROXY: a web server hands its
// scripts a client's "Proxy:" header by that name), unless no_proxy names the host. That is "*" for all, or a
// list with commas or blanks of
//   example.com, .example.com   the name and all below it
//   192.0.2.1, ::1, [::1]       an address
//   10.0.0.0/8, fd00::/8        all that begin with so many bits
std::vector<Proxy> proxiesFrom(const Environment& environment, const ProxyTarget& target);

}  // namespace platform
