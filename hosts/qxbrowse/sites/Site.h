// SPDX-License-Identifier: MIT
// A server that is remembered: how to log in to it, and where to begin. Texts are UTF-8.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "QXClient.h"
#include "hosts/qxbrowse/ui/Texts.h"

namespace browse {

// How the way to the server is protected: in plain text, encrypted before the login, or from the first byte.
enum class Encryption { none, ftpes, ftps };

struct Site {
  std::string name;
  std::string host;         // a name or an address, without scheme or options
  std::uint32_t port = 21;  // ftps takes 21 for its own, 990
  std::string user = "anonymous";
  Encryption encryption = Encryption::none;
  bool isPassive = true;
  std::string localFolder;   // "": where the pane is
  std::string remoteFolder;  // "": where the login leads
  std::string pin;       // SHA-256 of the one certificate that will do, 64 lower case hex digits; "": none
  std::string password;  // protected (Protection.h); "": is asked for

  bool operator==(const Site&) const = default;
};

// What is wrong with it, for its user; nothing for a site that can be connected to and remembered. The host
// must not bring options of its own: they could switch the checks off.
std::optional<Text> faultOf(const Site& site);

// In the words of the library, with the pin.
qx::Login loginOf(const Site& site, std::string password);

// 64 hex digits in either case, with or without colons, in the form of Site::pin.
std::optional<std::string> pinFrom(std::string_view text);

std::string_view nameOf(Encryption encryption);
std::optional<Encryption> encryptionFrom(std::string_view name);

}  // namespace browse
