// SPDX-License-Identifier: MIT
// What hosts of qx::Client get when something fails, is thrown, moved or destroyed.
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <utility>

#include "tests/dll/WrapperTest.h"
#include "tests/support/Pattern.h"

namespace wrapper {
namespace {

using testing::HasSubstr;

// upload() asked for the size behind the copy, and told of that alone.
TEST_F(Wrapper, AnUploadTellsWhatItsCopyReported) {
  server.reconfigure(R"({"rules": [{"on": "PASS", "first": 1, "do": ["close"]},
                                   {"on": "STOR", "do": [{"reply": "553 Not here"}]}]})");
  std::ofstream(local) << "content";
  client.setRetries(1);
  const auto refused = client.upload(local, "/pub/new");
  EXPECT_FALSE(refused);
  EXPECT_GE(refused.report().number, 12000U) << "of the attempt that was broken off";
}

// "There are no more files" was the size's failure, and told as the upload's.
TEST_F(Wrapper, AnUploadThatHasNotArrivedSaysSo) {
  server.reconfigure(R"({"rules": [{"on": "STOR", "do": [{"reply": "553 Not here"}]}]})");
  std::ofstream(local) << "content";
  const auto refused = client.upload(local, "/pub/new");
  EXPECT_FALSE(refused);
  EXPECT_EQ(refused.report().text, "the server has not got the whole file");
}

// A file that somebody writes to, such as a log, was never sent as a whole.
TEST_F(Wrapper, AnUploadOfAFileThatGrowsArrives) {
  server.reconfigure(R"({"rules": [{"on": "STOR", "do": [{"gate": "grown"}, "normal"]}]})");
  constexpr std::uint64_t kSize = 3'000'000;
  testing_support::Pattern(9).writeFile(local, kSize);
  bool hasGrown = false;
  client.use(polling([&](const qx::Progress&) {
    if (!std::exchange(hasGrown, hasGrown || server.commandCount("STOR") > 0) && hasGrown) {
      std::ofstream(local, std::ios::binary | std::ios::app) << "more";
      server.release("grown");
    }
    return qx::Poll::goOn;
  }));
  const auto sent = client.upload(local, "/pub/log");
  EXPECT_TRUE(sent) << sent.report().text;
  EXPECT_EQ(client.size("/pub/log").value(), kSize + 4);
}

// Where the library keeps no record its failures had no text.
TEST_F(Wrapper, EveryFailureHasAText) {
  EXPECT_NE(client.size("").report().text, "");
  EXPECT_NE(client.write("/pub/mine", {}).report().text, "");
  EXPECT_NE(client.list("/pub\n").report().text, "");
  EXPECT_NE(client.upload("local", "/pub/x").report().text, "");
  const fixture::ScriptedHttp web(R"({"answers": [{"status": "404 No"}]})");
  EXPECT_NE(client.fetch({.server = web.host(), .port = web.port()}, local).report().text, "");
  EXPECT_NE(none.rename("/pub/a.txt", "/pub/b").report().text, "");
  client.use(polling([](const qx::Progress&) { return qx::Poll::cancel; }));
  EXPECT_NE(client.remove("/pub/a.txt").report().text, "");
}

TEST_F(Wrapper, AMissingValueIsThrownWithTheText) {
  try {
    static_cast<void>(client.read("/pub/none").value());
    FAIL() << "there is none";
  } catch (const qx::NoValue& thrown) {
    EXPECT_STREQ(thrown.what(), client.read("/pub/none").report().text.c_str());
  }
}

// They stayed with the client that they were moved from.
TEST_F(Wrapper, RetriesAndLambdasMoveAlong) {
  server.reconfigure(R"({"rules": [{"on": "RETR", "first": 1, "do": [{"reply": "451 Not now"}]}]})");
  int errors = 0;
  qx::Lambdas lambdas;
  lambdas.error = [&](std::uint32_t, const char*) { ++errors; };
  client.use(std::move(lambdas));
  client.setRetries(1);
  qx::Client other = make();
  other = std::move(client);
  EXPECT_TRUE(other.read("/pub/a.txt"));
  EXPECT_EQ(errors, 1);
  client = std::move(other);
}

TEST_F(Wrapper, SurvivesAMoveToItself) {
  qx::Client& same = client;
  client = std::move(same);
  EXPECT_TRUE(client.fileExists("/pub/a.txt").value());
}

