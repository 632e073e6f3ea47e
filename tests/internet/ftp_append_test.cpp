// SPDX-License-Identifier: MIT
// Files that are opened for writing behind their content.
#include <algorithm>

#include "tests/internet/FtpTransferTest.h"

namespace internet_tests {
namespace {

using Lines = std::vector<std::string>;

class FtpAppend : public FtpTransferTest {
 protected:
  static ScriptedFtp holding(const char* content, const std::vector<json>& rules = {}) {
    return ScriptedFtp(json{{"tree", {{"/pub/", json::object()}, {"/pub/a", content}}}, {"rules", rules}});
  }
  static json answering(const char* verb, const char* reply) {
    return {{"on", verb}, {"do", {{{"reply", reply}}}}};
  }
  static std::unique_ptr<CInternetFile> openToAppend(CFtpConnection& connection,
                                                     const char* path = "/pub/a") {
    return std::unique_ptr<CInternetFile>(connection.OpenFile(path, internet::kFileAppendData));
  }
  // The commands behind the log-in, as the verbs of those with a port.
  static Lines lines(const ScriptedFtp& server) {
    Lines all = server.commands();
    all.erase(all.begin(), all.begin() + 2);
    for (std::string& line : all) {
      if (line.starts_with("EPRT")) line.resize(4);
    }
    return all;
  }
};

// The opening of an append emptied the file at every server.
TEST_F(FtpAppend, OpenedAndClosedAFileIsAsItWas) {
  for (const bool passive : {true, false}) {
    ScriptedFtp server = holding("content");
    auto connection = connect(server, passive);
    auto file = openToAppend(*connection);
    EXPECT_EQ(errorOf([&] { return file->Close(); }), 0u);
    EXPECT_EQ(server.content("/pub/a"), "content");
    EXPECT_EQ(lines(server),
              (Lines{"TYPE I", "SIZE /pub/a", passive ? "EPSV" : "EPRT", "REST 7", "STOR /pub/a"}));
    EXPECT_TRUE(works(*connection));
  }
}

TEST_F(FtpAppend, WhatIsWrittenGoesBehindTheContent) {
  ScriptedFtp server = holding("content");
  auto connection = connect(server);
  auto file = openToAppend(*connection);
  file->Write(" and more", 9);
  EXPECT_EQ(errorOf([&] { return file->Close(); }), 0u);
  EXPECT_EQ(server.content("/pub/a"), "content and more");
}

TEST_F(FtpAppend, AFileOfMoreThanFourGibibytesKeepsItsPlace) {
  const std::uint64_t size = (std::uint64_t{5} << 30) + 3;
  ScriptedFtp server(json{{"tree", {{"/pub/a", {{"size", size}, {"zeros", true}}}}}});
  auto connection = connect(server);
  const auto file = openToAppend(*connection);
  EXPECT_EQ(server.commands().at(5), "REST " + std::to_string(size));
}

TEST_F(FtpAppend, WhereThereIsNoContentNothingIsRestarted) {
  ScriptedFtp server = holding("");
  auto connection = connect(server);
  for (const char* path : {"/pub/a", "/pub/new"}) {
    auto file = openToAppend(*connection, path);
    file->Write("first", 5);
    EXPECT_EQ(errorOf([&] { return file->Close(); }), 0u) << path;
    EXPECT_EQ(server.content(path), "first");
  }
  EXPECT_EQ(server.commandCount("REST"), 0);
}

TEST_F(FtpAppend, WhereRestIsRefusedTheFileIsWrittenFromItsStart) {
  for (const char* refusal : {"500 Unknown", "501 Not so", "502 Not here", "503 Not now", "550 No",
                              "451 Not permitted", "250 What?"}) {
    ScriptedFtp server = holding("content", {answering("REST", refusal)});
    auto connection = connect(server);
    auto file = openToAppend(*connection);
    file->Write("new", 3);
    EXPECT_EQ(errorOf([&] { return file->Close(); }), 0u) << refusal;
    EXPECT_EQ(server.content("/pub/a"), "new") << refusal;
  }
}

TEST_F(FtpAppend, WhereSizeIsRefusedTheFileIsWrittenFromItsStart) {
  for (const char* refusal : {"500 Unknown", "550 No", "213 many"}) {
    internet::forgetCachedTraits();
    ScriptedFtp server = holding("content", {answering("SIZE", refusal)});
    auto connection = connect(server);
    auto file = openToAppend(*connection);
    EXPECT_EQ(errorOf([&] { return file->Close(); }), 0u) << refusal;
    EXPECT_EQ(server.commandCount("REST"), 0) << refusal;
    EXPECT_EQ(server.content("/pub/a"), "") << refusal;
  }
}

TEST_F(FtpAppend, ARefusedRestartIsARefusedOpeningAndSparesTheFile) {
  // As proftpd answers where it is not told to allow restarts.
  ScriptedFtp server = holding("content", {answering("STOR", "451 Append/Restart not permitted")});
  auto connection = connect(server);
  const Thrown thrown = thrownBy([&] { openToAppend(*connection); });
  EXPECT_EQ(thrown.error, 12003u);
  EXPECT_EQ(thrown.text, "451 Append/Restart not permitted");
  EXPECT_EQ(server.content("/pub/a"), "content");
  EXPECT_EQ(server.commandCount("STOR"), 1);
  EXPECT_TRUE(works(*connection));
}

TEST_F(FtpAppend, WithoutAFinalReplyTheWholeSizeDecides) {
  internet::Timeouts timeouts = shortTimeouts();
  timeouts.finalReply = std::chrono::milliseconds(200);
  session.SetTimeouts(timeouts);
  const json lost = {{"on", "STOR"}, {"do", {{{"normal", {{"final", nullptr}}}}}}};
  for (const bool whole : {true, false}) {
    const json told = {{"on", "SIZE"}, {"connection", 2}, {"do", {{{"reply", "213 3"}}}}};
    ScriptedFtp server = holding("content", whole ? std::vector{lost} : std::vector{told, lost});
    auto connection = connect(server);
    auto file = openToAppend(*connection);
    file->Write("new", 3);
    EXPECT_EQ(errorOf([&] { return file->Close(); }), whole ? 0u : 12002u);
    EXPECT_EQ(server.content("/pub/a"), "contentnew");
  }
}

TEST_F(FtpAppend, WritingFromTheStartNeitherAsksNorRestarts) {
  ScriptedFtp server = holding("content");
  auto connection = connect(server);
  EXPECT_TRUE(openToWrite(*connection, "/pub/a")->Close());
  EXPECT_EQ(lines(server), (Lines{"TYPE I", "EPSV", "STOR /pub/a"}));
  EXPECT_EQ(server.content("/pub/a"), "");
  EXPECT_EQ(thrownBy([&] {
              static_cast<void>(
                  connection->OpenFile("/pub/a", internet::kFileAppendData | internet::kGenericWrite));
            }).error,
            87u);
}

}  // namespace
}  // namespace internet_tests
