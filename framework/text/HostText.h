// SPDX-License-Identifier: MIT
// Where the encoding of hosts and that of servers meet. A host's narrow texts are in its process's code page
// (Windows: 1252, 932, ...), servers speak UTF-8. Everything between them is in the servers' form; the public
// classes convert at their edge, both ways, by the rules that stand here. Every function takes the code page
// as its argument; for platform::kUtf8CodePage nothing is ever changed.
//
// A path is judged component by component, because a host joins what it was given at different times:
//   host -> server   a component that is valid UTF-8 (ASCII is) stays; any other is a text of the code page
//   server -> host   a component goes over into the code page when it comes back from there as it was; else
//                    it stays UTF-8: where the code page lacks a character, and where the result would be
//                    valid UTF-8 itself. So every name that a host is given finds its file.
// Bytes that are a text in neither encoding stay as they are.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "framework/platform/code_page.h"

namespace hosttext {

// By the letter (RFC 3629): no surrogates, nothing in more bytes than needed, nothing above U+10FFFF.
[[nodiscard]] bool isUtf8(std::string_view text) noexcept;

[[nodiscard]] std::string pathForServer(std::string_view path, std::uint32_t codePage);
[[nodiscard]] std::string pathForHost(std::string_view path, std::uint32_t codePage);

// What a server says, for people: in the code page when it has all the characters, else as it is.
[[nodiscard]] std::string textForHost(std::string_view text, std::uint32_t codePage);

// Whether two of a host's paths name the same on a server, blind to the case of ASCII letters.
[[nodiscard]] bool equalPaths(std::string_view left, std::string_view right, std::uint32_t codePage);

// The bytes of the character at `at` of a component of a path, where `narrow` says that the component is a
// text of the code page: 2 where it has both, else 1.
[[nodiscard]] std::size_t characterSize(std::string_view text, std::size_t at, bool narrow,
                                        std::uint32_t codePage) noexcept;

// `cut` is the beginning of a longer text: how many of its bytes there are up to the end of its last
// character that is whole.
[[nodiscard]] std::size_t wholeSize(std::string_view cut, std::uint32_t codePage) noexcept;

// Calls visit(at) for the first byte of each character of a host's path: what looks like a backslash may be a
// character's second byte. `visit` may replace a backslash by a slash.
template <class Visit>
void forEachCharacter(std::string_view path, std::uint32_t codePage, Visit visit) {
  for (std::size_t start = 0; start < path.size();) {
    const std::size_t end = std::min(path.find('/', start), path.size() - 1) + 1;
    const std::string_view component = path.substr(start, end - start);
    const bool narrow = codePage != platform::kUtf8CodePage && !isUtf8(component);
    for (std::size_t at = 0; at < component.size();) {
      const std::size_t size = characterSize(component, at, narrow, codePage);
      visit(start + at);
      at += size;
    }
    start = end;
  }
}

}  // namespace hosttext
