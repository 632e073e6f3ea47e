// SPDX-License-Identifier: MIT
// The "%41" of URLs.
#pragma once

#include <string>
#include <string_view>

namespace hosts {

// "a%20b" -> "a b". Throws std::invalid_argument for a "%" without two hex digits and for a control
// character, whether it is written as it is or in this way: no path on a server and no login has one.
[[nodiscard]] std::string percentDecoded(std::string_view text);

// "a b" -> "a%20b": all but letters, digits, "-._~" and the characters of `kept`.
[[nodiscard]] std::string percentEncoded(std::string_view text, std::string_view kept = {});

}  // namespace hosts
