// SPDX-License-Identifier: MIT
// The text by which a host names a server. No I/O.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace internet {

struct ServerName {
  std::string name;      // to look up: an address of IPv6 is without its brackets here, and with its zone
  bool address = false;  // in numbers, so that there is nothing to look up
};

// Brackets stand around addresses of IPv6 alone ("[::1]", "[fe80::1%eth0]"), which do as well without them.
// Any other text is its own name.
ServerName parseServerName(std::string_view text);

// "name:21", "[::1]:21". The zone of an address is this machine's own affair and left out.
std::string placeText(std::string_view name, std::uint16_t port);

}  // namespace internet
