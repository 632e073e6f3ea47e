// SPDX-License-Identifier: MIT
// Names between hosts of several code pages and servers. A name outside ASCII once went out and came in as
// bytes: a host of Windows made "sch\xF6n", which no server reads as UTF-8.
#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

#include "framework/text/HostText.h"
#include "framework/windows/windows_api.h"

namespace {

using hosttext::equalPaths;
using hosttext::pathForHost;
using hosttext::pathForServer;
using hosttext::textForHost;
using hosttext::wholeSize;

constexpr std::uint32_t kWestern = 1252;
constexpr std::uint32_t kCyrillic = 1251;
constexpr std::uint32_t kJapanese = 932;

struct Name {
  std::uint32_t codePage;
  std::string host;
  std::string server;
};

std::ostream& operator<<(std::ostream& out, const Name& name) {
  return out << name.codePage << ' ' << name.server;
}

// Both ways.
class SharedNames : public testing::TestWithParam<Name> {};

TEST_P(SharedNames, GoOutInUtf8) {
  EXPECT_EQ(pathForServer(GetParam().host, GetParam().codePage), GetParam().server);
}

TEST_P(SharedNames, ComeInInTheCodePage) {
  EXPECT_EQ(pathForHost(GetParam().server, GetParam().codePage), GetParam().host);
}

TEST_P(SharedNames, AreTheSameInBothForms) {
  EXPECT_TRUE(equalPaths(GetParam().host, GetParam().server, GetParam().codePage));
  EXPECT_FALSE(equalPaths(GetParam().host + "x", GetParam().server, GetParam().codePage));
}

INSTANTIATE_TEST_SUITE_P(
    CodePages, SharedNames,
    testing::Values(Name{kWestern,
                         "/sch\xF6n/gr\xF6\xDF"
                         "e.txt",
                         "/sch\xC3\xB6n/gr\xC3\xB6\xC3\x9F"
                         "e.txt"},
                    Name{kWestern, "\x80 5,\x97", "\xE2\x82\xAC 5,\xE2\x80\x94"},
                    Name{kWestern, "\xE9", "\xC3\xA9"},
                    Name{kCyrillic, "/\xCF\xF0\xE8\xE2\xE5\xF2.txt",
                         "/\xD0\x9F\xD1\x80\xD0\xB8\xD0\xB2\xD0\xB5\xD1\x82.txt"},
                    Name{kCyrillic, "\xB9 1", "\xE2\x84\x96 1"},
                    // The second byte is a backslash, a bar, a letter.
                    Name{kJapanese, "/\x95\x5C/\x83\x7C.txt", "/\xE8\xA1\xA8/\xE3\x83\x9D.txt"},
                    Name{kJapanese, "\x83\x41\x83\x61", "\xE3\x82\xA2\xE3\x83\x82"},
                    // Half-width.
                    Name{kJapanese, "\xB1.txt", "\xEF\xBD\xB1.txt"},
                    Name{platform::kUtf8CodePage, "/\xC5\x81\xC3\xB6", "/\xC5\x81\xC3\xB6"}));

// What the code page lacks, or would confuse with another name, stays UTF-8, which finds its file again.
class ForeignNames : public testing::TestWithParam<Name> {};

TEST_P(ForeignNames, ComeInAsUtf8AndGoOutAgain) {
  const auto& [codePage, host, server] = GetParam();
  EXPECT_EQ(pathForHost(server, codePage), host);
  EXPECT_EQ(pathForServer(host, codePage), server);
}

INSTANTIATE_TEST_SUITE_P(
    CodePages, ForeignNames,
    testing::Values(Name{kWestern,
                         "\xC5\x81"
                         "a.txt",
                         "\xC5\x81"
                         "a.txt"},                                           // best fit: La.txt
                    Name{kWestern, "\xEF\xBC\xA1.txt", "\xEF\xBC\xA1.txt"},  // full-width: A.txt
                    Name{kWestern, "a\xCC\x88", "a\xCC\x88"},                // a combining mark
                    Name{kWestern, "\xF0\x9F\x98\x80", "\xF0\x9F\x98\x80"},  // above U+FFFF
                    Name{kWestern, "\xC3\x83\xC2\xA4", "\xC3\x83\xC2\xA4"},  // in 1252 it looks like UTF-8
                    Name{kWestern, "\xEF\xBF\xBD", "\xEF\xBF\xBD"},
                    Name{kCyrillic, "gr\xC3\xBC\xC3\x9F", "gr\xC3\xBC\xC3\x9F"},
                    Name{kJapanese, "sch\xC3\xB6n", "sch\xC3\xB6n"},
                    Name{kJapanese, "\xC2\xA5", "\xC2\xA5"},  // best fit: a backslash
                    // Each component for itself: a host joins a folder of one form and a name of the other.
                    Name{kWestern, "/sch\xF6n/\xC5\x81.txt/\xE9", "/sch\xC3\xB6n/\xC5\x81.txt/\xC3\xA9"}));

TEST(CodePages, BytesThatAreNoTextGoOutAsTheyAre) {
  EXPECT_EQ(pathForServer("\x95", kJapanese), "\x95") << "half a character";
  EXPECT_EQ(pathForServer("/a\x95/b", kJapanese), "/a\x95/b");
}

TEST(CodePages, EveryByteOf1252ComesBackAsItWas) {
  for (int byte = 0x80; byte <= 0xFF; ++byte) {
    const std::string name = "a" + std::string(1, static_cast<char>(byte)) + "b";
    const std::string server = pathForServer(name, kWestern);
    EXPECT_TRUE(hosttext::isUtf8(server)) << byte;
    EXPECT_EQ(pathForHost(server, kWestern), name) << byte;
  }
}

TEST(CodePages, WhatAServerSaysIsInOneEncoding) {
  EXPECT_EQ(textForHost("550 /sch\xC3\xB6n: no", kWestern), "550 /sch\xF6n: no");
  EXPECT_EQ(textForHost("550 /sch\xC3\xB6n/\xC5\x81: no", kWestern), "550 /sch\xC3\xB6n/\xC5\x81: no");
  EXPECT_EQ(textForHost("550 \xC3\x83\xC2\xA4", kWestern), "550 \xC3\xA4")
      << "for people, not to be passed back";
}

TEST(CodePages, TellWhichBackslashIsHalfACharacter) {
  const auto backslashes = [](const std::string& path) {
    std::vector<std::size_t> found;
    hosttext::forEachCharacter(path, kJapanese, [&](std::size_t at) {
      if (path[at] == '\\') found.push_back(at);
    });
    return found;
  };
  using Places = std::vector<std::size_t>;
  EXPECT_EQ(backslashes("\\\x95\\\\a"), (Places{0, 3}));
  EXPECT_EQ(backslashes("/\x95\\/\x95\\"), Places());
  EXPECT_EQ(backslashes("\xE8\xA1\xA8\\a"), Places{3}) << "UTF-8";
  EXPECT_EQ(backslashes("\x95/\\"), Places{2}) << "a slash is never half a character";
  EXPECT_EQ(backslashes("\x95"), Places());
}

TEST(CodePages, AreCutBetweenTwoCharacters) {
  const std::string text = "a\x83\x5C\xB1\x95\x5C";
  const std::size_t wanted[] = {0, 1, 1, 3, 4, 4, 6};
  for (std::size_t cut = 0; cut <= text.size(); ++cut) {
    EXPECT_EQ(wholeSize(text.substr(0, cut), kJapanese), wanted[cut]) << cut;
  }
}

TEST(CodePages, NamesThatDifferInASecondByteAreDifferent) {
  // 0x8341 and 0x8361: 'A' and 'a' are halves of them.
  EXPECT_FALSE(equalPaths("\x83\x41", "\x83\x61", kJapanese));
  EXPECT_TRUE(equalPaths("\x83\x41X", "\x83\x41x", kJapanese));
}

TEST(CodePages, ThisProcesssIsTheSystems) { EXPECT_EQ(platform::narrowCodePage(), GetACP()); }

}  // namespace
