// SPDX-License-Identifier: MIT
// Web addresses, and the forms of their parts that go into a request. No I/O.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace internet {

enum class UrlService { ftp, http, https };

inline constexpr std::uint16_t kDefaultHttpPort = 80;
inline constexpr std::uint16_t kDefaultHttpsPort = 443;

// The request target of an object: with a leading slash; blanks, '#' and bytes above 0x7e as %XX, all else as
// it stands. Control bytes stay, see isSendable().
std::string requestTarget(std::string_view object);
// Nothing in it could end the request line or begin another header.
bool isSendable(std::string_view target) noexcept;
// A name or numeric address, which may be looked up and sent in a Host header.
bool isHostName(std::string_view server) noexcept;
// The value of a Host header, without the port that is the usual one.
std::string hostField(std::string_view server, std::uint16_t port, std::uint16_t usual = kDefaultHttpPort);

}  // namespace internet

// Splits "scheme://[user@]server[:port][/object]" of the schemes ftp, http and https. Bytes up to 0x20 around
// the address and a fragment are dropped; without a port it is the scheme's usual one; the object may be
// empty. False, and nothing set, when it is no such address.
bool AfxParseURL(std::string_view url, internet::UrlService& service, std::string& server,
                 std::string& object, std::uint16_t& port);
