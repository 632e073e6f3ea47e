// SPDX-License-Identifier: MIT
// Names that every operation takes as they are, and paths that none takes.
#pragma once

#include <string>

// Last components with characters that shells, URLs, disks or servers' option parsers take for something
// else.
inline const std::string kOddNames[] = {
    "with blank",      " blank first", "blank last ", "%41", "100%25", "a#b",       "what?",
    "a;type=i",        "-l",           "--help",      "a*b", "a'b\"c", "100% [x]*", "\xc3\xbcml\xc3\xa4ut",
    "\xe6\x96\x87.txt"};

// Paths that may not go to a server.
inline const std::string kBadPaths[] = {"/" + std::string(4095, 'a'),
                                        std::string(5'000, 'a'),
                                        std::string(100'000, 'a'),
                                        "/a\r\nDELE /b",
                                        "/a\nb",
                                        "/a\x7f",
                                        "/\x01"};
