// SPDX-License-Identifier: MIT
// Texts between host and server, as far as they are the same whatever the system knows of code pages.
#include "framework/text/HostText.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using hosttext::equalPaths;
using hosttext::isUtf8;
using hosttext::pathForHost;
using hosttext::pathForServer;
using hosttext::textForHost;
using hosttext::wholeSize;
using platform::kUtf8CodePage;

constexpr std::uint32_t kWestern = 1252;

std::vector<std::size_t> characters(const std::string& path, std::uint32_t codePage) {
  std::vector<std::size_t> starts;
  hosttext::forEachCharacter(path, codePage, [&](std::size_t at) { starts.push_back(at); });
  return starts;
}

TEST(Utf8, IsToldByTheLetter) {
  for (const char* text :
       {"", "plain", "sch\xC3\xB6n", "\xC2\x80", "\xDF\xBF", "\xE0\xA0\x80", "\xED\x9F\xBF", "\xEE\x80\x80",
        "\xEF\xBF\xBF", "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF", "\xE8\xA1\xA8.txt"}) {
    EXPECT_TRUE(isUtf8(text)) << text;
  }
}

TEST(Utf8, IsNoOtherBytes) {
  for (const char* text : {
           "sch\xF6n",           // one byte of a code page
           "\x80", "a\xBF",      // no lead
           "\xC3", "x\xE8\xA1",  // cut
           "\xC3(", "\xE8\xA1(", "\xF0\x90\x80(", "\xC0\xAF", "\xC1\xBF", "\xE0\x9F\xBF",
           "\xF0\x8F\xBF\xBF",                              // in more bytes than needed
           "\xED\xA0\x80", "\xED\xBF\xBF",                  // surrogates
           "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xFF",  // beyond the last character
       }) {
    EXPECT_FALSE(isUtf8(text)) << text;
  }
}

TEST(HostText, EndsWithAWholeCharacterWhereItWasCut) {
  const std::string text = "ab\xC3\xBC\xE6\x96\x87\xF0\x9F\x98\x80";
  const std::size_t wanted[] = {0, 1, 2, 2, 4, 4, 4, 7, 7, 7, 7, 11};
  for (std::size_t cut = 0; cut <= text.size(); ++cut) {
    EXPECT_EQ(wholeSize(text.substr(0, cut), kUtf8CodePage), wanted[cut]) << cut;
    EXPECT_EQ(wholeSize(text.substr(0, cut), kWestern), wanted[cut]) << cut;
  }
}

TEST(HostText, StaysAsItIsWhereItIsCutButNoUtf8) {
  for (const std::string text : {"\xFC", "a\x80", "gr\xFC\xC3", "\xC3(", "\xED\xA0", "\xF0\x8F"}) {
    EXPECT_EQ(wholeSize(text, kUtf8CodePage), text.size());
    EXPECT_EQ(wholeSize(text, kWestern), text.size());
  }
}

TEST(HostText, IsBytesWhereTheCodePageIsUtf8) {
  for (const std::string text :
       {"", "/", "/pub/a.txt", "/sch\xC3\xB6n/\xC5\x81", "/sch\xF6n/\x95\\x", "\xFF"}) {
    EXPECT_EQ(pathForServer(text, kUtf8CodePage), text);
    EXPECT_EQ(pathForHost(text, kUtf8CodePage), text);
    EXPECT_EQ(textForHost(text, kUtf8CodePage), text);
  }
}

TEST(HostText, LeavesAsciiAlone) {
  for (const std::string text : {"", "/", "//", "/pub/a.txt", "a\\b", "*.*", "/~[x]#%41"}) {
    EXPECT_EQ(pathForServer(text, kWestern), text);
    EXPECT_EQ(pathForHost(text, kWestern), text);
    EXPECT_EQ(textForHost(text, kWestern), text);
  }
}

TEST(HostText, LeavesAHostsUtf8Alone) {
  EXPECT_EQ(pathForServer("/sch\xC3\xB6n/\xC5\x81.txt", kWestern), "/sch\xC3\xB6n/\xC5\x81.txt");
}

TEST(HostText, LeavesAServersBytesAlone) {
  EXPECT_EQ(pathForHost("/sch\xF6n", kWestern), "/sch\xF6n");
  EXPECT_EQ(textForHost("550 sch\xF6n", kWestern), "550 sch\xF6n");
}

TEST(HostText, ComparesNamesBlindToTheCaseOfAsciiLetters) {
  for (const std::uint32_t codePage : {kUtf8CodePage, kWestern}) {
    EXPECT_TRUE(equalPaths("/PuB", "/pUb", codePage));
    EXPECT_TRUE(equalPaths("A\xC3\xB6", "a\xC3\xB6", codePage));
    EXPECT_FALSE(equalPaths("\xC3\x96", "\xC3\xB6", codePage));
    EXPECT_FALSE(equalPaths("a", "ab", codePage));
  }
}

TEST(HostText, StepsByteByByteWhereNoCharacterHasTwo) {
  EXPECT_EQ(characters("", kUtf8CodePage), std::vector<std::size_t>());
  EXPECT_EQ(characters("\x95\\/a", kUtf8CodePage), (std::vector<std::size_t>{0, 1, 2, 3}));
  EXPECT_EQ(characters("\x95\\/a", kWestern), (std::vector<std::size_t>{0, 1, 2, 3}));
}

}  // namespace
