// SPDX-License-Identifier: MIT
// FTPWriteFile that appends: through a local copy, with the server's file opened for writing behind its
// content and closed first.
#include <fstream>

#include "tests/client/ContentTest.h"
#include "tests/client/SlotHost.h"

namespace {

constexpr const char* kHoldsOld = R"({"tree": {"/pub/a.txt": "old"}})";

class Append : public ContentTest {
 protected:
  QXBool append(const std::string& data, const char* remote = "/pub/a.txt", std::uint32_t retries = 0) {
    return client.FTPWriteFile(remote, data.data(), static_cast<std::uint32_t>(data.size()), 1, 0, retries, 0,
                               0);
  }
};

class AppendSizes : public Append,
                    public testing::WithParamInterface<std::tuple<std::size_t, std::size_t>> {};

TEST_P(AppendSizes, PutsTheDataBehindTheContent) {
  const auto [before, added] = GetParam();
  const fixture::ScriptedFtp server(R"({"tree": {"/pub/a.txt": {"size": )" + std::to_string(before) +
                                    R"(, "seed": 3}}})");
  loginAt(server);
  EXPECT_EQ(append(patternText(added)), 1);
  EXPECT_EQ(server.content("/pub/a.txt"), patternText(before, 3) + patternText(added));
  EXPECT_STREQ(client.m_szMessage, "TQXIP::FTPWriteFile '/pub/a.txt' failed!");
  EXPECT_TRUE(IsBlank(record));
  EXPECT_EQ(leftInTemporary(), Names{});
  EXPECT_TRUE(std::filesystem::is_directory(temporary.path() / "FTP"));
}

INSTANTIATE_TEST_SUITE_P(Sizes, AppendSizes,
                         testing::Combine(testing::Values(1u, 4096u, 300'000u),
                                          testing::Values(1u, 4095u, 4096u, 4097u, 300'000u)),
                         [](const auto& instance) {
                           return std::to_string(std::get<1>(instance.param)) + "To" +
                                  std::to_string(std::get<0>(instance.param));
                         });

TEST_F(Append, OpensAndClosesTheFileThenDownloadsThenUploads) {
  const fixture::ScriptedFtp server(kHoldsOld);
  loginAt(server);
  EXPECT_EQ(append("new"), 1);
  server.waitUntilAllClosed();
  Names transfers;
  for (const auto& data : server.dataConnections()) {
    transfers.push_back(std::to_string(data.connection) + " " + data.verb + " " + std::to_string(data.bytes));
  }
  EXPECT_EQ(transfers, (Names{"1 STOR 0", "2 RETR 3", "3 STOR 6"}));
  EXPECT_EQ(server.content("/pub/a.txt"), "oldnew");
  EXPECT_EQ(server.commandCount("APPE"), 0);
  for (const int connection : {1, 2, 3}) expectQuit(server, connection);
}

TEST_F(Append, TheTransferBlockIsNotTouched) {
  const fixture::ScriptedFtp server(kHoldsOld);
  loginAt(server);
  EXPECT_EQ(append("new"), 1);
  EXPECT_EQ(progressIn(client.m_Transfer), Progress{});
}

TEST_F(Append, TheWayBackOfTheWholeIsToldWhereTheHostAsksForIt) {
  const fixture::ScriptedFtp server(kHoldsOld);
  client.FTPSetLogin((server.host() + ";progress=uploads").c_str(), "user", "secret", server.port(), 1);
  EXPECT_EQ(append("new"), 1);
  EXPECT_EQ(progressIn(client.m_Transfer), (Progress{1, 6, 6}));
}

// Where the server does not restart in the file, its opening for writing empties it.
TEST_F(Append, WithoutRestTheOrderIsTheSameAndAFileThatTheServerEmptiesIsAFailure) {
  const fixture::ScriptedFtp server(
      R"({"tree": {"/pub/a.txt": "old"}, "features": ["size", "epsv", "eprt", "mlst"]})");
  loginAt(server);
  EXPECT_EQ(append("new"), 0);
  Names moved;
  for (const std::string& line : server.commands()) {
    if (line.starts_with("STOR") || line.starts_with("RETR") || line.starts_with("REST")) {
      moved.push_back(line);
    }
  }
  EXPECT_EQ(moved, (Names{"REST 3", "STOR /pub/a.txt", "RETR /pub/a.txt"}));
  EXPECT_EQ(server.size("/pub/a.txt"), 0u);
  EXPECT_EQ(server.commandCount("STOR"), 1) << "nothing is uploaded";
  EXPECT_STREQ(client.m_szMessage, "TQXIP::FTPWriteFile '/pub/a.txt' failed!");
  EXPECT_THAT(record, ReportsFrom("TQXIP::FTPWriteFileThr '/pub/a.txt' failed!", 8489));
  EXPECT_EQ(leftInTemporary(), Names{});
}

TEST_F(Append, WithoutRestAFileThatTheServerKeepsIsAppendedTo) {
  const fixture::ScriptedFtp server(
      R"({"tree": {"/pub/a.txt": "old"}, "features": ["size", "epsv", "eprt", "mlst"],
          "rules": [{"on": "STOR", "nth": 1, "do": [{"normal": {"final_gate": "opened"}}]}]})");
  loginAt(server);
  // The content comes back as soon as the opening has emptied it.
  atGate(server, "opened", [&server](QXBool*) -> QXBool {
    server.put(R"({"/pub/a.txt": "old"})");
    server.release("opened");
    return 0;
  });
  EXPECT_EQ(append("new"), 1);
  EXPECT_EQ(server.content("/pub/a.txt"), "oldnew");
}

TEST_F(Append, InActiveModeItIsTheSame) {
  const fixture::ScriptedFtp server(kHoldsOld);
  loginAt(server, false);
  EXPECT_EQ(append("new"), 1);
  EXPECT_EQ(server.content("/pub/a.txt"), "oldnew");
}

TEST_F(Append, AMissingFileIsAFailure) {
  const fixture::ScriptedFtp server(R"({"tree": {"/pub/": {}}})");
  loginAt(server);
  EXPECT_EQ(append("new", "/pub/none", 1), 0);
  EXPECT_EQ(server.commandCount("STOR"), 2);
  EXPECT_EQ(leftInTemporary(), Names{});
}

TEST_F(Append, ARefusedOpeningEndsItBeforeAnyDownload) {
  const fixture::ScriptedFtp server(
      R"({"tree": {"/pub/a.txt": "old"}, "rules": [{"on": "STOR", "do": [{"reply": "553 No"}]}]})");
  loginAt(server);
  EXPECT_EQ(append("new", "/pub/a.txt", 1), 0);
  EXPECT_EQ(server.commandCount("STOR"), 2);
  EXPECT_EQ(server.commandCount("RETR"), 0);
  EXPECT_EQ(server.content("/pub/a.txt"), "old");
  EXPECT_EQ(client.count("OnIPError 12003"), 2u);
  EXPECT_EQ(record.nError, 12003u);
}

TEST_F(Append, ARefusedDownloadIsTriedAgainByTheDownloadAndByTheAppend) {
  const fixture::ScriptedFtp server(
      R"({"tree": {"/pub/a.txt": "old"}, "rules": [{"on": "RETR", "do": [{"reply": "550 No"}]}]})");
  loginAt(server);
  EXPECT_EQ(append("new", "/pub/a.txt", 2), 0);
  EXPECT_EQ(server.commandCount("STOR"), 3);
  EXPECT_EQ(server.commandCount("RETR"), 3 + 2 + 1);
  EXPECT_EQ(leftInTemporary(), Names{});
}

TEST_F(Append, ARefusedUploadIsTheRequiredSuccess) {
  const fixture::ScriptedFtp server(
      R"({"tree": {"/pub/a.txt": "old"},
          "rules": [{"on": "STOR", "nth": 2, "do": [{"reply": "553 No"}]}]})");
  loginAt(server);
  EXPECT_EQ(append("new"), 1);
  EXPECT_EQ(server.content("/pub/a.txt"), "old");
  EXPECT_EQ(leftInTemporary(), Names{});
}

TEST_F(Append, ALeftOverCopyFailsTheAttemptAndIsRemoved) {
  const fixture::ScriptedFtp server(kHoldsOld);
  loginAt(server);
  std::filesystem::create_directory(temporary.path() / "FTP");
  std::ofstream(temporaryFile("a.txt")) << "stale";
  EXPECT_EQ(append("new"), 0);
  EXPECT_EQ(server.content("/pub/a.txt"), "old");
  EXPECT_EQ(leftInTemporary(), Names{});
}

TEST_F(Append, WithoutATemporaryFolderItFails) {
  testing_support::setTemporaryVariable((temporary.path() / "none").string());
  const fixture::ScriptedFtp server(kHoldsOld);
  loginAt(server);
  EXPECT_EQ(append("new"), 0);
  EXPECT_EQ(server.content("/pub/a.txt"), "old");
  EXPECT_EQ(server.commandCount("RETR"), 0);
  EXPECT_EQ(record.bSet, 1u);
}

TEST_F(Append, CancellingAStalledDownloadLeavesNoCopy) {
  const fixture::ScriptedFtp server(
      R"({"tree": {"/pub/a.txt": {"size": 100000}},
          "rules": [{"on": "STOR", "do": [{"gate": "opening"}, {"reply": "553 No"}]}]})");
  loginAt(server);
  atGate(server, "opening", cancels);
  EXPECT_EQ(append("new", "/pub/a.txt", 3), 0);
  server.waitUntilAllClosed();
  EXPECT_EQ(server.commandCount("STOR"), 1);
  EXPECT_EQ(leftInTemporary(), Names{});
  EXPECT_THAT(record, ReportsFrom("TQXIP::FTPWriteFile '/pub/a.txt' failed!", 8669));
}

// The two transfers go through the object's slots.
class AppendSlots : public Append {
 protected:
  const fixture::ScriptedFtp server;
  SlotHost host{&record};
  std::string uploaded;

