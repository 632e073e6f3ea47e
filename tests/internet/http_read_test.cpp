// SPDX-License-Identifier: MIT
// What comes back: heads, bodies in each framing, and everything that is no whole body.
#include "framework/internet/net/NameLookup.h"
#include "tests/internet/HttpTest.h"
#include "tests/support/Pattern.h"

namespace internet_tests {
namespace {

using fixture::ScriptedHttp;
using nlohmann::json;
using namespace nlohmann::literals;

class HttpRead : public HttpTest {};

TEST_F(HttpRead, TellsStatusAndRawHead) {
  const auto server =
      answering(R"({"interim": ["100 Continue"], "status": "404 Not Found", "headers": ["A: b"]})"_json);
  const HttpFetch fetch(session, server);
  EXPECT_EQ(fetch.status(), 0u);
  EXPECT_EQ(fetch.rawHeaders(), "");
  EXPECT_TRUE(fetch.request->SendRequest());
  EXPECT_EQ(fetch.status(), 404u);
  EXPECT_EQ(fetch.rawHeaders(), "HTTP/1.1 404 Not Found\r\nA: b\r\nContent-Length: 0\r\n\r\n");
  EXPECT_EQ(fetch.readToEnd(), "");
}

class HttpBodies : public HttpTest,
                   public testing::WithParamInterface<std::tuple<const char*, std::size_t>> {};

TEST_P(HttpBodies, ComeByteByByte) {
  const auto [framing, size] = GetParam();
  const json answer = {{"body", {{"size", size}, {"seed", 9}}}, {"framing", framing}};
  std::string expected(size, '\0');
  testing_support::Pattern(9).fill(0, expected.data(), size);
  EXPECT_TRUE(fetched(answer) == expected);
}

INSTANTIATE_TEST_SUITE_P(Sizes, HttpBodies,
                         testing::Combine(testing::Values("length", "chunked", "close"),
                                          testing::Values(0, 1, 4095, 4096, 4097, 1 << 20)),
                         [](const auto& instance) {
                           return std::get<0>(instance.param) + std::to_string(std::get<1>(instance.param));
                         });

TEST_F(HttpRead, FillsTheBufferUpToTheEnd) {
  const auto server = answering(
      R"({"body": {"text": "0123456789"}, "framing": "chunked", "chunk": 1, "pace": {"bytes": 3, "ms": 1}})"_json);
  const HttpFetch fetch(session, server);
  EXPECT_TRUE(fetch.request->SendRequest());
  char buffer[8];
  EXPECT_EQ(fetch.request->Read(buffer, 8), 8u);
  EXPECT_EQ(std::string(buffer, 8), "01234567");
  EXPECT_EQ(fetch.request->Read(buffer, 8), 2u);
  EXPECT_EQ(fetch.request->Read(buffer, 8), 0u);
  EXPECT_EQ(fetch.request->Read(nullptr, 0), 0u);
  EXPECT_EQ(thrownBy([&] { fetch.request->Read(nullptr, 1); }).error, 87u);
}

TEST_F(HttpRead, DoesNotWaitForTheConnectionsEndWhereItKnowsTheBodys) {
  for (const char* framing : {"length", "chunked"}) {
    EXPECT_EQ(fetched({{"body", {{"text", "abc"}}}, {"framing", framing}, {"end", "keep"}}), "abc");
  }
}

TEST_F(HttpRead, TheLengthIsWhatHasComeAndWasNotRead) {
  for (const char* framing : {"length", "chunked", "close"}) {
    const auto server = answering({{"body", {{"text", "0123456789"}}}, {"framing", framing}});
    const HttpFetch fetch(session, server);
    EXPECT_TRUE(fetch.request->SendRequest());
    const auto first = fetch.request->GetLength();
    EXPECT_GE(first, 1u) << framing;
    EXPECT_LE(first, 10u) << framing;
    char byte = 0;
    fetch.request->Read(&byte, 1);
    EXPECT_EQ(byte, '0');
    EXPECT_EQ(fetch.readToEnd(), "123456789");
    EXPECT_EQ(fetch.request->GetLength(), 0u);
  }
}

TEST_F(HttpRead, TheLengthWaitsForTheFirstByteAndNoOther) {
  for (const char* framing : {"length", "chunked"}) {
    const int firstByte = framing == std::string("chunked") ? 4 : 1;  // "2\r\n" and the byte
    const auto server = answering({{"body", {{"text", "ab"}}},
                                   {"framing", framing},
                                   {"chunk", 2},
                                   {"delay_ms", 10},
                                   {"stall_after", firstByte},
                                   {"gate", "rest"}});
    const HttpFetch fetch(session, server);
    EXPECT_TRUE(fetch.request->SendRequest());
    EXPECT_EQ(fetch.request->GetLength(), 1u) << framing;
    server.release("rest");
    EXPECT_EQ(fetch.readToEnd(), "ab");
  }
}

TEST_F(HttpRead, TheLengthOfAnEmptyBodyIsNone) {
  for (const char* framing : {"length", "chunked", "close"}) {
    const auto server = answering({{"framing", framing}});
    const HttpFetch fetch(session, server);
    EXPECT_TRUE(fetch.request->SendRequest());
    EXPECT_EQ(fetch.request->GetLength(), 0u) << framing;
  }
}

TEST_F(HttpRead, ABodyThatIsCutShortIsAFailure) {
  EXPECT_EQ(errorOfFetch(R"({"body": {"text": "abc"}, "announce": "4", "end": "close"})"_json), 12030u);
  EXPECT_EQ(errorOfFetch(R"({"body": {"size": 100000}, "cut_after": 99999})"_json), 12030u);
  EXPECT_EQ(errorOfFetch(R"({"body": {"text": "abc"}, "framing": "chunked", "cut_after": 4})"_json), 12030u);
  EXPECT_EQ(errorOfFetch(R"({"body": {"text": "abc"}, "framing": "chunked", "cut_after": 8})"_json), 12030u)
      << "all of the body, but not its last chunk";
  EXPECT_EQ(errorOfFetch(R"({"body": {"text": "abc"}, "framing": "close", "end": "reset"})"_json), 12031u);
  EXPECT_EQ(errorOfFetch(R"({"announce": "1", "end": "close"})"_json), 12030u);
}

TEST_F(HttpRead, AnUnreadableBodyIsAFailure) {
  const std::string head = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n";
  for (const char* body : {"x\r\n", "3\r\nabcd\r\n0\r\n\r\n", "fffffffffffffffff\r\n"}) {
    EXPECT_EQ(errorOfFetch({{"raw", head + body}}), 12152u) << body;
  }
}

TEST_F(HttpRead, WhatIsNoResponseIsAFailure) {
  EXPECT_EQ(errorOfFetch(R"({"raw": "", "end": "close"})"_json), 12030u);
  EXPECT_EQ(errorOfFetch(R"({"raw": "", "end": "reset"})"_json), 12031u);
  EXPECT_EQ(errorOfFetch(R"({"raw": "HTTP/1.1 200 OK\r\nA: b\r\n", "end": "close"})"_json), 12030u);
  EXPECT_EQ(errorOfFetch(R"({"raw": "220 FTP ready\r\n"})"_json), 12152u);
  EXPECT_EQ(
      errorOfFetch(R"({"raw": "HTTP/1.1 200 OK\r\nContent-Length: 1\r\nContent-Length: 2\r\n\r\n"})"_json),
      12152u);
}

TEST_F(HttpRead, AnEndlessHeadIsAFailure) {
  EXPECT_EQ(errorOfFetch(R"({"raw": "HTTP/1.1 200 OK\r\n", "endless": "A: b\r\n"})"_json), 12152u);
  EXPECT_EQ(errorOfFetch(R"({"raw": "HTTP/1.1 200 OK\r\n", "endless": "A"})"_json), 12152u);
  EXPECT_EQ(errorOfFetch(R"({"raw": "", "endless": "HTTP/1.1 100 Continue\r\n\r\n"})"_json), 12152u);
}

TEST_F(HttpRead, EveryWaitHasItsEnd) {
  shortenTimeouts();
  EXPECT_EQ(errorOfFetch(R"({"head_gate": "g"})"_json), 12002u);
  EXPECT_EQ(errorOfFetch(R"({"raw": "HTTP/1.1 200", "stall_after": 12, "gate": "g"})"_json), 12002u);
  const std::string drip = "HTTP/1.1 200 OK\r\nA: " + std::string(1'500, 'x') + "\r\n\r\n";
  EXPECT_EQ(errorOfFetch({{"raw", drip}, {"pace", {{"bytes", 1}, {"ms", 5}}}}), 12002u) << "all of the head";
  EXPECT_EQ(errorOfFetch(R"({"body": {"text": "abc"}, "stall_after": 2, "gate": "g"})"_json), 12002u);
  EXPECT_EQ(errorOfFetch(R"({"body": {"text": "abc"}, "framing": "close", "end": "keep"})"_json), 12002u);
  const fixture::Blackhole hanging(false);
  const HttpFetch fetch(session, hanging);
  EXPECT_EQ(thrownBy([&] { fetch.request->SendRequest(); }).error, 12002u);
}

TEST_F(HttpRead, ADripOfBytesKeepsTheBodyAlive) {
  internet::Timeouts timeouts;
  timeouts.data = std::chrono::milliseconds(2000);
  session.SetTimeouts(timeouts);
  // Longer than the limit between two bytes, byte by byte; chunk heads count as well.
  const json drip = {
      {"body", {{"size", 80}}}, {"framing", "chunked"}, {"chunk", 1}, {"pace", {{"bytes", 1}, {"ms", 5}}}};
  EXPECT_EQ(fetched(drip).size(), 80u);
}

TEST_F(HttpRead, AFailureEndsTheExchange) {
  const auto server = answering(R"({"body": {"text": "abc"}, "cut_after": 1})"_json);
  const HttpFetch fetch(session, server);
  EXPECT_TRUE(fetch.request->SendRequest());
  session.takeStatuses();
  EXPECT_EQ(thrownBy([&] { fetch.readToEnd(); }).error, 12030u);
  EXPECT_EQ(session.takeStatuses(), (std::vector<std::uint32_t>{50, 51}));
  EXPECT_EQ(thrownBy([&] { fetch.readToEnd(); }).error, 12019u);
  EXPECT_EQ(thrownBy([&] { fetch.request->GetLength(); }).error, 12019u);
  fetch.request->Close();
  EXPECT_EQ(session.takeStatuses(), (std::vector<std::uint32_t>{70}));
}

TEST_F(HttpRead, AConnectionThatIsNotMadeIsAFailure) {
  const fixture::RefusedPort refused;
  const HttpFetch toRefused(session, refused);
  const auto thrown = thrownBy([&] { toRefused.request->SendRequest(); });
  EXPECT_EQ(thrown.error, 12029u);
  EXPECT_EQ(thrown.text, "A connection with the server could not be established");
  internet::setResolverForTesting(
      [](const std::string&, std::uint16_t) { return std::vector<platform::SocketAddress>(); });
  const HttpFetch toNobody(session, "nobody.test", 80);
  EXPECT_EQ(thrownBy([&] { toNobody.request->SendRequest(); }).error, 12007u);
  internet::setResolverForTesting(nullptr);
}

}  // namespace
}  // namespace internet_tests
