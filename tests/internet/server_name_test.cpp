// SPDX-License-Identifier: MIT
#include "framework/internet/net/ServerName.h"

#include <gtest/gtest.h>

namespace internet {
namespace {

struct Spelling {
  const char* text;
  const char* name;
  bool address;
};

constexpr Spelling kSpellings[] = {
    {"host", "host", false},
    {"ftp.example.org", "ftp.example.org", false},
    {"ftp.example.org.", "ftp.example.org.", false},
    {"1and1.example", "1and1.example", false},
    {"2130706433", "2130706433", false},
    {"", "", false},
    {".", ".", false},
    {"192.0.2.1", "192.0.2.1", true},
    {"::1", "::1", true},
    {"2001:db8::7", "2001:db8::7", true},
    {"::ffff:192.0.2.1", "::ffff:192.0.2.1", true},
    {"fe80::1%eth0", "fe80::1%eth0", true},
    {"[::1]", "::1", true},
    {"[2001:db8::7]", "2001:db8::7", true},
    {"[fe80::1%eth0]", "fe80::1%eth0", true},
    // Brackets around anything else are no name, and no address either.
    {"[host]", "[host]", false},
    {"[192.0.2.1]", "[192.0.2.1]", false},
    {"[]", "[]", false},
    {"[", "[", false},
    {"]", "]", false},
};

TEST(ServerName, LosesTheBracketsOfAnAddressAlone) {
  for (const Spelling& each : kSpellings) {
    const ServerName parsed = parseServerName(each.text);
    EXPECT_EQ(parsed.name, each.name) << each.text;
    EXPECT_EQ(parsed.address, each.address) << each.text;
  }
}

// Half a pair of brackets is left as it stands, so that the lookup refuses it.
TEST(ServerName, KeepsWhatIsNoPairOfBrackets) {
  for (const char* text : {"[::1", "::1]", "[::1]:21", "x[::1]"}) EXPECT_EQ(parseServerName(text).name, text);
}

}  // namespace
}  // namespace internet
