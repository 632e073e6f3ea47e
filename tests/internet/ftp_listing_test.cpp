// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <chrono>
#include <ostream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "framework/internet/listing/FtpListing.h"
#include "tests/support/WholeListing.h"

namespace internet {
namespace {

using std::string_view_literals::operator""sv;
using testing_support::parseList;
using testing_support::parseMlsd;
using testing_support::WholeListing;

std::int64_t utc(int year, unsigned month, unsigned day, int hour = 0, int minute = 0, int second = 0) {
  using namespace std::chrono;
  const sys_days date = std::chrono::year(year) / std::chrono::month(month) / std::chrono::day(day);
  return duration_cast<seconds>(date.time_since_epoch()).count() + hour * 3600 + minute * 60 + second;
}

// The day of reading, in all rows that show no year.
const std::int64_t kNow = utc(2024, 6, 15, 12, 0);

constexpr std::uint32_t kDirectory = 0x10, kNormal = 0x80, kReadOnly = 0x1, kHidden = 0x2;

struct Row {
  std::string_view line;
  std::string_view name;
  std::uint64_t size;
  std::int64_t modified;
  std::uint32_t attributes = kNormal;
  bool isLink = false;
};

void PrintTo(const Row& row, std::ostream* out) { *out << '[' << row.line << ']'; }

void expectEntry(const FtpEntry& entry, const Row& row) {
  EXPECT_EQ(entry.name, row.name);
  EXPECT_EQ(entry.size, row.size);
  EXPECT_EQ(entry.modified, row.modified);
  EXPECT_EQ(entry.attributes, row.attributes);
  EXPECT_EQ(entry.isDirectory, (row.attributes & kDirectory) != 0);
  EXPECT_EQ(entry.isLink, row.isLink);
}

class ListRow : public testing::TestWithParam<Row> {};

TEST_P(ListRow, IsRead) {
  FtpEntry entry;
  ASSERT_TRUE(parseListLine(GetParam().line, kNow, entry));
  expectEntry(entry, GetParam());
}

const std::int64_t kJanuary = utc(2024, 1, 12, 10, 5);
const std::int64_t kJanuaryDay = utc(2024, 1, 12);

INSTANTIATE_TEST_SUITE_P(
    Servers, ListRow,
    testing::Values(
        // vsftpd
        Row{"-rw-r--r--    1 1000     1000          512 Jan 12 10:05 notes.txt", "notes.txt", 512, kJanuary},
        Row{"drwxr-xr-x    2 0        0            4096 Jan 02  2023 pub", "pub", 0, utc(2023, 1, 2),
            kDirectory},
        Row{"lrwxrwxrwx    1 0        0               7 Jan 12 10:05 here -> pub/sub", "here", 0, kJanuary,
            kNormal, true},
        // proftpd
        Row{"-rw-r--r--   1 ftp      ftp    5368709120 Jan 12  2024 big.iso", "big.iso", 5368709120,
            kJanuaryDay},
        // pure-ftpd
        Row{"-rw-r--r--    1 0          0                  13 Jun 15 12:00 now", "now", 13,
            utc(2024, 6, 15, 12, 0)},
        // inetutils, BusyBox
        Row{"-rwxr-xr-x  1 root root  1183448 Jan 12  2024 bash", "bash", 1183448, kJanuaryDay},
        Row{"-rw-rw-r--    1 501      20               100 Jan  2 10:05 a", "a", 100, utc(2024, 1, 2, 10, 5)},
        // pyftpdlib
        Row{"-rw-rw-r--   1 owner    group           5 Jan 12 10:05 hello", "hello", 5, kJanuary},
        // old wu-ftpd, without a group
        Row{"-rw-r--r--  1 root    1183 Jan 12 1997 README", "README", 1183, utc(1997, 1, 12)},
        // IIS
        Row{"01-12-24  10:05AM       <DIR>          inetpub", "inetpub", 0, kJanuary, kDirectory},
        Row{"01-12-24  10:05PM                  589 readme.htm", "readme.htm", 589, utc(2024, 1, 12, 22, 5)},
        Row{"01-12-2024  10:05AM       <DIR>          wide", "wide", 0, kJanuary, kDirectory}));

INSTANTIATE_TEST_SUITE_P(
    UnixFields, ListRow,
    testing::Values(
        Row{"-rw-r--r-- 1 7 Jan 12 10:05 no-owner", "no-owner", 7, kJanuary},
        Row{"-rw-r--r-- 7 Jan 12 10:05 size-only", "size-only", 7, kJanuary},
        Row{"-rw-r--r-- 1 Domain Users of X 7 Jan 12 10:05 blanks", "blanks", 7, kJanuary},
        Row{"-rw-r--r--12345 root root 7 Jan 12 10:05 glued", "glued", 7, kJanuary},
        Row{"-rw-r--r--+12345 root root 7 Jan 12 10:05 glued", "glued", 7, kJanuary},
        Row{"drwxr-xr-x. 3 root root 7 Jan 12 10:05 selinux", "selinux", 0, kJanuary, kDirectory},
        Row{"drwxr-xr-x@ 3 root root 7 Jan 12 10:05 mac", "mac", 0, kJanuary, kDirectory},
        Row{"-rwsr-Sr-t 1 root root 7 Jan 12 10:05 special", "special", 7, kJanuary},
        Row{"-r--r--r-- 1 root root 7 Jan 12 10:05 fixed", "fixed", 7, kJanuary, kReadOnly},
        Row{"dr-xr-xr-x 1 root root 7 Jan 12 10:05 fixed", "fixed", 0, kJanuary, kDirectory | kReadOnly},
        Row{"-rw-r--r-- 1 root root 7 Jan 12 10:05 .profile", ".profile", 7, kJanuary, kHidden},
        Row{"dr-xr-xr-x 1 root root 7 Jan 12 10:05 .d", ".d", 0, kJanuary, kDirectory | kReadOnly | kHidden},
        Row{"brw-rw---- 1 root disk 8, 0 Jan 12 10:05 sda", "sda", 0, kJanuary},
        Row{"crw-rw---- 1 root tty 4,   64 Jan 12 10:05 ttyS0", "ttyS0", 0, kJanuary},
        Row{"prw-r--r-- 1 root root 0 Jan 12 10:05 pipe", "pipe", 0, kJanuary},
        Row{"srwxr-xr-x 1 root root 0 Jan 12 10:05 socket", "socket", 0, kJanuary},
        Row{"-rw-r--r-- 1 root root 18446744073709551615 Jan 12 10:05 max", "max", 18446744073709551615u,
            kJanuary},
        Row{"-rw-r--r-- 1 root root 1,234,567 Jan 12 10:05 commas", "commas", 1234567, kJanuary},
        // 12 is the size here, and no day.
        Row{"-rw-r--r-- 1 root 12 Jan 12 10:05 twelve", "twelve", 12, kJanuary}));

INSTANTIATE_TEST_SUITE_P(
    UnixDates, ListRow,
    testing::Values(Row{"-rw-r--r-- 1 r r 7 Jan  2  2024 n", "n", 7, utc(2024, 1, 2)},
                    Row{"-rw-r--r-- 1 r r 7 JAN 12 2024 n", "n", 7, kJanuaryDay},
                    Row{"-rw-r--r-- 1 r r 7 Jan 12 9:05 n", "n", 7, utc(2024, 1, 12, 9, 5)},
                    Row{"-rw-r--r-- 1 r r 7 Jan 12 10:05:33 2021 n", "n", 7, utc(2021, 1, 12, 10, 5, 33)},
                    Row{"-rw-r--r-- 1 r r 7 12 Jan 10:05 n", "n", 7, kJanuary},
                    Row{"-rw-r--r-- 1 r r 7 12 Jan 2024 n", "n", 7, kJanuaryDay},
                    Row{"-rw-r--r-- 1 r r 7 2024-01-12 10:05 n", "n", 7, kJanuary},
                    Row{"-rw-r--r-- 1 r r 7 2024-01-12 10:05:33 n", "n", 7, kJanuary + 33},
                    Row{"-rw-r--r-- 1 r r 7 2024-01-12 10:05:33.000000000 +0130 n", "n", 7,
                        kJanuary + 33 - 5400},
                    Row{"-rw-r--r-- 1 r r 7 2024-01-12 10:05:33.5 -0100 n", "n", 7, kJanuary + 33 + 3600},
                    Row{"-rw-r--r-- 1 r r 7 2024-01-12 10:05 +0100 n", "+0100 n", 7, kJanuary},
                    Row{"-rw-r--r-- 1 r r 7 Feb 29  2024 n", "n", 7, utc(2024, 2, 29)},
                    // At most a day ahead of now; later times are those of the year before.
                    Row{"-rw-r--r-- 1 r r 7 Jun 16 12:00 n", "n", 7, utc(2024, 6, 16, 12, 0)},
                    Row{"-rw-r--r-- 1 r r 7 Jun 16 12:01 n", "n", 7, utc(2023, 6, 16, 12, 1)},
                    Row{"-rw-r--r-- 1 r r 7 Dec 31 23:59 n", "n", 7, utc(2023, 12, 31, 23, 59)}));

INSTANTIATE_TEST_SUITE_P(
    UnixNames, ListRow,
    testing::Values(Row{"-rw-r--r-- 1 r r 7 Jan 12 10:05  leading", " leading", 7, kJanuary},
                    Row{"-rw-r--r-- 1 r r 7 Jan 12 2024    three", "   three", 7, kJanuaryDay},
                    Row{"-rw-r--r-- 1 r r 7 Jan 12 10:05 trailing  ", "trailing  ", 7, kJanuary},
                    Row{"-rw-r--r-- 1 r r 7 Jan 12 10:05   ", "  ", 7, kJanuary},
                    Row{"-rw-r--r-- 1 r r 7 Jan 12 10:05 in  ner", "in  ner", 7, kJanuary},
                    Row{"-rw-r--r-- 1 r r 7 Jan 12 10:05 a -> b", "a -> b", 7, kJanuary},
                    Row{"lrwxrwxrwx 1 r r 7 Jan 12 10:05 a -> b -> c", "a", 0, kJanuary, kNormal, true},
                    Row{"lrwxrwxrwx 1 r r 7 Jan 12 10:05 a b", "a b", 0, kJanuary, kNormal, true},
                    Row{"-rw-r--r-- 1 r r 7 Jan 12 10:05 5 Jan 12 2024 x", "5 Jan 12 2024 x", 7, kJanuary},
                    Row{"-rw-r--r-- 1 r r 7 Jan 12 10:05 [a] {b} #%;*?", "[a] {b} #%;*?", 7, kJanuary},
                    Row{"-rw-r--r-- 1 r r 7 Jan 12 10:05 -rf", "-rf", 7, kJanuary},
                    Row{"-rw-r--r-- 1 r r 7 Jan 12 10:05 \xc3\xa4\xe2\x82\xac", "\xc3\xa4\xe2\x82\xac", 7,
                        kJanuary},
                    Row{"-rw-r--r-- 1 r r 7 Jan 12 10:05 latin\xe4", "latin\xe4", 7, kJanuary},
                    Row{"-rw-r--r-- 1 r r 7 Jan 12 10:05 a\\b", "a\\b", 7, kJanuary},
                    Row{"-rw-r--r-- 1 r r 7 Jan 12 10:05 ...", "...", 7, kJanuary, kHidden},
                    Row{"-rw-r--r-- 1 r r 7 Jan 12 10:05 ./a", "a", 7, kJanuary},
                    Row{"drwxr-xr-x 1 r r 7 Jan 12 10:05 sub/", "sub", 0, kJanuary, kDirectory}));

INSTANTIATE_TEST_SUITE_P(
    Dos, ListRow,
    testing::Values(
        Row{"01-12-24  10:05AM       <DIR>          two words", "two words", 0, kJanuary, kDirectory},
        Row{"01-12-24  10:05AM       <DIR>            two", "  two", 0, kJanuary, kDirectory},
        Row{"01-12-24  10:05AM <DIR> near", "near", 0, kJanuary, kDirectory},
        Row{"01-12-24  10:05AM <dir> low", "low", 0, kJanuary, kDirectory},
        Row{"01-12-24  10:05AM       <JUNCTION>     linked", "linked", 0, kJanuary, kNormal, true},
        Row{"01-12-24  10:05AM                  589  leading", " leading", 589, kJanuary},
        Row{"01-12-24  10:05AM                  589 trailing ", "trailing ", 589, kJanuary},
        Row{"01-12-24  10:05AM                1,589 commas", "commas", 1589, kJanuary},
        Row{"01-12-24  10:05AM           5368709120 big", "big", 5368709120, kJanuary},
        Row{"01-12-24  12:05AM                  1 midnight", "midnight", 1, utc(2024, 1, 12, 0, 5)},
        Row{"01-12-24  12:05PM                  1 noon", "noon", 1, utc(2024, 1, 12, 12, 5)},
        Row{"01-12-24  10:05 PM                 1 apart", "apart", 1, utc(2024, 1, 12, 22, 5)},
        Row{"01-12-24  22:05                    1 h24", "h24", 1, utc(2024, 1, 12, 22, 5)},
        Row{"01-12-24  22:05:33                 1 seconds", "seconds", 1, utc(2024, 1, 12, 22, 5, 33)},
        Row{"01-12-99  22:05                    1 y1999", "y1999", 1, utc(1999, 1, 12, 22, 5)},
        Row{"01-12-1999  22:05                  1 y1999", "y1999", 1, utc(1999, 1, 12, 22, 5)},
        Row{"01/12/2024  10:05AM                1 slashes", "slashes", 1, kJanuary},
        Row{"2024-01-12  10:05    <DIR>          iso", "iso", 0, kJanuary, kDirectory},
        Row{"01-12-24  10:05AM                  1 .hid", ".hid", 1, kJanuary, kHidden}));

class NoListRow : public testing::TestWithParam<std::string_view> {};

TEST_P(NoListRow, IsNoEntry) {
  FtpEntry entry;
  EXPECT_FALSE(parseListLine(GetParam(), kNow, entry));
}

INSTANTIATE_TEST_SUITE_P(
    Rows, NoListRow,
    testing::Values(
        "", " ", "total 88", "-", "drwxr-xr-x", "-rw-r--r-- 1 r r", "-rw-r--r-- 1 r r 7",
        "-rw-r--r-- 1 r r 7 Jan 12", "-rw-r--r-- 1 r r 7 Jan 12 10:05", "-rw-r--r-- 1 r r 7 Jan 12 10:05 ",
        // sizes
        "-rw-r--r-- 1 r r 18446744073709551616 Jan 12 10:05 n", "-rw-r--r-- 1 r r -7 Jan 12 10:05 n",
        "-rw-r--r-- 1 r r x Jan 12 10:05 n", "-rw-r--r-- 1 r r 1,23 Jan 12 10:05 n",
        "-rw-r--r-- 1 r r 99999999999999999999 Jan 12 2024 5 Jan 12 2024 evil",
        "-rw-r--r-- 1 r r 8, 0 Jab 12 10:05 n", "-rw-r--r-- 1 r r 18,446,744,073,709,551,616 Jan 12 10:05 n",
        // dates
        "-rw-r--r-- 1 r r 7 Jan 32 10:05 n", "-rw-r--r-- 1 r r 7 Feb 30 2024 n",
        "-rw-r--r-- 1 r r 7 Feb 29 2023 n", "-rw-r--r-- 1 r r 7 Jan 12 24:05 n",
        "-rw-r--r-- 1 r r 7 Jan 12 10:60 n", "-rw-r--r-- 1 r r 7 Jan 12 10:5 n",
        "-rw-r--r-- 1 r r 7 Jan 12 :05 n", "-rw-r--r-- 1 r r 7 Jan 12 24 n",
        "-rw-r--r-- 1 r r 7 Jan 0 2024 n", "-rw-r--r-- 1 r r 7 2024-13-12 10:05 n",
        "-rw-r--r-- 1 r r 7 2024-1-12 10:05 n", "-rw-r--r-- 1 r r 7 Jan 12 10:05:33 n",
        // modes
        "Xrw-r--r-- 1 r r 7 Jan 12 10:05 n", "-rw-r--q-- 1 r r 7 Jan 12 10:05 n", "-rw-r--r-- ",
        "-rw-r--r--x 1 r r 7", " -rw-r--r-- 1 r r 7 Jan 12 10:05 n",
        // names
        "-rw-r--r-- 1 r r 7 Jan 12 10:05 .", "drwxr-xr-x 1 r r 7 Jan 12 10:05 ..",
        "-rw-r--r-- 1 r r 7 Jan 12 10:05 ../x", "-rw-r--r-- 1 r r 7 Jan 12 10:05 /etc/passwd",
        "-rw-r--r-- 1 r r 7 Jan 12 10:05 a/b", "drwxr-xr-x 1 r r 7 Jan 12 10:05 /",
        "drwxr-xr-x 1 r r 7 Jan 12 10:05 ../", "-rw-r--r-- 1 r r 7 Jan 12 10:05 a/",
        "-rw-r--r-- 1 r r 7 Jan 12 10:05 ..\\x", "-rw-r--r-- 1 r r 7 Jan 12 10:05 a\\..\\..\\x",
        "-rw-r--r-- 1 r r 7 Jan 12 10:05 a\\..", "-rw-r--r-- 1 r r 7 Jan 12 10:05 a\tb",
        "-rw-r--r-- 1 r r 7 Jan 12 10:05 a\rb", "-rw-r--r-- 1 r r 7 Jan 12 10:05 a\x7f",
        "-rw-r--r-- 1 r r 7 Jan 12 10:05 a\0b"sv, "lrwxrwxrwx 1 r r 7 Jan 12 10:05  -> x",
        // DOS
        "01-12-24", "01-12-24  10:05AM", "01-12-24  10:05AM  <DIR>", "01-12-24  10:05AM  <DIR>     ",
        "01-12-24  10:05AM  <DIR>x", "01-12-24  10:05AM  589", "01-12-24  10:05AM  589 ",
        "13-12-24  10:05AM  589 n", "01-32-24  10:05AM  589 n", "01-12-24  13:05AM  589 n",
        "01-12-24  0:05PM  589 n", "01-12-24  24:05  589 n", "01-12-24  10:05XM  589 n",
        "01-12-24  10:05AM  <DIR>  ..", "01-12-24  10:05AM  589 a/b", "01-12/24  10:05  1 n",
        "01-12-24  10:05AM  18446744073709551616 n", " 01-12-24  10:05AM  589 n",
        "1-12-2024  10:05AM  589 n"));

class MlsxLine : public testing::TestWithParam<Row> {};

TEST_P(MlsxLine, IsRead) {
  FtpEntry entry;
  ASSERT_TRUE(parseMlsxLine(GetParam().line, entry));
  expectEntry(entry, GetParam());
}

INSTANTIATE_TEST_SUITE_P(
    Rows, MlsxLine,
    testing::Values(
        // pyftpdlib, proftpd, pure-ftpd, others
        Row{"type=file;size=5;perm=adfrw;modify=20240112100500; hello", "hello", 5, kJanuary},
        Row{"modify=20240112100500;perm=flcdmpe;type=dir;unique=801U1;UNIX.group=0;UNIX.mode=0755;UNIX.owner="
            "0; pub",
            "pub", 0, kJanuary, kDirectory},
        Row{"type=dir;sizd=4096;modify=20240112100500;UNIX.mode=0755;UNIX.uid=0;UNIX.gid=0;unique=801g2; pub",
            "pub", 0, kJanuary, kDirectory},
        Row{"Type=File;Size=5368709120;Modify=20240112100500.123; big", "big", 5368709120, kJanuary},
        Row{"TYPE=DIR; UP", "UP", 0, 0, kDirectory},
        // rights
        Row{"type=file;perm=r; n", "n", 0, 0, kReadOnly}, Row{"type=file;perm=rdf; n", "n", 0, 0, kReadOnly},
        Row{"type=file;perm=; n", "n", 0, 0, kReadOnly}, Row{"type=file;perm=ra; n", "n", 0, 0},
        Row{"type=file;perm=RW; n", "n", 0, 0}, Row{"type=dir;perm=el; n", "n", 0, 0, kDirectory},
        Row{"type=file;perm=r;UNIX.mode=0644; n", "n", 0, 0},
        Row{"type=file;perm=adfrw;unix.mode=0444; n", "n", 0, 0, kReadOnly},
        Row{"type=dir;UNIX.mode=40555; n", "n", 0, 0, kDirectory | kReadOnly},
        Row{"type=file;UNIX.mode=rw; n", "n", 0, 0},
        Row{"type=file;perm=r; .n", ".n", 0, 0, kReadOnly | kHidden},
        // links and others
        Row{"type=OS.unix=slink:/to here;size=9; n", "n", 0, 0, kNormal, true},
        Row{"type=OS.UNIX=symlink;size=9; n", "n", 0, 0, kNormal, true},
        Row{"type=OS.unix=chr-8/0;size=9; n", "n", 9, 0},
        // facts that are missing, odd or unknown
        Row{" n", "n", 0, 0}, Row{"  n", " n", 0, 0}, Row{" a=b c", "a=b c", 0, 0},
        Row{" type=file;size=3; n", "n", 3, 0}, Row{"x=y; n", "n", 0, 0},
        Row{"type=file;size=3 n", "n", 3, 0}, Row{"type=file;;size=3; n", "n", 3, 0},
        Row{"type=file;size=x; n", "n", 0, 0}, Row{"; n", "n", 0, 0},
        Row{"type=file;size=18446744073709551616; n", "n", 0, 0}, Row{"type=file;size=-1; n", "n", 0, 0},
        Row{"type=file;modify=2024; n", "n", 0, 0}, Row{"type=file;modify=20241301000000; n", "n", 0, 0},
        // names
        Row{"type=file;  n", " n", 0, 0}, Row{"type=file; n ", "n ", 0, 0},
        Row{"type=file; a; b", "a; b", 0, 0}, Row{"type=file; ;a=b; c", ";a=b; c", 0, 0},
        Row{"type=file; a -> b", "a -> b", 0, 0}, Row{"type=file; -l #%[*]?", "-l #%[*]?", 0, 0},
        Row{"type=file; \xc3\xa4", "\xc3\xa4", 0, 0}, Row{"type=file; ...", "...", 0, 0, kHidden},
        Row{"type=file; ./n", "n", 0, 0}));

class NoMlsxLine : public testing::TestWithParam<std::string_view> {};

TEST_P(NoMlsxLine, IsNoEntry) {
  FtpEntry entry;
  EXPECT_FALSE(parseMlsxLine(GetParam(), entry));
}

INSTANTIATE_TEST_SUITE_P(Rows, NoMlsxLine,
                         testing::Values("", " ", "n", "type=file;", "type=file; ", "type=file;size=3;n",
                                         "type=cdir; n", "type=PDIR; n", "type=dir; .", "type=dir; ..",
                                         "type=file; /etc/passwd", "type=file; ../n", "type=file; a/b",
                                         "type=file; a\x1b[2J", "type=file; a\0b"sv, "type=file; ..\\n",
                                         "file; n", "=file; n", "type=file;rubbish; n", "total 88",
                                         "-rw-r--r-- 1 r r 7 Jan 12 10:05 n"));

TEST(Listing, TellsEntriesFromHeadersErrorsAndRubbish) {
  const WholeListing listing = parseList(
      "total 88\r\n"
      "\r\n"
      "insgesamt 4,0K\r\n"
      "drwxr-xr-x 2 r r 7 Jan 12 10:05 .\r\n"
      "drwxr-xr-x 2 r r 7 Jan 12 10:05 ..\r\n"
      "-rw-r--r-- 1 r r 7 Jan 12 10:05 unix\n"
      "ls: gone: No such file or directory\r\n"
      "ls: other: Permission denied\r\n"
      "what is this\r\n"
      "01-12-24  10:05AM       <DIR>          dos\r\n"
      "-rw-r--r-- 1 r r 7 Jan 12 10:05 a/b\r\n",
      kNow);
  ASSERT_EQ(listing.entries.size(), 2u);
  EXPECT_EQ(listing.entries[0].name, "unix");
  EXPECT_EQ(listing.entries[1].name, "dos");
  EXPECT_EQ(listing.unparsedLines, 2u);
  EXPECT_EQ(listing.errorText, "ls: gone: No such file or directory");
  EXPECT_FALSE(listing.cutInLine);
  EXPECT_TRUE(listing.lastLineUnparsed);
  EXPECT_FALSE(listing.overLimit);
}

TEST(Listing, KnowsErrorTexts) {
  for (const std::string text :
       {"ls: /x: No such file or directory", "/x: No such file or directory",
        "/bin/ls: cannot access '/x': denied", "ls: cannot open directory '.': Permission denied",
        "/x: Permission denied", "x: not a directory"}) {
    const WholeListing listing = parseList(text + "\r\n", kNow);
    EXPECT_EQ(listing.errorText, text);
    EXPECT_EQ(listing.unparsedLines, 0u) << text;
    EXPECT_TRUE(listing.entries.empty()) << text;
  }
}

std::vector<std::string> namesOf(const WholeListing& listing) {
  std::vector<std::string> names;
  for (const FtpEntry& entry : listing.entries) names.push_back(entry.name);
  return names;
}

using Names = std::vector<std::string>;

TEST(Listing, TakesEveryLineEnd) {
  EXPECT_EQ(namesOf(parseMlsd("type=file; a\r\ntype=file; b\r\n")), (Names{"a", "b"}));
  EXPECT_EQ(namesOf(parseMlsd("type=file; a\ntype=file; b\n")), (Names{"a", "b"}));
  EXPECT_EQ(namesOf(parseMlsd("type=file; a\rtype=file; b\r")), (Names{"a", "b"}));
  EXPECT_EQ(namesOf(parseMlsd("type=file; a\r\r\n")), (Names{"a"}));
  EXPECT_EQ(namesOf(parseMlsd("type=file; a\n\n\ntype=file; b")), (Names{"a", "b"}));
  EXPECT_TRUE(parseMlsd("").entries.empty());
}

TEST(Listing, CarriageReturnInANameForgesNoRow) {
  const WholeListing listing = parseMlsd("type=file; a\rtype=dir; forged\r\ntype=file; b\r\n");
  EXPECT_EQ(namesOf(listing), (Names{"b"}));
  EXPECT_EQ(listing.unparsedLines, 1u);
}

TEST(Listing, SeesACutLastRow) {
  EXPECT_FALSE(parseMlsd("").cutInLine);
  EXPECT_FALSE(parseMlsd("type=file; a\r\n").cutInLine);
  const WholeListing readable = parseMlsd("type=file; a\r\ntype=file; b");
  EXPECT_TRUE(readable.cutInLine);
  EXPECT_FALSE(readable.lastLineUnparsed);
  EXPECT_EQ(namesOf(readable), (Names{"a", "b"}));
  const WholeListing broken = parseMlsd("type=file; a\r\ntype=fi");
  EXPECT_TRUE(broken.cutInLine);
  EXPECT_TRUE(broken.lastLineUnparsed);
  EXPECT_EQ(namesOf(broken), (Names{"a"}));
}

TEST(Listing, StopsAtTheLimitOfEntries) {
  std::string text;
  for (int i = 0; i < 6; ++i) text += "type=file; same\r\n";
  EXPECT_FALSE(parseMlsd(text, {.maxEntries = 6}).overLimit);
  const WholeListing listing = parseMlsd(text, {.maxEntries = 5});
  EXPECT_TRUE(listing.overLimit);
  EXPECT_EQ(listing.entries.size(), 5u);
}

TEST(Listing, CanBeLeftBetweenRows) {
  std::string text;
  for (int i = 0; i < 10'000; ++i) text += "rubbish\n";
  const ListingRules rules{.betweenRows = [] { throw std::runtime_error("stop"); }};
  EXPECT_THROW(static_cast<void>(parseList(text, kNow, rules)), std::runtime_error);
}

TEST(Listing, TakesTheBaseNameOfTheListedDirectoryOnly) {
  const std::string text =
      "type=file; /pub/a\ntype=file; /pub/sub/b\ntype=file; /c\ntype=file; pub/d\ntype=file; ./e\n";
  EXPECT_EQ(namesOf(parseMlsd(text, {.directory = "/pub"})), (Names{"a", "e"}));
  EXPECT_EQ(namesOf(parseMlsd(text, {.directory = "/pub/"})), (Names{"a", "e"}));
  EXPECT_EQ(namesOf(parseMlsd(text, {.directory = "pub"})), (Names{"d", "e"}));
  EXPECT_EQ(namesOf(parseMlsd(text, {.directory = "/"})), (Names{"c", "e"}));
  EXPECT_EQ(namesOf(parseMlsd(text)), (Names{"e"}));
  EXPECT_EQ(parseMlsd(text).unparsedLines, 4u);
  EXPECT_EQ(namesOf(parseList("-rw-r--r-- 1 r r 7 Jan 12 10:05 pub/n\n", kNow, {.directory = "pub"})),
            (Names{"n"}));
}

TEST(Listing, RefusesNamesThatNoCommandCanCarry) {
  const std::string longest(kMaxNameLength - 1, 'n');
  EXPECT_EQ(namesOf(parseMlsd("type=file; " + longest + "\n")), (Names{longest}));
  EXPECT_EQ(parseMlsd("type=file; " + longest + "n\n").unparsedLines, 1u);
}

TEST(Listing, ReadsManyEntries) {
  for (const std::size_t count : {std::size_t{600}, std::size_t{100'000}}) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
      text += "-rw-r--r-- 1 r r " + std::to_string(i) + " Jan 12 10:05 file " + std::to_string(i) + "\r\n";
    }
    const WholeListing listing = parseList(text, kNow);
    ASSERT_EQ(listing.entries.size(), count);
    EXPECT_EQ(listing.entries.back().name, "file " + std::to_string(count - 1));
    EXPECT_EQ(listing.entries.back().size, count - 1);
    EXPECT_EQ(listing.unparsedLines, 0u);
  }
}

// Rows of a megabyte, each of which a reader that goes back over its text would never finish.
TEST(Listing, ReadsLongRowsInLinearTime) {
  const std::string blanks(1 << 20, ' ');
  const std::string digits(1 << 20, '1');
  std::string fields;
  for (int i = 0; i < (1 << 18); ++i) fields += "12 1 ";
  for (const std::string& filler : {blanks, digits, fields}) {
    EXPECT_TRUE(parseList("-rw-r--r-- 1 r r " + filler + "\n", kNow).entries.empty());
    EXPECT_TRUE(parseList("01-12-24  10:05AM " + filler + "\n", kNow).entries.empty());
    EXPECT_TRUE(parseMlsd("type=" + filler + ";\n").entries.empty());
  }
}

TEST(MdtmTime, IsReadInUtc) {
  EXPECT_EQ(parseMdtmTime("20240112100500"), kJanuary);
  EXPECT_EQ(parseMdtmTime("20240112100500.123"), kJanuary);
  EXPECT_EQ(parseMdtmTime("20240112100500."), kJanuary);
  EXPECT_EQ(parseMdtmTime("19700101000001"), 1);
  EXPECT_EQ(parseMdtmTime("19691231235959"), -1);
  EXPECT_EQ(parseMdtmTime("20161231235960"), utc(2017, 1, 1));
  EXPECT_EQ(parseMdtmTime("99991231235959"), utc(9999, 12, 31, 23, 59, 59));
}

TEST(MdtmTime, IsZeroWhenItIsNone) {
  for (const std::string_view text :
       {"", "2024", "2024011210050", "202401121005000", "20240112100500x", "20240112100500.x",
        "20241312100500", "20240132100500", "20240112240500", "20240112106000", "20240112100561",
        "00000101000000", "2024-01-12T10:", " 20240112100500", "+2024011210050", "19100112100500000"}) {
    EXPECT_EQ(parseMdtmTime(text), 0) << text;
  }
}

}  // namespace
}  // namespace internet
