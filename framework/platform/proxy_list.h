// SPDX-License-Identifier: MIT
// The lists in which Windows keeps the user's proxies and what goes past them. No I/O.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "framework/platform/proxies.h"

namespace platform {

// The proxies for the target's protocol, with semicolons or blanks between the entries:
//   proxy:8080                             for every protocol
//   http=a:80;https=b:81;ftp=c:82          for one each; "a", "http://a" and "https://a" are HTTP at port 80
//   socks=d:1080                           for every protocol that has no entry
// Of an own entry, one for all, and socks=, the first that is there counts, with all of its kind in order.
std::vector<Proxy> proxiesOfList(std::string_view list, const ProxyTarget& target);

// Whether a list of exceptions names the target, blind to case, "*" standing for any characters:
//   *.example.com, 192.168.*, [fe80::*]    hosts as they are named; nothing is looked up
//   http://intranet, example.com:8080      of one protocol, at one port
//   <local>                                names without a dot
bool isExcepted(std::string_view list, const ProxyTarget& target);

// No proxy stands between a program and its own machine, whatever a list or a script says, unless the
// exceptions have the word <-loopback>.
bool isOwnMachine(const std::string& host);
bool includesOwnMachine(std::string_view exceptions) noexcept;

}  // namespace platform
