// SPDX-License-Identifier: MIT
// Texts of the library, which are narrow, from and for Windows, whose own are wide. The only place that
// converts.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace hosts {

// The code page is that of the process: UTF-8 where the program's manifest can make it so (Windows 10 1903
// and later), else the system's.
enum class Encoding { codePage, utf8 };

// None where the text has bytes that are none of the encoding, or characters that it lacks.
std::optional<std::wstring> wide(std::string_view text, Encoding encoding);
std::optional<std::string> narrow(std::wstring_view text, Encoding encoding);
// With a mark in place of each, or with a character that resembles it.
std::wstring wideWithMarks(std::string_view text, Encoding encoding);
std::string narrowWithMarks(std::wstring_view text, Encoding encoding);

// A text as the library tells one of a server, and takes it: in the code page, and in UTF-8 where that lacks
// a character or would give what looks like UTF-8.
std::string toLibrary(std::wstring_view text);
// None of bytes that are in neither.
std::optional<std::wstring> fromLibrary(std::string_view text);

}  // namespace hosts
