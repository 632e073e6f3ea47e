// SPDX-License-Identifier: MIT
// The file of logins that FTP programs share.
//
//   machine ftp.example.org
//     login me
//     password "se cret"
//   default login anonymous password me@example.org
//
// A word may stand in quotation marks, with \" and \\ in it. "macdef" ends with an empty line and is skipped.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace hosts {

struct NetrcLogin {
  std::string user;
  std::string password;
};

// The first entry of the host, or the default one, that has the user, who may be empty: any.
[[nodiscard]] std::optional<NetrcLogin> findInNetrc(std::string_view text, std::string_view host,
                                                    std::string_view user);

}  // namespace hosts
