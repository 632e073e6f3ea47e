// SPDX-License-Identifier: MIT
// FTPGetDirectory: the two calls, the entries, and what failures leave behind.
#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "Src/EntryArray.h"
#include "tests/client/ErrorRecord.h"
#include "tests/client/RecordingClient.h"
#include "tests/client/ScriptedFinder.h"

namespace {

constexpr int kLine = 3669;
using Names = std::vector<std::string>;
using Entries = std::vector<QXDirEntry>;

class Listing : public testing::Test {
 protected:
  QXErrorInfo record{};
  RecordingClient client{&record};
  ScriptedFinder finder;
  std::uint32_t count = 77;

  void SetUp() override { client.finder = &finder; }
  void TearDown() override { client.m_bConnected = 0; }

  QXBool list(const char* path, const char* pattern = "*.*", std::uint32_t retries = 0) {
    return client.FTPGetDirectory(path, nullptr, &count, pattern, retries);
  }

  // Both calls; the entries that the host gets.
  Entries entries(const char* path = "/pub") {
    EXPECT_EQ(list(path), 1);
    Entries result(count);
    QXDirEntry none{};
    EXPECT_EQ(client.FTPGetDirectory(path, result.empty() ? &none : result.data(), &count, "*.*", 0), 1);
    return result;
  }

