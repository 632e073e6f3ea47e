// SPDX-License-Identifier: MIT
// Content that comes or goes incompletely, or whose end the server does not confirm: never a success.
#include "tests/client/ContentOperation.h"

namespace {

// Transfers that break off, or that the server takes back at their end.
constexpr BadEnd kBadEnds[] = {
    {"ResetInTheMiddle", R"({"reset_after": 1})", 12030, 12030},
    {"ClosedInTheMiddle", R"({"close_after": 1})", 12030, 12031},
    {"ClosedInTheMiddleOfUnknownSize", R"({"close_after": 1, "opening": "150 Opening"})", 12030, 12031},
    {"ClosedInTheMiddleAndRefused", R"({"close_after": 1, "final": "451 Local error"})", 12003, 12003},
    {"RefusedAtTheEnd", R"({"final": "552 Disk full"})", 12003, 12003},
    {"AbortedAtTheEnd", R"({"final": "426 Aborted"})", 12030, 12030},
};

// Without SIZE nothing else than the server's word tells that an upload is whole.
constexpr const char* kNoSize = R"("features": ["mlst", "epsv", "eprt"], )";

class ContentBadEnd : public ContentTest,
                      public testing::WithParamInterface<std::tuple<ContentOperation, BadEnd>> {
 protected:
  const std::string target = localName(local);
  const ContentOperation operation = std::get<0>(GetParam());
  const BadEnd end = std::get<1>(GetParam());
  const std::string failedLine = operation.failedLine(target);

  [[nodiscard]] std::string script(const char* which) const {
    return std::string("{") + kNoSize + kContentTree + ", \"rules\": [{\"on\": \"" + operation.verb + "\", " +
           which + "\"do\": [{\"normal\": " + end.options + "}]}]}";
  }
};

TEST_P(ContentBadEnd, IsNoSuccess) {
  const fixture::ScriptedFtp server(script(""));
  loginAt(server);
  const bool writes = operation.verb == std::string("STOR");
  if (writes && end.name == std::string("ResetInTheMiddle")) {
    // An aborted connection of a connected client arms the retry counter each time: the host has the say.
    client.poll = [&](QXHostValue, QXHostValue, QXHostValue, QXBool*) -> QXBool {
      return server.ruleFired(0) > 4 ? 1 : 0;
    };
  }
  EXPECT_EQ(operation.run(client, {target, 1}), 0);
  EXPECT_EQ(server.ruleFired(0), client.poll ? 5 : 2);
  EXPECT_THAT(record, ShowsError(writes ? end.errorOfUpload : end.error));
  EXPECT_EQ(client.m_szMessage, failedLine);
  EXPECT_FALSE(server.exists("/b"));
  EXPECT_EQ(leftInTemporary(), Names{});
}

TEST_P(ContentBadEnd, IsMadeUpForByTheNextAttempt) {
  const fixture::ScriptedFtp server(script("\"nth\": 1, "));
  loginAt(server);
  EXPECT_EQ(operation.run(client, {target, 1}), 1);
  EXPECT_TRUE(operation.arrived(server, target));
  EXPECT_EQ(server.commandCount(operation.verb), 2);
  EXPECT_THAT(record, ShowsError(operation.verb == std::string("STOR") ? end.errorOfUpload : end.error))
      << "the failed attempt is reported";
  EXPECT_EQ(client.m_szMessage, failedLine);
}

INSTANTIATE_TEST_SUITE_P(Operations, ContentBadEnd,
                         testing::Combine(testing::ValuesIn(kContentOperations), testing::ValuesIn(kBadEnds)),
                         [](const auto& instance) {
                           return std::string(std::get<0>(instance.param).name) +
                                  std::get<1>(instance.param).name;
                         });

// Transfers whose final reply never comes.
class ContentLostEnd : public ContentOperationTest {
 protected:
  void SetUp() override { shortenTimeouts(); }
  [[nodiscard]] std::string losing(const char* features) const {
    return "{" + std::string(features) +
           script(rule("", R"({"normal": {"final": null, "opening": "150 Here"}})")).substr(1);
  }
  [[nodiscard]] bool writes() const { return operation.verb == std::string("STOR"); }
};

// A read and a copy failed although all was there.
TEST_P(ContentLostEnd, IsASuccessWhereAllBytesOfTheKnownSizeAreThere) {
  for (const char* features : {"", kNoSize}) {
    if (writes() && features == kNoSize) continue;
    const fixture::ScriptedFtp server(losing(features));
    loginAt(server);
    EXPECT_EQ(run(), 1) << features;
    EXPECT_TRUE(arrived(server)) << features;
    EXPECT_EQ(transfers(server), 1) << features;
    EXPECT_TRUE(IsBlank(record)) << features;
    std::filesystem::remove(local);
  }
}

INSTANTIATE_TEST_SUITE_P(Operations, ContentLostEnd, testing::ValuesIn(kContentOperations), nameOfOperation);

TEST_F(ContentTest, AWriteThatNobodyConfirmsIsAFailure) {
  const std::string lost = R"("rules": [{"on": "STOR", "do": [{"normal": {"final": null}}]})";
  for (const std::string& script : {std::string("{") + kNoSize + lost + "]}",
                                    "{" + lost + R"(, {"on": "SIZE", "do": [{"reply": "213 39999"}]}]})"}) {
    const fixture::ScriptedFtp server(script);
    loginAt(server);
    // Whatever the server does until then, no other reply is waited for that long.
    internet::Timeouts timeouts;
    timeouts.finalReply = std::chrono::milliseconds(300);
    internet::setTimeoutsForTesting(timeouts);
    record = {};
    EXPECT_EQ(content_operations::write(client, {"", 1}), 0);
    EXPECT_EQ(server.commandCount("STOR"), 2);
    EXPECT_THAT(record, ShowsError(12002));
  }
}

// The worker's own connection counts as the client's: its abortion arms even a retry count of 0.
TEST_F(ContentTest, AnAbortedWriteIsTriedAgainUntilItSucceeds) {
  const fixture::ScriptedFtp server(
      R"({"rules": [{"on": "STOR", "nth": [1, 2, 3], "do": [{"normal": {"reset_after": 1}}]}]})");
  loginAt(server);
  EXPECT_EQ(content_operations::write(client, {}), 1);
  EXPECT_TRUE(server.matches("/a", kWrittenSeed, kContentSize));
  EXPECT_EQ(server.commandCount("STOR"), 4);
  EXPECT_EQ(client.count("FTPReConnect 1 0"), 3u);
}

}  // namespace
