// SPDX-License-Identifier: MIT
// FTPCpyFile between server and disk, in every direction.
#include <algorithm>
#include <fstream>

#include "tests/client/ContentTest.h"
#include "tests/client/SlotHost.h"

namespace {

class Copy : public ContentTest {
 protected:
  const std::string target = localName(local);

  static std::string serving(std::size_t size) {
    return "{\"tree\": {\"/a\": {\"size\": " + std::to_string(size) + ", \"seed\": 7}}}";
  }
  QXBool copy(const std::string& from, const std::string& to, std::uint32_t retries = 0) {
    return client.FTPCpyFile(from.c_str(), to.c_str(), nullptr, retries, 0, 0);
  }
  static std::string failedLine(const std::string& from, const std::string& to,
                                const std::string& name = "FTPCpyFile") {
    return "TQXIP::" + name + " from '" + from + "' to '" + to + "' failed!";
  }
};

class CopySizes : public Copy, public testing::WithParamInterface<std::tuple<std::size_t, bool>> {
 protected:
  const std::size_t size = std::get<0>(GetParam());
  const bool passive = std::get<1>(GetParam());

  void expectSilentSuccess(const std::string& from, const std::string& to) {
    EXPECT_EQ(client.m_szMessage, failedLine(from, to));
    EXPECT_TRUE(IsBlank(record));
    EXPECT_EQ(leftInTemporary(), Names{});
  }
};

TEST_P(CopySizes, RemoteToRemote) {
  const fixture::ScriptedFtp server(serving(size));
  loginAt(server, passive);
  EXPECT_EQ(copy("/a", "/b"), 1);
  EXPECT_TRUE(server.matches("/b", 7, size));
  EXPECT_TRUE(server.matches("/a", 7, size));
  EXPECT_EQ(progressIn(client.m_Transfer), (Progress{1, size, size}));
  EXPECT_EQ(server.dataConnections().at(0).mode, passive ? "passive" : "active");
  EXPECT_EQ(client.count("OnAfterDisconnect"), 0u);
  expectSilentSuccess("/a", "/b");
  expectAttempts(server, 3);
  for (const int connection : {1, 2, 3}) expectQuit(server, connection);
}

TEST_P(CopySizes, RemoteToLocal) {
  const fixture::ScriptedFtp server(serving(size));
  loginAt(server, passive);
  EXPECT_EQ(copy("/a", target), 1);
  EXPECT_TRUE(testing_support::Pattern(7).matchesFile(local, size));
  EXPECT_EQ(progressIn(client.m_Transfer), (Progress{1, size, size}));
  EXPECT_EQ(client.count("OnAfterDisconnect"), 1u) << "the host hears of the end of such a copy";
  expectSilentSuccess("/a", target);
  expectAttempts(server, 2);
}

TEST_P(CopySizes, LocalToRemote) {
  const fixture::ScriptedFtp server;
  loginAt(server, passive);
  testing_support::Pattern(7).writeFile(local, size);
  EXPECT_EQ(copy(target, "/b"), 1);
  EXPECT_TRUE(server.matches("/b", 7, size));
  EXPECT_EQ(progressIn(client.m_Transfer), Progress{}) << "uploads show no progress";
  expectSilentSuccess(target, "/b");
  expectAttempts(server, 2);
}

INSTANTIATE_TEST_SUITE_P(Sizes, CopySizes,
                         testing::Combine(testing::Values(0u, 1u, 4095u, 4096u, 4097u, 1u << 20),
                                          testing::Bool()),
                         [](const auto& instance) {
                           return std::to_string(std::get<0>(instance.param)) +
                                  (std::get<1>(instance.param) ? "Passive" : "Active");
                         });

TEST_F(Copy, BetweenTwoLocalPathsCopiesNothingAndIsASuccess) {
  const fixture::ScriptedFtp server;
  loginAt(server);
  write("mine");
  EXPECT_EQ(copy(target, localName(folder.file("other"))), 1);
  EXPECT_FALSE(std::filesystem::exists(folder.file("other")));
  EXPECT_EQ(content(), "mine");
  EXPECT_EQ(server.connections().size(), 1u);
  EXPECT_EQ(server.dataConnections().size(), 0u);
  EXPECT_TRUE(IsBlank(record));
}

TEST_F(Copy, TheServersFileIsReplaced) {
  const fixture::ScriptedFtp server(R"({"tree": {"/a": "new", "/b": "a longer old content"}})");
  loginAt(server);
  EXPECT_EQ(copy("/a", "/b"), 1);
  EXPECT_EQ(server.content("/b"), "new");
}

TEST_F(Copy, AFileIsCopiedOntoItself) {
  const fixture::ScriptedFtp server(serving(10'000));
  loginAt(server);
  EXPECT_EQ(copy("/a", "/a"), 1);
  EXPECT_TRUE(server.matches("/a", 7, 10'000));
}

TEST_F(Copy, TheLocalFileIsReplaced) {
  const fixture::ScriptedFtp server(R"({"tree": {"/a": "new"}})");
  loginAt(server);
  write("a longer old content");
  EXPECT_EQ(copy("/a", target), 1);
  EXPECT_EQ(content(), "new");
}

TEST_F(Copy, ALeftOverTemporaryCopyIsReplaced) {
  const fixture::ScriptedFtp server(R"({"tree": {"/a": "new"}})");
  loginAt(server);
  std::filesystem::create_directory(temporary.path() / "FTP");
  std::ofstream(temporaryFile("b")) << "a longer stale content";
  EXPECT_EQ(copy("/a", "/b"), 1);
  EXPECT_EQ(server.content("/b"), "new");
  EXPECT_EQ(leftInTemporary(), Names{});
}

TEST_F(Copy, RemoteToRemoteDownloadsThenUploads) {
  const fixture::ScriptedFtp server(R"({"tree": {"/a": "one"}})");
  loginAt(server);
  EXPECT_EQ(copy("/a", "/b"), 1);
  Names transfers;
  for (const auto& data : server.dataConnections()) {
    transfers.push_back(std::to_string(data.connection) + " " + data.verb + " " + std::to_string(data.bytes));
  }
  EXPECT_EQ(transfers, (Names{"1 RETR 3", "3 STOR 3"}));
  const Names all = server.commands();
  const auto size = std::find(all.begin(), all.end(), "MLST /a");
  ASSERT_NE(size, all.end());
  EXPECT_NE(std::find(size, all.end(), "RETR /a"), all.end());
}

// The parts of a copy go through the object's slots.
class CopySlots : public Copy {
 protected:
  const fixture::ScriptedFtp server{R"({"tree": {"/pub/a.txt": "one"}})"};
  SlotHost host{&record};

  void SetUp() override { host.FTPSetLogin("127.0.0.1", "user", "secret", server.port(), 1); }
  QXBool copy(const std::string& from, const std::string& to) {
    return host.FTPCpyFile(from.c_str(), to.c_str(), nullptr, 3, 11, 22);
  }
};

TEST_F(CopySlots, RemoteToRemoteMeasuresWithOneRetryAndUploadsTheCopyToTheNormalisedPath) {
  EXPECT_EQ(copy("\\pub\\a.txt", "\\pub\\b.txt"), 1);
  EXPECT_EQ(host.calls(),
            (Names{"FTPCpyFile \\pub\\a.txt \\pub\\b.txt 0 3 11 22", "FTPFileSize \\pub\\a.txt 1 0 0",
                   "FTPUploadFile /pub/b.txt " + temporaryName("b.txt") + " 3"}));
  EXPECT_EQ(server.content("/pub/b.txt"), "one");
}

TEST_F(CopySlots, NormaliseBothPathsOnce) {
  EXPECT_EQ(copy("///pub/a.txt", "///pub/b.txt"), 1);
  EXPECT_THAT(server.commands(), testing::Contains("RETR //pub/a.txt"));
  EXPECT_EQ(host.calls().back(), "FTPUploadFile //pub/b.txt " + temporaryName("b.txt") + " 3");
}

TEST_F(CopySlots, RemoteToLocalMeasuresWithTheRetryCount) {
  EXPECT_EQ(copy("\\pub\\a.txt", target), 1);
  EXPECT_EQ(host.calls(),
            (Names{"FTPCpyFile \\pub\\a.txt " + target + " 0 3 11 22", "FTPFileSize \\pub\\a.txt 3 0 0"}));
  EXPECT_EQ(content(), "one");
}

TEST_F(CopySlots, LocalToRemoteUploadsWithTheRetryCount) {
  write("two");
  EXPECT_EQ(copy(target, "\\pub\\b.txt"), 1);
  EXPECT_EQ(host.calls(), (Names{"FTPCpyFile " + target + " \\pub\\b.txt 0 3 11 22",
                                 "FTPUploadFile /pub/b.txt " + target + " 3"}));
  EXPECT_EQ(server.content("/pub/b.txt"), "two");
}

TEST_F(CopySlots, AFailedUploadIsRetriedFromTheDownloadOnWithTheCountThatIsLeft) {
  host.upload = [](const std::string&, const std::string&) { return QXBool{0}; };
  EXPECT_EQ(host.FTPCpyFile("/pub/a.txt", "/b", nullptr, 1, 0, 0), 0);
  const std::string upload = "FTPUploadFile /b " + temporaryName("b") + " ";
  EXPECT_EQ(host.calls(), (Names{"FTPCpyFile /pub/a.txt /b 0 1 0 0", "FTPFileSize /pub/a.txt 1 0 0",
                                 upload + "1", "FTPFileSize /pub/a.txt 1 0 0", upload + "0"}));
  EXPECT_EQ(server.commandCount("RETR"), 2);
  EXPECT_EQ(leftInTemporary(), Names{});
  EXPECT_THAT(record, ReportsFrom(failedLine("/pub/a.txt", "/b", "FTPCpyFileThr"), 6082));
}

TEST_F(CopySlots, ACopyThatIsShorterThanItsSizeIsAFailure) {
  host.size = [] { return 4u; };
  EXPECT_EQ(host.FTPCpyFile("/pub/a.txt", "/b", nullptr, 0, 0, 0), 0);
  EXPECT_FALSE(server.exists("/b"));
  EXPECT_EQ(host.FTPCpyFile("/pub/a.txt", target.c_str(), nullptr, 0, 0, 0), 0);
  EXPECT_THAT(record, ShowsError(12030));
}

TEST_F(CopySlots, AReconnectCallsTheSlotWithOneRetryAndTheSameArguments) {
  host.poll = [asked = 0](QXBool* reconnect) mutable -> QXBool {
    *reconnect = asked++ == 0 ? 1 : 0;
    return 0;
  };
  EXPECT_EQ(copy("/pub/a.txt", "/b"), 0);
  EXPECT_THAT(host.calls(), testing::IsSupersetOf({"FTPCpyFile /pub/a.txt /b 0 3 11 22",
                                                   "FTPCpyFile /pub/a.txt /b 0 1 11 22"}));
  EXPECT_EQ(server.content("/b"), "one");
}

// What a path names is told by its beginning alone.
struct Place {
  const char* name;
  const char* path;
  bool isRemote;
};

constexpr Place kPlaces[] = {
    {"DriveAndBackslash", "C:\\no\\where", false},
    {"DriveAndSlash", "c:/no/where", false},
    {"DriveAlone", "C:", false},
    {"DigitAndColon", "1:x", false},
    {"TwoBackslashes", "\\\\server\\x", false},
    {"OneLetter", "x", false},
    {"OneBackslash", "\\", false},
    {"OneDot", ".", false},
    {"BackslashAndName", "\\pub", true},
    {"Relative", "pub/x", true},
    {"SlashAndName", "/pub", true},
    {"TwoLetters", "xy", true},
    {"TwoSlashes", "//pub", true},
    {"ColonLater", "ab:c", true},
    {"OneSlash", "/", true},
};

class CopyPlaces : public Copy, public testing::WithParamInterface<Place> {};

// A local source that is not there fails in the upload; a remote one fails in the download, or its copy does.
TEST_P(CopyPlaces, AreToldApart) {
  const fixture::ScriptedFtp server(R"({"rules": [{"on": "RETR", "do": [{"reply": "550 No"}]}]})");
  SlotHost host;
  host.FTPSetLogin("127.0.0.1", "user", "secret", server.port(), 1);
  host.upload = [](const std::string&, const std::string&) { return QXBool{0}; };
  EXPECT_EQ(host.FTPCpyFile(GetParam().path, "/target", nullptr, 0, 0, 0), 0);
  const std::string second = host.calls().at(1);
  EXPECT_EQ(second, GetParam().isRemote ? std::string("FTPFileSize ") + GetParam().path + " 1 0 0"
                                        : std::string("FTPUploadFile /target ") + GetParam().path + " 0");
}

TEST_P(CopyPlaces, AreToldApartAsTargetsToo) {
  const fixture::ScriptedFtp server;
  SlotHost host;
  host.FTPSetLogin("127.0.0.1", "user", "secret", server.port(), 1);
  host.upload = [](const std::string&, const std::string&) { return QXBool{1}; };
  EXPECT_EQ(host.FTPCpyFile(target.c_str(), GetParam().path, nullptr, 0, 0, 0), 1);
  EXPECT_EQ(host.calls().size(), GetParam().isRemote ? 2u : 1u) << "with a local target nothing happens";
}

INSTANTIATE_TEST_SUITE_P(Rule, CopyPlaces, testing::ValuesIn(kPlaces),
                         [](const auto& instance) { return instance.param.name; });

}  // namespace
