// SPDX-License-Identifier: MIT
#include "hosts/qxftp/ProgressLine.h"

#include <gmock/gmock.h>

namespace qxftp {
namespace {

using namespace std::chrono_literals;
using hosts::ProgressFigures;

const ProgressFigures kOne = {
    .name = "large.iso", .file = {4'718'592, 10'485'760, 12s}, .filesInAll = 1, .rate = 1'258'291};
const ProgressFigures kMany = {
    .name = "b", .file = {1, 2, {}}, .total = {50, 100, 3s}, .filesDone = 12, .filesInAll = 2000, .rate = 10};

TEST(ProgressLine, OfOneFile) {
  EXPECT_EQ(progressLine(kOne, 80),
            "large.iso                     45% [====>     ]     4.5 MiB    1.2 MiB/s     0:12");
}

TEST(ProgressLine, OfManyFilesHasTheFiguresOfAll) {
  const std::string line = progressLine(kMany, 80);
  EXPECT_TRUE(line.starts_with("12/2000 b ")) << line;
  EXPECT_THAT(line, testing::HasSubstr(" 50% ["));
  EXPECT_TRUE(line.ends_with("0:03")) << line;
}

TEST(ProgressLine, OfAnUnknownSizeHasNoPercentAndNoBar) {
  ProgressFigures figures = kOne;
  figures.file = {100, {}, {}};
  const std::string line = progressLine(figures, 80);
  EXPECT_THAT(line, testing::Not(testing::HasSubstr("%")));
  EXPECT_THAT(line, testing::Not(testing::HasSubstr("[")));
  EXPECT_TRUE(line.ends_with("-:--")) << line;
}

TEST(ProgressLine, IsNeverWiderThanTheTerminal) {
  ProgressFigures figures = kMany;
  for (const char* name :
       {"", "a", "gr\xC3\xBC\xC3\x9F.txt", "\xE4\xB8\xAD\xE6\x96\x87\xE4\xB8\xAD\xE6\x96\x87.txt",
        "a name that is far too long for any line of a terminal that people would use.tar.gz"}) {
    figures.name = name;
    for (std::size_t columns = 1; columns < 200; ++columns) {
      EXPECT_LE(columnsOf(progressLine(figures, columns)), columns) << name << " in " << columns;
    }
  }
}

TEST(ProgressLine, ANameOfAServerMovesNoCursor) {
  ProgressFigures figures = kOne;
  figures.name = "\x1b[2J\n";
  EXPECT_EQ(progressLine(figures, 80).find_first_of("\x1b\n\r"), std::string::npos);
}

TEST(ProgressLine, ShortensInTheMiddle) {
  EXPECT_EQ(shortened("long-name-of-a-file.txt", 13), "long-...e.txt");
  EXPECT_EQ(shortened("short", 5), "short");
  EXPECT_EQ(shortened("shorter", 3), "...");
  EXPECT_LE(columnsOf(shortened("\xE4\xB8\xAD\xE6\x96\x87\xE4\xB8\xAD\xE6\x96\x87", 6)), 6U)
      << "two columns each";
}

TEST(ProgressLine, TellsBytesAndTimes) {
  EXPECT_EQ(bytesText(0), "0 B");
  EXPECT_EQ(bytesText(1023), "1023 B");
  EXPECT_EQ(bytesText(1536), "1.5 KiB");
  EXPECT_EQ(bytesText(5'000'000'000), "4.7 GiB");
  EXPECT_EQ(bytesText(~std::uint64_t{0}), "16.0 EiB");
  EXPECT_EQ(durationText(7s), "0:07");
  EXPECT_EQ(durationText(754s), "12:34");
  EXPECT_EQ(durationText(3723s), "1:02:03");
}

}  // namespace
}  // namespace qxftp
