// SPDX-License-Identifier: MIT
// Host-side paths turned into FTP paths, split, and told apart. They are texts of the process's code page, in
// which the second byte of a character may look like a backslash, or UTF-8.
#pragma once

#include "support/BoundedText.h"

// Turns a path into an FTP path, in place (it never grows). Always true; null and "" stay as they are.
//   \pub\data\   -> /pub/data        //pub -> /pub        / -> /        a/b -> /b (a one-letter first
//   component followed by a slash loses its letter: hosts rely on the rule "drop the first of two")
bool ToFtpPath(char* path) noexcept;

// Drops a single leading backslash and one trailing separator, in place. True when a text remains.
//   \pub -> pub        /pub/ -> /pub        / -> /        \ -> "" (false)
bool TrimSlashes(char* path) noexcept;

// Splits as the C runtime does and trims each part's separators. Outputs may be null.
//   /pub/a.txt -> directory "/pub", fileName "a.txt", extension ".txt"
// False, with empty outputs, for a null path or one that a PathText cannot hold.
bool SplitPath(const char* path, PathText* directory, PathText* fileName, PathText* extension) noexcept;

// True for a path on the server: longer than one character, no drive letter, not behind two backslashes; or
// "/".
[[nodiscard]] bool IsRemotePath(const char* path) noexcept;

// True when a path may go to a server: it fits a PathText and has no control character (a line end in a path
// would start a second command).
[[nodiscard]] bool IsSafeRemotePath(const char* path) noexcept;

// Whether two names are the same on a server, without regard to the case of ASCII letters: a name may stand
// in the process's code page or in UTF-8.
[[nodiscard]] bool EqualNames(const char* left, const char* right);
