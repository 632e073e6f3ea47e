// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <string_view>

#include "framework/internet/listing/FtpListing.h"

namespace internet {
namespace {

struct Case {
  std::string_view pattern;
  std::string_view name;
  bool matches = true;
};

void PrintTo(const Case& value, std::ostream* out) {
  *out << '[' << value.pattern << "] [" << value.name << ']';
}

class NamePattern : public testing::TestWithParam<Case> {};

TEST_P(NamePattern, FollowsTheWindowsRules) {
  EXPECT_EQ(matchesPattern(GetParam().pattern, GetParam().name), GetParam().matches);
}

INSTANTIATE_TEST_SUITE_P(Everything, NamePattern,
                         testing::Values(Case{"*", "a"}, Case{"*", "a.b"}, Case{"*", ".a"},
                                         Case{"*.*", "a.b"}, Case{"*.*", "a"}, Case{"*.*", ".a"},
                                         Case{"*.*", "a."}, Case{"**", "a.b.c"}, Case{"***.***", "a"}));

INSTANTIATE_TEST_SUITE_P(
    Dots, NamePattern,
    testing::Values(Case{"*.", "a"}, Case{"*.", "a.b", false}, Case{"*.", ".a", false}, Case{"a*.", "abc"},
                    Case{"a*.", "b", false}, Case{"a*.", "a.b", false}, Case{"?.", "a"},
                    Case{"?.", "ab", false}, Case{"name.*", "name"}, Case{"name.*", "name.txt"},
                    Case{"name.*", "name.a.b"}, Case{"name.*", "names", false}, Case{"name.*", "name."},
                    Case{"na*.*", "name"}, Case{"name*.*", "name"}, Case{"*.txt", "a.txt"},
                    Case{"*.txt", "a.b.txt"}, Case{"*.txt", "txt", false}, Case{"*.txt", "a.txt.b", false},
                    Case{"*.txt", ".txt"}, Case{"*.b*", "a.b.c"}, Case{".*", ".a"}, Case{".*", "a", false},
                    Case{"a.b.*", "a.b"}, Case{"a.b.*", "a", false}, Case{"*.*.*", "a.b"},
                    Case{"*.*.*", "a", false}));

INSTANTIATE_TEST_SUITE_P(
    QuestionMarks, NamePattern,
    testing::Values(Case{"?", "a"}, Case{"?", "ab", false}, Case{"???", "a"}, Case{"???", "abc"},
                    Case{"???", "abcd", false}, Case{"a?.txt", "a.txt"}, Case{"a??.txt", "ab.txt"},
                    Case{"a?.txt", "abc.txt", false}, Case{"?a", "a", false}, Case{"a?b", "ab", false},
                    Case{"a?b", "a.b", false}, Case{"?.?", "a.b"}, Case{"?.?", "a"},
                    Case{"?.?", "a.bc", false}, Case{"name.???", "name"}, Case{"name.?", "name.a"},
                    Case{"a?", "a"}, Case{"*?", "a"}, Case{"?*", "a"}, Case{"a?c*", "abcd"},
                    // One character of UTF-8, also behind a star; else one byte.
                    Case{"?", "\xc3\xa4"}, Case{"?", "\xe2\x82\xac"}, Case{"?", "\xf0\x9f\x98\x80"},
                    Case{"a?b",
                         "a\xc3\xa4"
                         "b"},
                    Case{"*??b",
                         "\xe2\x82\xac"
                         "b",
                         false},
                    Case{"?", "\xe4"}, Case{"??", "\xe4\xf6"}, Case{"?", "\xe4\xf6", false},
                    Case{"?", "\xe2\x82", false}));

INSTANTIATE_TEST_SUITE_P(Letters, NamePattern,
                         testing::Values(Case{"*.TXT", "a.txt"}, Case{"*.txt", "A.TXT"},
                                         Case{"Name*", "nAMES"}, Case{"[a]*", "[A]b"},
                                         Case{"@*", "`x", false},
                                         // Only ASCII letters have two forms.
                                         Case{"\xc3\x84*", "\xc3\xa4", false},
                                         Case{"*\xc3\xa4", "x\xc3\xa4"}));

INSTANTIATE_TEST_SUITE_P(Stars, NamePattern,
                         testing::Values(Case{"a*b", "ab"}, Case{"a*b", "a...b"}, Case{"a*b", "aXbY", false},
                                         Case{"*ab", "aab"}, Case{"*ab", "aba", false},
                                         Case{"*a*b*", "xxaxxbxx"}, Case{"*a*b*", "xxbxxaxx", false},
                                         Case{"a*", "b", false}, Case{"* *", "a b"}, Case{" *", " a"},
                                         Case{" *", "a", false}, Case{"*[1]*", "a[1]b"},
                                         Case{"*[1]*", "a1b", false}));

INSTANTIATE_TEST_SUITE_P(RealWildcards, NamePattern,
                         testing::Values(Case{"a*b", "a*b"}, Case{"a?.txt", "a?.txt"}, Case{"?", "?"},
                                         Case{"*", "*"}, Case{"a?b?", "A?B?"}, Case{"what?.*", "what?.txt"}));

TEST(NamePatternTime, GrowsNoFasterThanPatternTimesName) {
  std::string pattern;
  for (int i = 0; i < 300; ++i) pattern += "*a";
  const std::string name(4000, 'a');
  EXPECT_TRUE(matchesPattern(pattern, name));
  EXPECT_FALSE(matchesPattern(pattern + "b", name));
  EXPECT_FALSE(matchesPattern("*" + std::string(2000, 'a') + "b", name));
}

}  // namespace
}  // namespace internet
