// SPDX-License-Identifier: MIT
// The operations of qx::Client, and its lambdas.
#include <cstring>
#include <filesystem>
#include <optional>

#include "tests/dll/WrapperTest.h"
#include "tests/support/Pattern.h"
#include "tests/support/TemporaryFolder.h"

namespace wrapper {
namespace {

using testing::HasSubstr;

TEST_F(Wrapper, ALibraryThatIsNotThereIsAFailureWithTheSystemsText) {
  const auto missing = qx::loadLibrary(scratch.file("none"));
  EXPECT_FALSE(missing);
  EXPECT_NE(missing.report().text, "");
  EXPECT_THROW(static_cast<void>(missing.value()), qx::NoValue);
  EXPECT_FALSE(qx::Client::make({}));
}

TEST_F(Wrapper, Lists) {
  const auto entries = client.list("/pub");
  ASSERT_TRUE(entries) << entries.report().text;
  std::vector<std::string> names;
  for (const QXDirEntry& entry : *entries) names.emplace_back(entry.szName);
  EXPECT_THAT(names, testing::UnorderedElementsAre("a.txt", "empty", "large", "sub"));
  EXPECT_EQ(client.list("/pub", "a*").value().size(), 1U);
  EXPECT_EQ(client.list("/pub/sub").value().size(), 0U);
  EXPECT_FALSE(client.list("/pub\n"));
}

TEST_F(Wrapper, TellsEachFileOfAListing) {
  std::vector<std::string> files;
  qx::Lambdas lambdas;
  lambdas.entry = [&](const QXDirEntry& entry) { files.emplace_back(entry.szName); };
  client.use(std::move(lambdas));
  ASSERT_TRUE(client.list("/pub"));
  EXPECT_THAT(files, testing::UnorderedElementsAre("a.txt", "empty", "large"));
}

TEST_F(Wrapper, DownloadsWithProgress) {
  qx::Progress seen;
  client.use(polling([&](const qx::Progress& progress) {
    if (progress.isKnown && !seen.isKnown) server.release("half");
    seen = progress;
    return qx::Poll::goOn;
  }));
  const auto done = client.download("/pub/large", local);
  ASSERT_TRUE(done) << done.report().text;
  EXPECT_TRUE(testing_support::Pattern(5).matchesFile(local, kLarge));
  EXPECT_EQ(seen.total, kLarge);
  EXPECT_GT(seen.transferred, 0U);
  EXPECT_FALSE(done.report().isSet);
}

TEST_F(Wrapper, TheProgressOfOneOperationIsNotThatOfTheNext) {
  ASSERT_TRUE(client.download("/pub/a.txt", local));
  bool known = false;
  client.use(polling([&](const qx::Progress& progress) {
    known = known || progress.isKnown;
    return qx::Poll::goOn;
  }));
  ASSERT_TRUE(client.upload(local, "/pub/sub/a.txt")) << "which counts nothing";
  EXPECT_FALSE(known);
}

TEST_F(Wrapper, CancelsThroughALambda) {
  client.use(polling(
      [](const qx::Progress& progress) { return progress.isKnown ? qx::Poll::cancel : qx::Poll::goOn; }));
  const auto done = client.download("/pub/large", local);
  EXPECT_FALSE(done);
  EXPECT_TRUE(done.report().isCancelled);
  EXPECT_EQ(client.size("/pub/large").value(), kLarge) << "the client works on";
}

TEST_F(Wrapper, AResultHasTheErrorRecordOfItsOwnOperation) {
  const auto refused = client.connect(login("wrong"));
  EXPECT_FALSE(refused);
  EXPECT_TRUE(refused.report().isSet);
  EXPECT_EQ(refused.report().number, 12014U);
  EXPECT_THAT(refused.report().text, HasSubstr("password"));
  EXPECT_EQ(refused.report().message, "TQXIP::FTPConnect - OUT: Failed!");
  const auto connected = client.connect(login());
  EXPECT_TRUE(connected);
  EXPECT_FALSE(connected.report().isSet);
  EXPECT_TRUE(client.disconnect());
}

TEST_F(Wrapper, ASuccessKeepsTheReportOfAnAttemptThatFailed) {
  server.reconfigure(R"({"rules": [{"on": "RETR", "first": 1, "do": [{"reply": "451 Not now"}]}]})");
  std::vector<std::uint32_t> numbers;
  qx::Lambdas lambdas;
  lambdas.error = [&](std::uint32_t number, const char*) { numbers.push_back(number); };
  client.use(std::move(lambdas));
  client.setRetries(1);
  const auto read = client.read("/pub/a.txt");
  ASSERT_TRUE(read) << read.report().text;
  EXPECT_EQ(read.report().number, 12003U);
  EXPECT_THAT(numbers, testing::ElementsAre(12003U));
}

TEST_F(Wrapper, TellsNoFromDoNotKnow) {
  EXPECT_TRUE(client.fileExists("/pub/a.txt").value());
  EXPECT_FALSE(client.fileExists("/pub/none").value());
  EXPECT_TRUE(client.directoryExists("/pub/sub").value());
  EXPECT_FALSE(client.directoryExists("/pub/none").value());
  EXPECT_EQ(client.size("/pub/empty").value(), 0U);
  EXPECT_FALSE(client.size("/pub/none"));
  EXPECT_FALSE(client.size(""));
  EXPECT_EQ(client.fileExists("/pub/a\n").report().number, 87U);
  EXPECT_FALSE(client.fileExists("/pub/a\n"));
  EXPECT_FALSE(client.directoryExists(""));

  const fixture::RefusedPort closed;
  qx::Login elsewhere = login();
  elsewhere.port = closed.port();
  ASSERT_TRUE(client.setLogin(elsewhere));
  const auto unknown = client.fileExists("/pub/a.txt");
  EXPECT_FALSE(unknown);
  EXPECT_EQ(unknown.report().number, 12029U);
  EXPECT_FALSE(client.removeDirectory("/pub/sub")) << "which the library calls removed";
}

TEST_F(Wrapper, MovesContentOfMemory) {
  ASSERT_TRUE(client.write("/pub/mine", bytesOf("first")));
  ASSERT_TRUE(client.append("/pub/mine", bytesOf(", second")));
  EXPECT_EQ(server.content("/pub/mine"), "first, second");
  const auto content = client.read("/pub/mine");
  ASSERT_TRUE(content) << content.report().text;
  EXPECT_EQ(std::string(reinterpret_cast<const char*>(content->data()), content->size()), "first, second");
  EXPECT_EQ(client.read("/pub/empty").value().size(), 0U);
  EXPECT_FALSE(client.read("/pub/none")) << "which the library calls empty";
  EXPECT_FALSE(client.write("/pub/mine", {}));
}

TEST_F(Wrapper, ChangesTheServer) {
  EXPECT_TRUE(client.createDirectory("/pub/new"));
  EXPECT_EQ(client.createNewDirectory("/pub", "new").value(), "/pub/new (1)");
  EXPECT_TRUE(client.copy("/pub/a.txt", "/pub/new/b.txt"));
  EXPECT_TRUE(client.move("/pub/new/b.txt", "/pub/new/c.txt"));
  EXPECT_TRUE(client.rename("/pub/new/c.txt", "/pub/new/d.txt"));
  EXPECT_EQ(server.content("/pub/new/d.txt"), "hello");
  EXPECT_TRUE(client.remove("/pub/new/d.txt"));
  EXPECT_TRUE(client.removeDirectory("/pub/new"));
  const auto counts = client.count("/pub");
  EXPECT_EQ(counts->files, 3U);
  EXPECT_EQ(counts->directories, 2U);
}

TEST_F(Wrapper, UploadsWithProgressWhereTheLoginSaysSo) {
  testing_support::Pattern(9).writeFile(local, 50000);
  qx::Login there = login();
  for (const bool tells : {false, true}) {
    there.tellsUploads = tells;
    for (const bool connects : {false, true}) {
      ASSERT_TRUE(connects ? client.connect(there) : client.setLogin(there));
      ASSERT_TRUE(client.copy(testing_support::localName(local), "/pub/sub/up"));
      EXPECT_EQ(client.get()->m_Transfer.nTransferred, tells ? 50000U : 0U);
    }
  }
}

TEST_F(Wrapper, AnUploadThatTheServerBreaksIsAFailure) {
  testing_support::Pattern(9).writeFile(local, 50000);
  EXPECT_TRUE(client.upload(local, "/pub/sub/mine"));
  EXPECT_TRUE(server.matches("/pub/sub/mine", 9, 50000));
  const auto broken = client.upload(local, "/pub/full");
  EXPECT_FALSE(broken);
  EXPECT_NE(broken.report().text, "");
  EXPECT_FALSE(client.upload("local", "/pub/sub/other")) << "not a full path";
  EXPECT_FALSE(client.download("/pub/a.txt", "local"));
}

// Its size counted modulo 2^32, where 0 stood for a file without content, of which nobody asks what arrived.
TEST_F(Wrapper, ABrokenUploadOfFourGibibytesIsAFailureToo) {
  testing_support::Pattern(9).writeFile(local, 1);
  std::filesystem::resize_file(local, std::uintmax_t{1} << 32U);
  EXPECT_FALSE(client.upload(local, "/pub/full"));
}

TEST_F(Wrapper, AClientThatWasMovedFromFails) {
  qx::Client moved = std::move(client);
  EXPECT_TRUE(moved);
  EXPECT_FALSE(client);  // NOLINT(bugprone-use-after-move): that is what it is about
  EXPECT_EQ(client.get(), nullptr);
  client.use({});
  const auto listed = client.list("/pub");
  EXPECT_FALSE(listed);
  EXPECT_EQ(listed.report().text, "there is no client");
  EXPECT_FALSE(client.upload(local, "/pub/x"));
  EXPECT_TRUE(moved.fileExists("/pub/a.txt").value());
  moved = make();
  EXPECT_EQ(moduleCount(), 1U) << "the one before is freed";
  client = std::move(moved);
  EXPECT_EQ(moduleCount(), 1U);
  EXPECT_TRUE(client.setLogin(login()));
}

TEST_F(Wrapper, AnExceptionOfAPollLambdaCancelsAndComesOut) {
  client.use(polling([](const qx::Progress& progress) {
    if (progress.isKnown) throw Thrown{};
    return qx::Poll::goOn;
  }));
  EXPECT_THROW(static_cast<void>(client.download("/pub/large", local)), Thrown);
  client.use({});
  EXPECT_TRUE(client.fileExists("/pub/a.txt").value());
}

TEST_F(Wrapper, AnExceptionOnAWorkersThreadCancelsAndComesOut) {
  qx::Lambdas lambdas = polling([](const qx::Progress&) { return qx::Poll::goOn; });
  lambdas.line = [](const char* line) {
    if (std::strstr(line, "RETR") != nullptr) throw Thrown{};
  };
  client.use(std::move(lambdas));
  EXPECT_THROW(static_cast<void>(client.download("/pub/large", local)), Thrown);
  client.use({});
  EXPECT_TRUE(client.fileExists("/pub/a.txt").value());
}

TEST_F(Wrapper, AnExceptionWhereNothingCanBeCancelledComesOutInTheEnd) {
  qx::Lambdas lambdas;
  lambdas.entry = [](const QXDirEntry&) { throw Thrown{}; };
  client.use(std::move(lambdas));
  EXPECT_THROW(static_cast<void>(client.list("/pub")), Thrown);
}

TEST_F(Wrapper, TellsOfConnectionsAndTheProtocol) {
  int connected = 0;
  int disconnected = 0;
  std::string lines;
  qx::Lambdas lambdas;
  lambdas.connected = [&] { ++connected; };
  lambdas.disconnected = [&] { ++disconnected; };
  lambdas.line = [&](const char* line) { lines += std::string(line) + "\n"; };
  client.use(std::move(lambdas));
  ASSERT_TRUE(client.connect(login()));
  EXPECT_GT(connected, 0);
  EXPECT_NE(client.get()->m_bConnected, 0) << "the library's own part is done as well";
  EXPECT_TRUE(client.disconnect());
  EXPECT_GT(disconnected, 0);
  EXPECT_THAT(lines, HasSubstr("> PASS ****"));
}

TEST_F(Wrapper, ALambdaMayDestroyItsClient) {
  auto own = std::make_optional(make());
  ASSERT_TRUE(own->setLogin(login()));
  own->use(polling([&](const qx::Progress& progress) {
    if (progress.isKnown) own.reset();
    return qx::Poll::goOn;
  }));
  const auto done = own->download("/pub/large", local);
  EXPECT_FALSE(done);
  EXPECT_FALSE(own.has_value());
  EXPECT_EQ(moduleCount(), 1U);
}

}  // namespace
}  // namespace wrapper
