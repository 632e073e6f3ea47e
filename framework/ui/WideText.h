// SPDX-License-Identifier: MIT
// Texts of the shell's interfaces in the system's 8-bit code page, and back. What the code page lacks is
// never taken for a character that merely looks like it: the text might name another file.
#pragma once

#include <optional>
#include <string>

std::wstring wideText(const std::string& text);
// What the code page lacks becomes its replacement character.
std::string narrowText(const std::wstring& text);
// Nothing when the code page lacks a character.
std::optional<std::string> exactNarrowText(const std::wstring& text);

struct PathParts {
  std::wstring folder;  // "" when the path names none; only a root keeps its backslash
  std::wstring file;
};

// Wide, because the second byte of a narrow character may look like a backslash.
//   C:\data\a.txt -> C:\data, a.txt        C:\a.txt -> C:\, a.txt        a.txt -> "", a.txt
PathParts pathParts(const std::wstring& path);