TEST_F(Wrapper, ALambdaMayMoveItsClient) {
  qx::Client other = make();
  client.use(polling([&](const qx::Progress& progress) {
    if (progress.isKnown && client) {
      other = std::move(client);
      server.release("half");
    }
    return qx::Poll::goOn;
  }));
  EXPECT_TRUE(client.download("/pub/large", local));
  EXPECT_FALSE(client);
  EXPECT_TRUE(other.fileExists("/pub/a.txt").value());
  other = std::move(none);
}

TEST_F(Wrapper, ALambdaOnAWorkersThreadMayDestroyItsClient) {
  auto own = std::make_optional(make());
  ASSERT_TRUE(own->setLogin(login()));
  qx::Lambdas lambdas;
  lambdas.line = [&](const char* line) {
    if (std::strstr(line, "RETR") != nullptr) own.reset();
  };
  own->use(std::move(lambdas));
  const auto read = own->read("/pub/a.txt");
  EXPECT_FALSE(read);
  EXPECT_EQ(read.report().text, "the client was destroyed");
  EXPECT_EQ(moduleCount(), 1U);
}

// Nothing was cancelled without a lambda for OnPoll.
TEST_F(Wrapper, AnExceptionOfAnyLambdaCancels) {
  qx::Lambdas lambdas;
  lambdas.line = [](const char* line) {
    if (std::strstr(line, "RETR") != nullptr) throw Thrown{};
  };
  client.use(std::move(lambdas));
  EXPECT_THROW(static_cast<void>(client.download("/pub/large", local)), Thrown) << "which stalls half-way";
}

// It came out of the operation behind it.
TEST_F(Wrapper, AnExceptionBetweenOperationsIsLost) {
  qx::Lambdas lambdas;
  lambdas.entry = [](const QXDirEntry&) { throw Thrown{}; };
  client.use(std::move(lambdas));
  client.get()->OnNotify(0);
  EXPECT_TRUE(client.fileExists("/pub/a.txt").value());
}

TEST_F(Wrapper, AnExceptionWhileTheClientEndsIsLost) {
  auto own = std::make_optional(make());
  ASSERT_TRUE(own->connect(login()));
  qx::Lambdas lambdas;
  lambdas.disconnected = [] { throw Thrown{}; };
  own->use(std::move(lambdas));
  own.reset();
  EXPECT_EQ(moduleCount(), 1U);
}

TEST_F(Wrapper, KeepAliveReturnsWhenTheServerCloses) {
  ASSERT_TRUE(client.connect(login()));
  server.disconnect();
  EXPECT_TRUE(client.keepAlive());
  EXPECT_EQ(client.get()->m_bConnected, 0);
}

class WrapperFetch : public Wrapper {
 protected:
  qx::WebFile page(const fixture::ScriptedHttp& web) const {
    return {.server = web.host(), .object = "/page", .port = web.port()};
  }
  std::string content() const {
    std::ifstream file(local, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
};

TEST_F(WrapperFetch, GetsAFile) {
  const fixture::ScriptedHttp web(R"({"answers": [{"body": {"text": "hello"}}]})");
  std::ofstream(local) << "what was there before";
  EXPECT_TRUE(client.fetch(page(web), local));
  EXPECT_EQ(content(), "hello");
}

TEST_F(WrapperFetch, LeavesTheFileAloneWhenThereIsNoAnswer) {
  const fixture::ScriptedHttp web(R"({"answers": [{"status": "404 No"}]})");
  EXPECT_FALSE(client.fetch(page(web), local));
  EXPECT_FALSE(std::filesystem::exists(local));
  std::ofstream(local) << "mine";
  EXPECT_FALSE(client.fetch(page(web), local));
  EXPECT_EQ(content(), "mine");
}

// The library throws a class of its own there.
TEST_F(WrapperFetch, ToNoFolderIsAFailure) {
  const fixture::ScriptedHttp web(R"({"answers": [{"body": {"text": "hello"}}]})");
  const auto fetched = client.fetch(page(web), scratch.file("none/page"));
  EXPECT_FALSE(fetched);
  EXPECT_EQ(fetched.report().text, "the local file cannot be written");
  EXPECT_EQ(web.connectionCount(), 0);
}

TEST_F(WrapperFetch, IsCancelledByALambda) {
  const fixture::ScriptedHttp web(R"({"answers": [{"head_gate": "never"}]})");
  client.use(polling([](const qx::Progress& progress) {
    EXPECT_FALSE(progress.isKnown);
    return qx::Poll::cancel;
  }));
  const auto fetched = client.fetch(page(web), local);
  EXPECT_FALSE(fetched);
  EXPECT_TRUE(fetched.report().isCancelled);
}

}  // namespace
}  // namespace wrapper
