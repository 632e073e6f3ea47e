// SPDX-License-Identifier: MIT
// What a server says in a text, apart from the paths that it quotes there: a directory may be called like
// anything that a server can say of it. No I/O.
#pragma once

#include <initializer_list>
#include <string_view>

namespace internet {

struct QuotedPaths {
  std::string_view asked;    // as the server got it; "" = the current directory
  std::string_view current;  // "" = unknown
};

// Where the bare last component of a path is that path and no word of the server's: names like "empty" are
// both, and each question has its own safe answer to the doubt.
enum class BareName {
  anywhere,
  leading  // only first in its line, or before a colon
};

// Whether `text`, lines with or without their reply codes, says one of `words` (in lower case) in any case of
// letters, outside quotes and paths.
[[nodiscard]] bool serverSays(std::string_view text, std::initializer_list<std::string_view> words,
                              const QuotedPaths& paths, BareName bareName);

// Whether a login was refused, by this reply, only because the server has too many others: it may well
// succeed a moment later. A refusal for too many attempts is another thing.
[[nodiscard]] bool tellsOfCrowd(std::string_view reply);

}  // namespace internet
