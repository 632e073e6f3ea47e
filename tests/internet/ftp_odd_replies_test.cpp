// SPDX-License-Identifier: MIT
// Replies that nobody has asked for, or that the line whose turn it is cannot have.
#include "tests/internet/FtpLinesTest.h"

namespace internet_tests {
namespace {

using std::chrono::seconds;

// A client that has come to be a reply behind took the port of a transfer for the answer to a removal, and
// the file for removed.
TEST_F(FtpLines, WhatAnswersAnotherCommandEndsTheConnection) {
  for (const char* reply : {"213 3", "227 Here (127,0,0,1,3,232)", "229 Here (|||1000|)"}) {
    FileServer far;
    const auto connection = login();
    far.server.answers["DELE"] = std::string(reply) + "\r\n";
    EXPECT_EQ(errorOf([&] { return connection->Remove("/f"); }), 12152u) << reply;
    EXPECT_EQ(errorOf([&] { return connection->Remove("/f"); }), 12030u) << reply;
  }
}

TEST_F(FtpLines, ThePortOfTheOlderCommandIsNoPortAndNoHarm) {
  FileServer far;
  far.server.answers["EPSV"] = far.server.answers["PASV"] = "227 Here (127,0,0,1,3,232)\r\n";
  EXPECT_EQ(transferTime(far), seconds(0));
  EXPECT_EQ(far.count("PASV"), 1);
}

// It was taken for the answer to the next line: a missing file was there.
TEST_F(FtpLines, ASecondReplyToALineSentAlongIsDropped) {
  FileServer far;
  const auto connection = loginWithOptions();
  far.server.answers["OPTS"] = "200 Fine\r\n200 Really\r\n";
  far.server.answers["TYPE"] = "200 Binary\r\n200 Really\r\n";
  far.server.answers["MLST"] = "550 No such file\r\n";
  const auto before = far.network.now();
  EXPECT_FALSE(finds(*connection));
  far.server.answers["DELE"] = "550 No such file\r\n";
  EXPECT_EQ(errorOf([&, fresh = login()] { return fresh->Remove("/f"); }), 12003u);
  for (const bool passive : {true, false}) {
    const auto fresh = login(passive);
    EXPECT_EQ(read(*fresh), "abc") << passive;
    EXPECT_TRUE(works(*fresh));
  }
  EXPECT_EQ(far.network.now(), before);
}

TEST_F(FtpLines, AnotherGoodAnswerToThePortIsNotWaitedOn) {
  FileServer far;
  far.server.answers["EPRT"] = "250 Done otherwise\r\n";
  for (int i = 0; i < 3; ++i) EXPECT_EQ(transferTime(far, false), seconds(0)) << i;
  EXPECT_EQ(far.count("RETR"), 3);
}

TEST_F(FtpLines, AnOddAnswerIsTakenWhenNoOtherComes) {
  FileServer far;
  far.server.answers["EPSV"] = "228 Here (|||1000|)\r\n";
  EXPECT_EQ(transferTime(far), seconds(2));
  EXPECT_EQ(far.count("EPSV"), 1);
  EXPECT_EQ(transferTime(far), seconds(0));
}

// The client waited, asked, and was a reply behind from then on.
TEST_F(FtpLines, AnOddAnswerIsTakenAtOnceWhereTheNextLineIsAnsweredBehindIt) {
  FileServer far;
  far.server.answers["TYPE"] = "250 Done otherwise\r\n";
  EXPECT_EQ(transferTime(far), seconds(0));
  EXPECT_EQ(far.count("NOOP"), 0);
}

}  // namespace
}  // namespace internet_tests
