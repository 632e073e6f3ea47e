// SPDX-License-Identifier: MIT
// Rows of Unix, and of servers that write as Unix does.
#include "tests/internet/DialectRows.h"

namespace internet_tests {
namespace {

const DialectRows kZosUnix{
    "ZosUnix",
    "z/OS UNIX System Services Command Reference, ls -l, -E and -W: types, attributes, ACL marks",
    "total 11\r\n",
    {{"drwxr-xr-x   2 OMVSKERN SYS1        8192 Apr  5  2024 samples", "samples", D, 0, "2024-04-05"},
     {"-rw-r--r--   1 USER1    DEPT         256 Oct 20 15:27 notes", "notes", F, 256, "2026-10-20 15:27"},
     {"lrwxrwxrwx   1 OMVSKERN SYS1          12 Apr  5  2024 etc -> $SYSNAME/etc", "etc", L, 0, "2024-04-05"},
     {"erwxrwxrwx   1 OMVSKERN SYS1           8 Apr  5  2024 prog -> PROGRAM1", "prog", L, 0, "2024-04-05"},
     {"-rwxr-xr-x  -ps-  1 USER1    DEPT        4096 Oct 20 15:27 attributes", "attributes", F, 4096,
      "2026-10-20 15:27"},
     {"-rwxr-xr-x+ --s-  1 USER1    DEPT        4096 Oct 20 15:27 acl", "acl", F, 4096, "2026-10-20 15:27"},
     {"-rwxr-xr-x  fff---  --s-  1 USER1  DEPT  4096 Oct 20 15:27 audit", "audit", F, 4096,
      "2026-10-20 15:27"},
     {"crw-rw-rw-   1 OMVSKERN SYS1        1,   0 Oct 20 15:27 tty", "tty", F, 0, "2026-10-20 15:27"},
     {"prw-------   1 USER1    DEPT           0 Oct 20 15:27 fifo", "fifo", F, 0, "2026-10-20 15:27"},
     {"drwxrwxrwt   2 BPXROOT  SYS1        8192 Oct 20 15:27 tmp", "tmp", D, 0, "2026-10-20 15:27"}}};

const DialectRows kWftpd{
    "Wftpd",
    "https://cr.yp.to/ftp/list/binls.html: WFTPD, NetPresenz, Microsoft's in the form of Unix",
    "",
    {{"-rwxrwxrwx   1 noone    nogroup      322 Aug 19  2024 message.ftp", "message.ftp", F, 322,
      "2024-08-19"},
     {"drwxrwxrwx   1 noone    nogroup        0 Oct 20 15:27 incoming", "incoming", D, 0, "2026-10-20 15:27"},
     {"-r-xr-xr-x   1 noone    nogroup      911 Oct 20 15:27 fixed.txt", "fixed.txt", F, 911,
      "2026-10-20 15:27"},
     {"-rwxrwxrwx   1 noone    nogroup 5368709121 Oct 20 15:27 Long Name.iso", "Long Name.iso", F, 5368709121,
      "2026-10-20 15:27"},
     {"----------   1 owner    group         1803128 Jul 10 10:18 ls-lR.Z", "ls-lR.Z", F, 1803128,
      "2026-07-10 10:18"},
     {"d---------   1 owner    group               0 May  9 19:45 Softlib", "Softlib", D, 0,
      "2026-05-09 19:45"},
     {"-------r--         326  1391972  1392298 Nov 22  1995 archive.sit", "archive.sit", F, 1392298,
      "1995-11-22"},
     {"drwxrwxr-x               folder        2 May 10  1996 network", "network", D, 0, "1996-05-10"}}};

const DialectRows kOwners{
    "OddOwners",
    "POSIX.1-2017, ls -l: \"%s %u %s %s %u %s %s\", with owner and group as directory services name them",
    "",
    {{"-rw-r--r--   1 DOMAIN\\jane doe Domain Users 7 Oct 20 15:27 n", "n", F, 7, "2026-10-20 15:27"},
     {"-rw-r--r--   1 jane.doe@corp.example Domain Users 7 Oct 20 15:27 n", "n", F, 7, "2026-10-20 15:27"},
     {"-rw-r--r--   1 1000     1000            7 Oct 20 15:27 n", "n", F, 7, "2026-10-20 15:27"},
     {"-rw-r--r--   1 4294967294 4294967294    7 Oct 20 15:27 n", "n", F, 7, "2026-10-20 15:27"},
     {"-rw-r--r--   1 -2       -2              7 Oct 20 15:27 n", "n", F, 7, "2026-10-20 15:27"},
     {"-rw-r--r--   1 jane                     7 Oct 20 15:27 n", "n", F, 7, "2026-10-20 15:27"},
     {"-rw-r--r--   1                          7 Oct 20 15:27 n", "n", F, 7, "2026-10-20 15:27"},
     {"-rw-r--r--                              7 Oct 20 15:27 n", "n", F, 7, "2026-10-20 15:27"},
     {"-rw-r--r--   1 (unknown) (unknown)      7 Oct 20 15:27 n", "n", F, 7, "2026-10-20 15:27"},
     {"-rw-r--r--   1 ?        ?               7 Oct 20 15:27 n", "n", F, 7, "2026-10-20 15:27"},
     {"-rw-r--r--   1 Jan      May             7 Oct 20 15:27 n", "n", F, 7, "2026-10-20 15:27"},
     {"-rw-r--r--   1 mar      12              7 Oct 20 15:27 n", "n", F, 7, "2026-10-20 15:27"},
     {"drwxr-xr-x   1 NT AUTHORITY\\SYSTEM NT SERVICE\\TrustedInstaller 0 Oct 20 15:27 n", "n", D, 0,
      "2026-10-20 15:27"},
     {"-rw-r--r--   1 m\xc3\xbcller Dom\xc3\xa4nen-Benutzer 7 Oct 20 15:27 n", "n", F, 7,
      "2026-10-20 15:27"}}};

const DialectRows kYearsAndClocks{
    "YearsAndClocks",
    "rows of `date`'s parts in one: month, day, year and clock (POSIX.1-2017, date, \"%b %e %Y %H:%M\")",
    "",
    {{"-rw-r--r--   1 ftp ftp 7 Oct 20 2026 15:27 recent", "recent", F, 7, "2026-10-20 15:27"},
     {"-rw-r--r--   1 ftp ftp 7 Jan 12 2024 10:05 old", "old", F, 7, "2024-01-12 10:05"},
     {"-rw-r--r--   1 ftp ftp 7 12 Jan 2024 10:05:33 seconds", "seconds", F, 7, "2024-01-12 10:05:33"},
     {"drwxr-xr-x   1 ftp ftp 7 Jan 12 2024 10:05 folder", "folder", D, 0, "2024-01-12 10:05"},
     {"lrwxrwxrwx   1 ftp ftp 7 Jan 12 2024 10:05 link -> x", "link", L, 0, "2024-01-12 10:05"}}};

const DialectRows kLanguages{
    "Languages",
    "GNU coreutils 9.1, ls -l, run with TZ=UTC and LC_ALL=de_DE.UTF-8 to ko_KR.UTF-8 of glibc 2.36",
    "",
    {{"-rw-r--r-- 1 root root  7 27. Jun 08:05 new", "new", F, 7, "2026-06-27 08:05"},
     {"-rw-r--r-- 1 root root 11  9. Mär 2023  old", "old", F, 11, "2023-03-09"},
     {"-rw-r--r-- 1 root root  7 27 sept. 08:05 new", "new", F, 7, "2026-09-27 08:05"},
     {"-rw-r--r-- 1 root root 11  9 août   2023 old", "old", F, 11, "2023-08-09"},
     {"-rw-r--r-- 1 root root  7 jul 27 08:05 new", "new", F, 7, "2026-07-27 08:05"},
     {"-rw-r--r-- 1 root root 11 dic  9  2023 old", "old", F, 11, "2023-12-09"},
     {"-rw-r--r-- 1 root root  7 27 ott 08.05 new", "new", F, 7, "2026-10-27 08:05"},
     {"-rw-r--r-- 1 root root 11  9 feb  2023 old", "old", F, 11, "2023-02-09"},
     {"-rw-r--r-- 1 root root  7 ago 27 08:05 new", "new", F, 7, "2026-08-27 08:05"},
     {"-rw-r--r-- 1 root root 11 mai  9  2023 old", "old", F, 11, "2023-05-09"},
     {"-rw-r--r-- 1 root root  7 27 jun 08:05 new", "new", F, 7, "2026-06-27 08:05"},
     {"-rw-r--r-- 1 root root 11  9 okt  2023 old", "old", F, 11, "2023-10-09"},
     {"-rw-r--r-- 1 root root  7 27 jun 08.05 new", "new", F, 7, "2026-06-27 08:05"},
     {"-rw-r--r-- 1 root root 11  9 mar  2023 old", "old", F, 11, "2023-03-09"},
     {"-rw-r--r-- 1 root root  7 27 sep 08:05 new", "new", F, 7, "2026-09-27 08:05"},
     {"-rw-r--r-- 1 root root 11  9 aug  2023 old", "old", F, 11, "2023-08-09"},
     {"-rw-r--r-- 1 root root  7 juli  27 08:05 new", "new", F, 7, "2026-07-27 08:05"},
     {"-rw-r--r-- 1 root root 11 des.   9  2023 old", "old", F, 11, "2023-12-09"},
     {"-rw-r--r-- 1 root root  7 27.10. 08:05 new", "new", F, 7, "2026-10-27 08:05"},
     {"-rw-r--r-- 1 root root 11  9. 2.  2023 old", "old", F, 11, "2023-02-09"},
     {"-rw-r--r-- 1 root root  7 08-27 08:05 new", "new", F, 7, "2026-08-27 08:05"},
     {"-rw-r--r-- 1 root root 11 2023-05-09  old", "old", F, 11, "2023-05-09"},
     {"-rw-r--r-- 1 root root  7 27. čen 08.05 new", "new", F, 7, "2026-06-27 08:05"},
     {"-rw-r--r-- 1 root root 11  9. říj  2023 old", "old", F, 11, "2023-10-09"},
     {"-rw-r--r-- 1 root root  7 jún   27 08.05 new", "new", F, 7, "2026-06-27 08:05"},
     {"-rw-r--r-- 1 root root 11 2023 márc   9 old", "old", F, 11, "2023-03-09"},
     {"-rw-r--r-- 1 root root  7 sep 27 08:05 new", "new", F, 7, "2026-09-27 08:05"},
     {"-rw-r--r-- 1 root root 11 aug  9  2023 old", "old", F, 11, "2023-08-09"},
     {"-rw-r--r-- 1 root root  7 июл 27 08:05 new", "new", F, 7, "2026-07-27 08:05"},
     {"-rw-r--r-- 1 root root 11 дек  9  2023 old", "old", F, 11, "2023-12-09"},
     {"-rw-r--r-- 1 root root  7 жов 27 08:05 new", "new", F, 7, "2026-10-27 08:05"},
     {"-rw-r--r-- 1 root root 11 лют  9  2023 old", "old", F, 11, "2023-02-09"},
     {"-rw-r--r-- 1 root root  7 27 авг 08:05 new", "new", F, 7, "2026-08-27 08:05"},
     {"-rw-r--r-- 1 root root 11  9 май 2023 old", "old", F, 11, "2023-05-09"},
     {"-rw-r--r-- 1 root root  7 Haz 27 08:05 new", "new", F, 7, "2026-06-27 08:05"},
     {"-rw-r--r-- 1 root root 11 Eki  9  2023 old", "old", F, 11, "2023-10-09"},
     {"-rw-r--r-- 1 root root  7 Ιουν 27 08:05 new", "new", F, 7, "2026-06-27 08:05"},
     {"-rw-r--r-- 1 root root 11 Μαρ   9  2023 old", "old", F, 11, "2023-03-09"},
     {"-rw-r--r-- 1 root root  7 27 de set.  08:05 new", "new", F, 7, "2026-09-27 08:05"},
     {"-rw-r--r-- 1 root root 11  9 d’ag.     2023 old", "old", F, 11, "2023-08-09"},
     {"-rw-r--r-- 1 root root  7 27. juuli 08:05 new", "new", F, 7, "2026-07-27 08:05"},
     {"-rw-r--r-- 1 root root 11  9. dets   2023 old", "old", F, 11, "2023-12-09"},
     {"-rw-r--r-- 1 root root  7 2026-10-27 08:05 new", "new", F, 7, "2026-10-27 08:05"},
     {"-rw-r--r-- 1 root root 11 2023-02-09 old", "old", F, 11, "2023-02-09"},
     {"-rw-r--r-- 1 root root  7 avg 27 08:05 new", "new", F, 7, "2026-08-27 08:05"},
     {"-rw-r--r-- 1 root root 11 maj  9  2023 old", "old", F, 11, "2023-05-09"},
     {"-rw-r--r-- 1 root root  7  6月 27 08:05 new", "new", F, 7, "2026-06-27 08:05"},
     {"-rw-r--r-- 1 root root 11 10月  9  2023 old", "old", F, 11, "2023-10-09"},
     {"-rw-r--r-- 1 root root  7  6月27日 08:05 new", "new", F, 7, "2026-06-27 08:05"},
     {"-rw-r--r-- 1 root root 11 2023年 3月 9日 old", "old", F, 11, "2023-03-09"},
     {"-rw-r--r-- 1 root root  7  9月 27 08:05 new", "new", F, 7, "2026-09-27 08:05"},
     {"-rw-r--r-- 1 root root 11  8月  9  2023 old", "old", F, 11, "2023-08-09"},
     {"-rw-r--r-- 1 root root  7  7월 27일  08:05 new", "new", F, 7, "2026-07-27 08:05"},
     {"-rw-r--r-- 1 root root 11 2023년 12월  9일 old", "old", F, 11, "2023-12-09"}}};

const DialectRows kLatin1{
    "Latin1",
    "the same program with the ISO-8859-1 locales of German, French, Spanish and Portuguese",
    "",
    {{"-rw-r--r-- 1 root root 11  9. M\xe4r 2023  old", "old", F, 11, "2023-03-09"},
     {"-rw-r--r-- 1 root root 11  9 f\xe9vr.  2023 old", "old", F, 11, "2023-02-09"},
     {"-rw-r--r-- 1 root root 11  9 ao\xfbt   2023 old", "old", F, 11, "2023-08-09"},
     {"-rw-r--r-- 1 root root 11  9 d\xe9"
      "c.   2023 old",
      "old", F, 11, "2023-12-09"},
     {"-rw-r--r-- 1 root root 11 ene  9  2023 old", "old", F, 11, "2023-01-09"},
     {"-rw-r--r-- 1 root root 11 set  9  2023 old", "old", F, 11, "2023-09-09"},
     {"-rw-r--r-- 1 root root 11  9. 3.  2023 old", "old", F, 11, "2023-03-09"}}};

}  // namespace

const std::vector<DialectRows>& unixRows() {
  static const std::vector<DialectRows> kRows{kZosUnix,        kWftpd,     kOwners,
                                              kYearsAndClocks, kLanguages, kLatin1};
  return kRows;
}

}  // namespace internet_tests
