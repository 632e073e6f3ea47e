// SPDX-License-Identifier: MIT
// Addresses of servers and of what is on them, as people write them:
//
//   ftp://user@host:port/path;option    plain       ftpes://...  encrypted before the login
//                                                   ftps://...   encrypted from the first byte
//
// The options are those of include/QXIPInt.h for encryption (fingerprint=sha256:..., verify=no, tls=1.2). In
// user, password and path "%20" is a blank; the path begins at the server's root. An address of IPv6 stands
// in brackets. The options may also stand right behind host and port.
#pragma once

#include <string>
#include <string_view>

#include "QXClient.h"

namespace hosts {

struct Address {
  qx::Login login{.host = {}, .user = {}, .password = {}};  // user and password are empty where it has none
  std::string path;                                         // "" or what begins with a slash
};

// Whether the text begins as an address does: a path never has a "://" before its first other slash.
[[nodiscard]] bool isAddress(std::string_view text);

// Throws std::invalid_argument with a text for people, which does not repeat the address: that may have a
// password. "ftp.example.org" without a scheme is an address as well.
[[nodiscard]] Address parseAddress(std::string_view text);

// The address as a text that parseAddress() takes, without the password. A path without a slash at its begin
// gets one.
[[nodiscard]] std::string textOf(const Address& address);

// "http://" or "https://", a host, perhaps a port and options as above, and what is asked for, which stays as
// it is written. Throws as parseAddress() does.
[[nodiscard]] qx::WebFile parseWebAddress(std::string_view text);

// 1 to 65535. Throws std::invalid_argument.
[[nodiscard]] std::uint32_t parsePort(std::string_view text);

}  // namespace hosts
