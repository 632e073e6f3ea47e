// SPDX-License-Identifier: MIT
// What the options say that all commands have in common.
#pragma once

#include <cstdint>
#include <string>

namespace qxftp {

struct Settings {
  std::string library;  // empty: the usual places
  std::string host;     // for paths that are no whole addresses; a name or an address without a path
  std::string user;
  std::uint32_t port = 0;  // 0: of the address
  std::string passwordFile;
  std::string netrc;  // empty: the usual place
  bool ignoresNetrc = false;
  bool isActive = false;
  std::uint32_t retries = 2;
  bool isVerbose = false;
  bool isJson = false;
  bool isLiteral = false;  // wildcards are characters as any other
};

}  // namespace qxftp
