// SPDX-License-Identifier: MIT
// Whether a copy can have gone onto its own source.
#pragma once

// True when two remote paths may name one file: they differ at most in slashes, "." and "..", the case of
// ASCII letters (servers that do not mind it exist), dots and blanks at the end of a name (Windows drops
// them), or in the directory that a relative one starts in. Links are not looked through.
[[nodiscard]] bool MayBeSameFile(const char* first, const char* second);
