// SPDX-License-Identifier: MIT
// Texts of servers for a terminal: whoever names a file must not be able to move the cursor.
#pragma once

#include <string>
#include <string_view>

namespace qxftp {

// Line ends, tabs and other control characters as "\n", "\t" and "\x1b"; so do characters that turn the
// direction of writing, and bytes that are no UTF-8, which a terminal may take for control characters.
[[nodiscard]] std::string printable(std::string_view text);

}  // namespace qxftp
