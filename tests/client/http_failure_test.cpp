// SPDX-License-Identifier: MIT
// HTTPDownloadFile: what fails on the network is shown, what fails in the local file is the caller's.
#include <atomic>
#include <functional>

#include "Src/RunningOperations.h"
#include "framework/File.h"
#include "framework/platform/resolver.h"
#include "tests/client/HttpDownloadTest.h"
#include "tests/support/UnixDevices.h"

namespace {

using nlohmann::json;

class HttpFailure : public HttpDownloadTest {
 protected:
  HttpFailure() {
    internet::Timeouts timeouts;
    timeouts.reply = timeouts.data = std::chrono::milliseconds(2'000);
    internet::setTimeoutsForTesting(timeouts);
  }

  // Exactly one box, titled ERROR; returns its text.
  template <class Work>
  std::string shownBy(Work work) {
    const auto boxes = boxesOf([&] { EXPECT_EQ(work(), 0u); });
    EXPECT_EQ(boxes.size(), 1u);
    if (boxes.empty()) return {};
    EXPECT_EQ(boxes[0].caption, "ERROR");
    EXPECT_FALSE(boxes[0].owned);
    return boxes[0].text;
  }
  std::string shownFor(const json& answer) {
    const auto server = answering(answer);
    return shownBy([&] { return download(server); });
  }
};

constexpr const char* kTimedOut = "The operation timed out";
constexpr const char* kAborted = "The connection with the server was terminated abnormally";
constexpr const char* kReset = "The connection with the server was reset";
constexpr const char* kInvalid = "The server returned an invalid or unrecognized response";

TEST_F(HttpFailure, ARefusedConnectionShowsOneBox) {
  const fixture::RefusedPort refused;
  EXPECT_EQ(shownBy([&] { return download(refused); }),
            "A connection with the server could not be established");
  EXPECT_FALSE(exists());
  EXPECT_STREQ(client.m_szMessage, "");
  EXPECT_TRUE(IsBlank(record));
  EXPECT_TRUE(client.calls().empty()) << "no OnIPError";
}

TEST_F(HttpFailure, AnUnknownServerShowsOneBox) {
  internet::setResolverForTesting(
      [](const std::string&, std::uint16_t) { return std::vector<platform::SocketAddress>(); });
  EXPECT_EQ(shownBy([&] { return client.HTTPDownloadFile("no.test", "/", 0, local.c_str(), nullptr, 0, 0); }),
            "The server name or address could not be resolved");
  internet::setResolverForTesting(nullptr);
}

TEST_F(HttpFailure, ARefusedConnectionIsNotTriedAgain) {
  const fixture::RefusedPort refused;
  static std::atomic<int> lookUps;
  lookUps = 0;
  internet::setResolverForTesting([](const std::string&, std::uint16_t port) {
    ++lookUps;
    return platform::numericAddresses("127.0.0.1", port);
  });
  EXPECT_EQ(shownBy([&] {
              return client.HTTPDownloadFile("host.test", "/", refused.port(), local.c_str(), nullptr, 0, 0);
            }),
            "A connection with the server could not be established");
  internet::setResolverForTesting(nullptr);
  EXPECT_EQ(lookUps, 1);
}

TEST_F(HttpFailure, ANullOrEmptyServerShowsOneBox) {
  for (const char* server : {static_cast<const char*>(nullptr), ""}) {
    EXPECT_EQ(shownBy([&] { return client.HTTPDownloadFile(server, "/", 80, local.c_str(), nullptr, 0, 0); }),
              SystemText(platform::kErrorInvalidParameter));
  }
  EXPECT_FALSE(exists());
}

TEST_F(HttpFailure, ANameThatCannotBeSentFailsInSilence) {
  const fixture::ScriptedHttp server;
  EXPECT_TRUE(boxesOf([&] {
                EXPECT_EQ(download(server, "/a\r\nX: y"), 0u);
                EXPECT_EQ(client.HTTPDownloadFile("127.0.0.1\r\nX: y", "/", server.port(), local.c_str(),
                                                  nullptr, 0, 0),
                          0u);
              }).empty());
  EXPECT_EQ(server.connectionCount(), 0);
  EXPECT_FALSE(exists());
}

TEST_F(HttpFailure, BeforeTheBodyLeavesNoFile) {
  EXPECT_EQ(shownFor({{"raw", ""}, {"end", "close"}}), kAborted);
  EXPECT_EQ(shownFor({{"raw", ""}, {"end", "reset"}}), kReset);
  EXPECT_EQ(shownFor({{"raw", "garbage\n"}}), kInvalid);
  EXPECT_EQ(shownFor({{"raw", "HTTP/1.1 200 OK\r\nContent-Length: -1\r\n\r\n"}}), kInvalid);
  EXPECT_EQ(shownFor({{"head_gate", "never"}}), kTimedOut);
  EXPECT_FALSE(exists());
}

TEST_F(HttpFailure, InTheBodyLeavesThePartThatCame) {
  const json body = {{"size", 10000}, {"seed", 4}};
  const struct {
    json answer;
    const char* text;
    std::uintmax_t atLeast, atMost;  // a chunk that is broken off is lost
  } cases[] = {
      {{{"body", body}, {"cut_after", 9000}}, kAborted, 9000 - 4095, 9000},
      {{{"body", body}, {"framing", "chunked"}, {"cut_after", 9000}}, kAborted, 9000 - 4095, 9000},
      {{{"body", body}, {"cut_after", 9000}, {"stall_after", 8500}, {"gate", "never"}},
       kTimedOut,
       8500,
       8500},
  };
  for (const auto& [answer, text, atLeast, atMost] : cases) {
    EXPECT_EQ(shownFor(answer), text) << answer;
    const std::uintmax_t size = std::filesystem::file_size(local);
    EXPECT_GE(size, atLeast);
    EXPECT_LE(size, atMost);
    EXPECT_TRUE(testing_support::Pattern(4).matchesFile(local, size));
  }
}

TEST_F(HttpFailure, OfTheLengthIsShownAndStoresNothing) {
  const auto server = answering({{"announce", "5"}, {"end", "close"}});
  std::uint64_t length = 77;
  EXPECT_EQ(shownBy([&] {
              return client.HTTPDownloadFile("127.0.0.1", "/", server.port(), local.c_str(), &length, 0, 0);
            }),
            kAborted);
  EXPECT_EQ(length, 77u);
}

TEST_F(HttpFailure, OfTheLocalFileIsTheCallersAndEndsTheRequest) {
  const auto server = answering({{"body", {{"text", "abc"}}}});
  const std::string missing = folder.file("no") + "/such/folder";
  for (const char* file : {missing.c_str(), static_cast<const char*>(nullptr)}) {
    std::uint32_t error = 0;
    EXPECT_TRUE(boxesOf([&] {
                  try {
                    client.HTTPDownloadFile("127.0.0.1", "/", server.port(), file, nullptr, 0, 0);
                  } catch (CFileException* exception) {
                    error = exception->m_lOsError;
                    exception->Delete();
                  }
                }).empty());
    EXPECT_EQ(error, platform::kErrorPathNotFound);
  }
  server.waitFor(R"({"closed": 2})");
  EXPECT_EQ(download(server), 1u) << "the client is as good as before";
}

TEST_F(HttpFailure, AFullDiskIsTheCallersToo) {
  if (!testing_support::hasUnixDevices()) GTEST_SKIP() << "this system has no full disk at hand";
  const auto server = answering({{"body", {{"size", 10000}}}});
  std::uint32_t error = 0;
  EXPECT_TRUE(boxesOf([&] {
                try {
                  client.HTTPDownloadFile("127.0.0.1", "/", server.port(), "Z:/dev/full", nullptr, 0, 0);
                } catch (CFileException* exception) {
                  error = exception->m_lOsError;
                  exception->Delete();
                }
              }).empty());
  EXPECT_EQ(error, 112u);
  server.waitFor(R"({"closed": 1})");
}

TEST_F(HttpFailure, AStoppedCallerLeavesWithZero) {
  const auto server = answering({{"head_gate", "gate"}});
  std::uint32_t answer = 1;
  std::function<void()> call = [&] { answer = download(server); };
  RunningOperation outer(client);
  ASSERT_TRUE(outer.Start([](void* work) { (*static_cast<std::function<void()>*>(work))(); }, &call));
  server.waitAtGate("gate");
  outer.Kill();
  EXPECT_EQ(answer, 0u);
  server.waitFor(R"({"closed": 1})");
}

}  // namespace
