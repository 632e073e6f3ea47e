// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "hosts/qxftp/Servers.h"

namespace {

std::string refusalOf(std::initializer_list<const char*> lines) {
  qxftp::Refusal refusal;
  for (const char* line : lines) refusal.take(line);
  return refusal.text();
}

}  // namespace

TEST(Refusal, IsTheServersLastOne) {
  EXPECT_EQ(refusalOf({"> DELE a", "< 550 No such file", "> QUIT", "< 221 Bye"}), "550 No such file");
  EXPECT_EQ(refusalOf({"> STOR a", "< 150 Go on", "< 552 Disk full", "> SIZE a", "< 550 No"}), "550 No");
}

// A disk that was full here was told with the server's answer to a question before.
TEST(Refusal, OfAQuestionDoesNotOutliveTheContentThatMoves) {
  EXPECT_EQ(refusalOf({"> CWD a", "< 550 Not a folder", "> RETR a", "< 150 Here it comes"}), "");
  EXPECT_EQ(refusalOf({"> RETR a", "< 150 Here it comes", "< 426 Broken"}), "426 Broken");
}

TEST(Refusal, OfAQuestionStaysBehindAListing) {
  EXPECT_EQ(refusalOf({"> SIZE a", "< 550 No such file", "> LIST", "< 150 Here it comes", "< 226 Done"}),
            "550 No such file");
}