  Names names() {
    Names result;
    for (const QXDirEntry& entry : entries()) result.emplace_back(entry.szName);
    return result;
  }
};

std::vector<Found> manyFiles(std::size_t howMany) {
  std::vector<Found> found;
  for (std::size_t i = 0; i < howMany; ++i) found.push_back({.name = "f" + std::to_string(i), .length = i});
  return found;
}

TEST_F(Listing, SearchesTheDirectoryWithThePattern) {
  EXPECT_EQ(list("/pub", "*.*"), 1);
  EXPECT_EQ(list("/", "*.*"), 1);
  EXPECT_EQ(list("\\pub\\sub\\", "a?.txt"), 1);
  EXPECT_EQ(list("//", "*"), 1);
  EXPECT_EQ(finder.patterns, (Names{"/pub/*.*", "/*.*", "/pub/sub/a?.txt", "/*"}));
  EXPECT_EQ(finder.flags, std::vector<std::uint32_t>(4, 0x80000000u));
}

TEST_F(Listing, WithTheOptionSearchesThePatternAloneInTheServersDirectory) {
  client.m_bOption = 1;
  EXPECT_EQ(list("/pub"), 1);
  EXPECT_EQ(list("/"), 1);
  EXPECT_EQ(finder.patterns, (Names{"*.*", "*.*"}));
}

TEST_F(Listing, WithTheOptionTheEntriesStillNameTheDirectoryAsked) {
  client.m_bOption = 1;
  finder.answersWith({{.name = "a"}});
  EXPECT_STREQ(entries("/pub")[0].szPath, "/pub");
}

TEST_F(Listing, UsesTheListingFinderOfTheObjectAndClosesIt) {
  EXPECT_EQ(list("/pub"), 1);
  EXPECT_EQ(client.calls(), Names{"GetFinder m_pFTPGetDir"});
  EXPECT_GE(finder.closed, 1);
}

TEST_F(Listing, TheFirstCallCountsAndTheSecondHandsTheEntriesOut) {
  finder.answersWith({{.name = "a"}, {.name = "b"}});
  EXPECT_EQ(list("/pub"), 1);
  EXPECT_EQ(count, 2u);
  ASSERT_NE(client.m_pFileBuffer, nullptr);
  QXDirEntry out[3] = {};
  EXPECT_EQ(client.FTPGetDirectory("/pub", out, &count, "*.*", 0), 1);
  EXPECT_STREQ(out[0].szName, "a");
  EXPECT_STREQ(out[1].szName, "b");
  EXPECT_STREQ(out[2].szName, "");
  EXPECT_EQ(client.m_pFileBuffer, nullptr);
  EXPECT_EQ(finder.patterns.size(), 1u);
}

TEST_F(Listing, AFileHasItsSizeInTwoHalves) {
  finder.answersWith({{.name = "five", .length = std::uint64_t{5} << 30}, {.name = "small", .length = 1}});
  const Entries out = entries();
  EXPECT_EQ(out[0].nFileSizeHigh, 1u);
  EXPECT_EQ(out[0].nFileSizeLow, 1'073'741'824u);
  EXPECT_EQ(out[0].bIsDirectory, 0);
  EXPECT_EQ(out[0].dwAttributes, 0u);
  EXPECT_EQ(out[1].nFileSizeHigh, 0u);
  EXPECT_EQ(out[1].nFileSizeLow, 1u);
}

TEST_F(Listing, ASubdirectoryHasNoSize) {
  finder.answersWith({{.name = "d", .isDirectory = true, .length = 4096}});
  const Entries out = entries();
  EXPECT_EQ(out[0].bIsDirectory, 1);
  EXPECT_EQ(out[0].nFileSizeHigh, 0u);
  EXPECT_EQ(out[0].nFileSizeLow, 0u);
  EXPECT_EQ(out[0].dwAttributes, 0x10u);
}

TEST_F(Listing, EachAttributeBitOfTheServersEntryIsPassedOn) {
  const std::vector<std::uint32_t> bits{0x20, 0x800, 0x2, 0x80, 0x1, 0x4, 0x100};
  std::vector<Found> found;
  for (const std::uint32_t bit : bits) found.push_back({.name = "f", .attributes = bit});
  found.push_back({.name = "all", .attributes = 0x9A7});
  found.push_back({.name = "dir", .isDirectory = true, .attributes = 0x9A7});
  finder.answersWith(found);
  const Entries out = entries();
  for (std::size_t i = 0; i < bits.size(); ++i) EXPECT_EQ(out[i].dwAttributes, bits[i]);
  EXPECT_EQ(out[bits.size()].dwAttributes, 0x9A7u);
  EXPECT_EQ(out[bits.size() + 1].dwAttributes, 0x9B7u);
}

TEST_F(Listing, OtherAttributeBitsAreNotPassedOn) {
  finder.answersWith({{.name = "f", .attributes = 0x8 | 0x10 | 0x40 | 0x200 | 0x400 | 0x1000 | 0x4000}});
  EXPECT_EQ(entries()[0].dwAttributes, 0u);
}

TEST_F(Listing, EveryEntryNamesTheListedDirectory) {
  finder.answersWith({{.name = "a"}, {.name = "d", .isDirectory = true}});
  for (const QXDirEntry& entry : entries("\\pub\\sub\\")) EXPECT_STREQ(entry.szPath, "/pub/sub");
}

TEST_F(Listing, NothingOfTheLibraryStandsInTheReservedBytes) {
  finder.answersWith({{.name = "a"}, {.name = "b"}});
  for (const QXDirEntry& entry : entries()) EXPECT_THAT(entry.aReserved, testing::Each(0));
}

TEST_F(Listing, NamesThatBeginWithADotAreLeftOut) {
  finder.answersWith({{.name = ".", .isDirectory = true},
                      {.name = "..", .isDirectory = true},
                      {.name = ".profile"},
                      {.name = ".git", .isDirectory = true},
                      {.name = "a.b"},
                      {.name = "c."}});
  EXPECT_EQ(names(), (Names{"a.b", "c."}));
}

TEST_F(Listing, TheOrderOfTheServerIsKept) {
  finder.answersWith({{.name = "b"}, {.name = "a"}, {.name = "B"}});
  EXPECT_EQ(names(), (Names{"b", "a", "B"}));
}

TEST_F(Listing, NamesOf275CharactersFitAndLongerOnesAreLeftOut) {
  finder.answersWith({{.name = std::string(275, 'n')}, {.name = std::string(276, 'n')}, {.name = "last"}});
  EXPECT_EQ(names(), (Names{std::string(275, 'n'), "last"}));
}

TEST_F(Listing, AnEmptyDirectoryIsASuccessWithCountZero) {
  EXPECT_EQ(entries().size(), 0u);
  EXPECT_EQ(count, 0u);
  EXPECT_EQ(client.count("OnIPError"), 0u);
  EXPECT_TRUE(IsBlank(record));
}

TEST_F(Listing, ADirectoryOfDotNamesOnlyIsASuccessWithCountZero) {
  finder.answersWith({{.name = ".a"}, {.name = ".b"}});
  EXPECT_EQ(entries().size(), 0u);
}

TEST_F(Listing, All600EntriesComeOut) {
  finder.answersWith(manyFiles(600));
  const Entries out = entries();
  ASSERT_EQ(out.size(), 600u);
  EXPECT_STREQ(out[255].szName, "f255");
  EXPECT_STREQ(out[599].szName, "f599");
  EXPECT_EQ(out[599].nFileSizeLow, 599u);
}

TEST_F(Listing, TheArrayGrowsBy255EntriesWhenMoreAreToCome) {
  EXPECT_EQ(EntryCapacity(0), 256u);
  EXPECT_EQ(EntryCapacity(255), 256u);
  EXPECT_EQ(EntryCapacity(256), 256u);
  EXPECT_EQ(EntryCapacity(257), 511u);
  EXPECT_EQ(EntryCapacity(511), 511u);
  EXPECT_EQ(EntryCapacity(512), 766u);
  EXPECT_EQ(EntryCapacity(600), 766u);
}

TEST_F(Listing, CountsAroundTheGrowthBoundsComeOutWhole) {
  for (const std::size_t howMany : {1u, 254u, 255u, 256u, 257u, 510u, 511u, 512u, 766u, 767u}) {
    finder.answersWith(manyFiles(howMany));
    const Entries out = entries();
    ASSERT_EQ(out.size(), howMany);
    EXPECT_EQ(out.back().szName, "f" + std::to_string(howMany - 1));
  }
}

TEST_F(Listing, AHundredThousandEntriesComeOut) {
  finder.answersWith(manyFiles(100'000));
  EXPECT_EQ(list("/pub"), 1);
  EXPECT_EQ(count, 100'000u);
  const auto out = std::make_unique<QXDirEntry[]>(count);
  EXPECT_EQ(client.FTPGetDirectory("/pub", out.get(), &count, "*.*", 0), 1);
  EXPECT_STREQ(out[99'999].szName, "f99999");
  EXPECT_STREQ(out[0].szName, "f0");
}

TEST_F(Listing, OnNotifyIsCalledForEachFileButNotForSubdirectories) {
  Names seen;
  client.notified = [&](QXHostValue value) {
    const auto* entry = reinterpret_cast<const QXDirEntry*>(value);
    seen.push_back(entry->szName + std::string(" in ") + entry->szPath + " of " +
                   std::to_string(entry->nFileSizeLow));
  };
  finder.answersWith(
      {{.name = "a", .length = 1}, {.name = "d", .isDirectory = true}, {.name = ".x"}, {.name = "b"}});
  EXPECT_EQ(list("/pub"), 1);
  EXPECT_EQ(seen, (Names{"a in /pub of 1", "b in /pub of 0"}));
}

TEST_F(Listing, ASecondListingForgetsTheFirst) {
  finder.answersWith({{.name = "a"}, {.name = "b"}});
  EXPECT_EQ(list("/pub"), 1);
  finder.answersWith({{.name = "c"}});
  EXPECT_EQ(names(), Names{"c"});
}

TEST_F(Listing, CopyOutWithoutAPendingListingFails) {
  QXDirEntry out[2] = {};
  count = 1;
  EXPECT_EQ(client.FTPGetDirectory("/pub", out, &count, "*.*", 3), 0);
  EXPECT_TRUE(client.calls().empty());
  EXPECT_THAT(record, ReportsFrom("TQXIP::FTPGetDirectory '/pub' failed!", kLine));
  EXPECT_STREQ(client.m_szMessage, "TQXIP::FTPGetDirectory - IN: 'Failed'");
}

TEST_F(Listing, ASecondCopyOutFails) {
  finder.answersWith({{.name = "a"}});
  EXPECT_EQ(entries().size(), 1u);
  QXDirEntry out{};
  EXPECT_EQ(client.FTPGetDirectory("/pub", &out, &count, "*.*", 0), 0);
}

TEST_F(Listing, CopyOutOfFewerEntriesGivesThoseAndForgetsTheRest) {
  finder.answersWith({{.name = "a"}, {.name = "b"}});
  EXPECT_EQ(list("/pub"), 1);
  count = 1;
  QXDirEntry out[2] = {};
  EXPECT_EQ(client.FTPGetDirectory("/pub", out, &count, "*.*", 0), 1);
  EXPECT_STREQ(out[0].szName, "a");
  EXPECT_STREQ(out[1].szName, "");
  EXPECT_EQ(client.m_pFileBuffer, nullptr);
}

TEST_F(Listing, CopyOutOfMoreEntriesThanThereAreFailsWithoutReadingBeyondThem) {
  finder.answersWith({{.name = "a"}});
  EXPECT_EQ(list("/pub"), 1);
  count = 1000;
  const auto out = std::make_unique<QXDirEntry[]>(1000);
  EXPECT_EQ(client.FTPGetDirectory("/pub", out.get(), &count, "*.*", 0), 0);
  EXPECT_STREQ(out[0].szName, "a");
  EXPECT_STREQ(out[1].szName, "");
  EXPECT_EQ(client.m_pFileBuffer, nullptr);
}

TEST_F(Listing, CopyOutWithoutACountFailsAndForgetsTheListing) {
  finder.answersWith({{.name = "a"}});
  EXPECT_EQ(list("/pub"), 1);
  QXDirEntry out{};
  EXPECT_EQ(client.FTPGetDirectory("/pub", &out, nullptr, "*.*", 0), 0);
  EXPECT_EQ(client.m_pFileBuffer, nullptr);
}

TEST_F(Listing, ASuccessLeavesOkInTheMessage) {
  EXPECT_EQ(list("/pub"), 1);
  EXPECT_STREQ(client.m_szMessage, "TQXIP::FTPGetDirectory - IN: 'OK!'");
  EXPECT_TRUE(IsBlank(record));
}

TEST_F(Listing, TheEntryLineNamesThePath) {
  EXPECT_EQ(list("/pub"), 1);
  EXPECT_EQ(client.messageAt("GetFinder"), "TQXIP::FTPGetDirectory - IN: '/pub'");
}

TEST_F(Listing, TheEntryLineOfANullPathSaysNull) {
  EXPECT_EQ(list(nullptr), 0);
  EXPECT_EQ(client.messageAt("OnIPError"), "TQXIP::FTPGetDirectory - IN: 'NULL'");
}

TEST_F(Listing, WorksOnAClientThatIsNotInitialised) {
  client.m_bInitialized = 0;
  finder.answersWith({{.name = "a"}});
  EXPECT_EQ(list("/pub"), 1);
  EXPECT_EQ(count, 1u);
  client.m_bInitialized = 1;
}

TEST_F(Listing, WithoutAnErrorRecordAFailureChangesTheMessageAlone) {
  RecordingClient silent;
  silent.finder = &finder;
  EXPECT_EQ(silent.FTPGetDirectory(nullptr, nullptr, &count, "*.*", 0), 0);
  EXPECT_STREQ(silent.m_szMessage, "TQXIP::FTPGetDirectory - IN: 'Failed'");
  EXPECT_EQ(count, 0u);
}

TEST_F(Listing, ANullCountFails) {
  EXPECT_EQ(client.FTPGetDirectory("/pub", nullptr, nullptr, "*.*", 0), 0);
  EXPECT_EQ(client.count("OnIPError 87 FTP-Error! retries 0"), 1u);
  EXPECT_THAT(record, ReportsIPError("FTP-Error!", 87));
}

// Arguments that may not go to a server.
struct BadArguments {
  const char* name;
  std::string path;
  std::string pattern;
  bool nullPath = false;
  bool nullPattern = false;
};

class BadListing : public Listing, public testing::WithParamInterface<BadArguments> {};

TEST_P(BadListing, FailsWithCountZeroBeforeAnythingIsAskedAsOftenAsTheRetriesSay) {
  const BadArguments& bad = GetParam();
  EXPECT_EQ(
      list(bad.nullPath ? nullptr : bad.path.c_str(), bad.nullPattern ? nullptr : bad.pattern.c_str(), 2), 0);
  EXPECT_EQ(count, 0u);
  EXPECT_EQ(finder.patterns, Names{});
  EXPECT_EQ(client.count("OnIPError 87 FTP-Error! retries 2"), 1u);
  EXPECT_EQ(client.count("OnIPError 87 FTP-Error! retries 1"), 1u);
  EXPECT_EQ(client.count("OnIPError 87 FTP-Error! retries 0"), 1u);
  EXPECT_EQ(client.count("OnIPError"), 3u);
  EXPECT_STREQ(client.m_szMessage, "TQXIP::FTPGetDirectory - IN: 'Failed'");
  EXPECT_THAT(record, ReportsIPError("FTP-Error!", 87));
}

INSTANTIATE_TEST_SUITE_P(Arguments, BadListing,
                         testing::Values(BadArguments{"NullPath", "", "*.*", true},
                                         BadArguments{"EmptyPath", "", "*.*"},
                                         BadArguments{"NullPattern", "/pub", "", false, true},
                                         BadArguments{"PathOf256", "/" + std::string(255, 'a'), "*.*"},
                                         BadArguments{"PathOf300", "/" + std::string(299, 'a'), "*.*"},
                                         BadArguments{"PathWithALineEnd", "/pub\r\nDELE x", "*.*"},
                                         BadArguments{"PatternWithALineEnd", "/pub", "*.*\r\nDELE x"},
                                         BadArguments{"PatternWithAControlCharacter", "/pub", "\x7f"}),
                         [](const auto& instance) { return instance.param.name; });

TEST_F(Listing, APathOf255CharactersIsListed) {
  const std::string path = "/" + std::string(254, 'a');
  finder.answersWith({{.name = "x"}});
  EXPECT_EQ(entries(path.c_str())[0].szPath, path);
  EXPECT_EQ(finder.patterns, Names{path + "/*.*"});
}

TEST_F(Listing, AnInternetExceptionIsHeardOfTwiceAndFails) {
  finder.throwsAtFirst(12031, 1);
  EXPECT_EQ(list("/pub"), 0);
  EXPECT_EQ(count, 0u);
  EXPECT_EQ(client.count("OnIPError 12031"), 2u);
  EXPECT_EQ(client.calls().back(), "OnIPError 12031 FTP-Error! retries 0");
  EXPECT_THAT(record, ReportsIPError("FTP-Error!", 12031));
}

TEST_F(Listing, AFailedAttemptIsRepeatedTenMillisecondsLater) {
  finder.answersWith({{.name = "a"}});
  finder.throwsAtFirst(12031, 3);
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(list("/pub", "*.*", 3), 1);
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(30));
  EXPECT_EQ(finder.patterns.size(), 4u);
  EXPECT_EQ(count, 1u);
  EXPECT_STREQ(client.m_szMessage, "TQXIP::FTPGetDirectory - IN: 'OK!'");
}

TEST_F(Listing, ItFailsWhenTheRetriesAreUsedUp) {
  finder.throwsAtFirst(12031, 9);
  EXPECT_EQ(list("/pub", "*.*", 3), 0);
  EXPECT_EQ(finder.patterns.size(), 4u);
}

TEST_F(Listing, ATimeOutOfAConnectedClientArmsTheCounter) {
  for (const std::uint32_t error : {12002u, 12030u}) {
    client.m_bConnected = 1;
    finder.answersWith({{.name = "a"}});
    finder.throwsAtFirst(error, 1);
    EXPECT_EQ(list("/pub", "*.*", 0), 1) << error;
    EXPECT_EQ(count, 1u);
  }
}

}  // namespace