  void SetUp() override {
    host.FTPSetLogin("127.0.0.1", "user", "secret", server.port(), 1);
    host.download = [this](const std::string&, const std::string&) -> QXBool {
      std::ofstream(temporaryFile("a.txt"), std::ios::binary) << "old";
      return 1;
    };
    host.upload = [this](const std::string&, const std::string&) -> QXBool {
      std::ifstream file(temporaryFile("a.txt"), std::ios::binary);
      uploaded.assign(std::istreambuf_iterator<char>(file), {});
      return 1;
    };
  }
  QXBool append(const char* remote, std::uint32_t retries) {
    return host.FTPWriteFile(remote, "new", 3, 1, 0, retries, 11, 22);
  }
};

TEST_F(AppendSlots, GetThePathAsItWasGivenTheCopysNameAndTheRetryCount) {
  const std::string copy = temporaryName("a.txt");
  for (const std::string path : {"/pub/a.txt", "\\pub\\a.txt", "a.txt"}) {
    SlotHost another(&record);
    another.FTPSetLogin("127.0.0.1", "user", "secret", server.port(), 1);
    another.download = host.download;
    another.upload = host.upload;
    server.put(R"({"/pub/": {}})");
    EXPECT_EQ(another.FTPWriteFile(path.c_str(), "new", 3, 1, 0, 2, 11, 22), 1) << path;
    EXPECT_EQ(another.calls(),
              (Names{"FTPWriteFile " + path + " 3 1 0 2 11 22", "FTPDownloadFile " + path + " " + copy + " 2",
                     "FTPUploadFile " + path + " " + copy + " 2"}));
    EXPECT_EQ(uploaded, "oldnew");
    EXPECT_EQ(leftInTemporary(), Names{});
  }
}

TEST_F(AppendSlots, AFailedUploadIsRetriedFromTheOpeningOnWithTheCountThatIsLeft) {
  host.upload = [](const std::string&, const std::string&) { return QXBool{0}; };
  EXPECT_EQ(append("/a.txt", 1), 0);
  const std::string copy = temporaryName("a.txt");
  EXPECT_EQ(host.calls(),
            (Names{"FTPWriteFile /a.txt 3 1 0 1 11 22", "FTPDownloadFile /a.txt " + copy + " 1",
                   "FTPUploadFile /a.txt " + copy + " 1", "FTPDownloadFile /a.txt " + copy + " 0",
                   "FTPUploadFile /a.txt " + copy + " 0"}));
  EXPECT_EQ(server.commandCount("STOR"), 2);
  EXPECT_EQ(leftInTemporary(), Names{});
}

// A retry ends, lines and reports included, inside the attempt that it repeats.
TEST_F(AppendSlots, TheInnermostAttemptReportsFirst) {
  host.download = [error = 11u](const std::string&, const std::string&) mutable -> QXBool {
    platform::setLastError(error++);
    return 0;
  };
  EXPECT_EQ(append("/a.txt", 2), 0);
  EXPECT_THAT(record, ReportsLastError("TQXIP::FTPWriteFileThr '/a.txt' failed!", 13u, 8489));
}

TEST_F(AppendSlots, ADownloadThatLeavesNoFileIsAFailure) {
  host.download = [](const std::string&, const std::string&) { return QXBool{1}; };
  EXPECT_EQ(append("/a.txt", 0), 0);
  EXPECT_EQ(uploaded, "");
  EXPECT_THAT(record, ReportsLastError("TQXIP::FTPWriteFileThr '/a.txt' failed!", 2u, 8489));
}

TEST_F(AppendSlots, AReadOnlyCopyIsRemovedToo) {
  host.download = [this](const std::string&, const std::string&) -> QXBool {
    std::ofstream(temporaryFile("a.txt")) << "old";
    std::filesystem::permissions(temporaryFile("a.txt"), std::filesystem::perms::owner_read);
    return 1;
  };
  append("/a.txt", 0);  // whether it may be written depends on the user's rights
  EXPECT_EQ(host.calls().at(1), "FTPDownloadFile /a.txt " + temporaryName("a.txt") + " 0");
  EXPECT_EQ(leftInTemporary(), Names{});
}

TEST_F(AppendSlots, ADownloadedCopyThatIsEmptyIsAFailure) {
  host.download = [this](const std::string&, const std::string&) -> QXBool {
    std::ofstream(temporaryFile("a.txt")).close();
    return 1;
  };
  EXPECT_EQ(append("/a.txt", 0), 0);
  EXPECT_EQ(host.calls().size(), 2u) << "no upload";
  EXPECT_THAT(std::string(record.szText), testing::EndsWith("[38 QXIP 8489]")) << "end of file";
  EXPECT_EQ(leftInTemporary(), Names{});
}

}  // namespace
