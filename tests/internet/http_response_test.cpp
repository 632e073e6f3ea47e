// SPDX-License-Identifier: MIT
// Responses as servers send them, and as they should not.
#include "framework/internet/http/HttpResponse.h"

#include <gtest/gtest.h>

#include "framework/internet/net/InternetLimits.h"

namespace internet {
namespace {

using namespace std::literals;

enum class Outcome { whole, more, cut, invalid };

// What comes of a response whose bytes arrive in pieces of `step`, and then, perhaps, the connection's end.
struct Reading {
  Reading(std::string_view wire, std::size_t step, bool ends = true) {
    for (std::size_t at = 0; at < wire.size(); at += step) {
      if (!response.feed(wire.substr(at, step))) {
        outcome = Outcome::invalid;
        return;
      }
      takeAll();
    }
    outcome = response.complete() ? Outcome::whole : Outcome::more;
    if (ends) outcome = response.endOfStream() ? Outcome::whole : Outcome::cut;
  }

  void takeAll() {
    char block[7];
    while (const std::size_t count = response.take(block, sizeof block)) body.append(block, count);
  }

  HttpResponse response;
  std::string body;
  Outcome outcome = Outcome::more;
};

// The same whichever way it is cut into pieces.
Reading reading(std::string_view wire, bool ends = true) {
  Reading all(wire, std::max<std::size_t>(wire.size(), 1), ends);
  for (const std::size_t step : {1u, 2u, 3u, 5u}) {
    const Reading other(wire, step, ends);
    EXPECT_EQ(other.outcome, all.outcome) << wire << " by " << step;
    EXPECT_EQ(other.body, all.outcome == Outcome::invalid ? other.body : all.body) << wire << " by " << step;
  }
  return all;
}

Outcome outcomeOf(std::string_view wire) { return reading(wire).outcome; }

std::string withHeaders(std::string_view headers, std::string_view body = "") {
  return "HTTP/1.1 200 OK\r\n" + std::string(headers) + "\r\n" + std::string(body);
}

TEST(HttpHead, TellsStatusAndRawLines) {
  const auto moved = reading("HTTP/1.1 302 Found\r\nLocation: /x\r\n  y\r\nA:b\r\n\r\nbody");
  EXPECT_EQ(moved.response.head().status, 302);
  EXPECT_EQ(moved.response.head().raw, "HTTP/1.1 302 Found\r\nLocation: /x\r\n  y\r\nA:b\r\n\r\n");
  EXPECT_EQ(moved.body, "body");
  EXPECT_EQ(moved.outcome, Outcome::whole);
}

TEST(HttpHead, MayBeWrittenCarelessly) {
  for (const char* wire :
       {"HTTP/1.0 404\n\n", "HTTP/1.1 404 \r\n\r\n", "\r\n\nHTTP/1.1 404 Not: Found\nx\n\n",
        "HTTP/1.7 404 N\r\nno colon\r\n:\r\n: x\r\n folded\r\n\r\n"}) {
    const auto response = reading(wire);
    EXPECT_EQ(response.outcome, Outcome::whole) << wire;
    EXPECT_EQ(response.response.head().status, 404) << wire;
    EXPECT_EQ(response.response.head().raw.find('\n'), response.response.head().raw.find('\r') + 1) << wire;
  }
}

TEST(HttpHead, BehindInterimResponsesIsTheOneThatCounts) {
  const auto response = reading(
      "HTTP/1.1 100 Continue\r\nLocation: no\r\nContent-Length: 9\r\n\r\nHTTP/1.1 103 Hints\r\n\r\n"
      "HTTP/1.1 200 OK\r\nContent-Length: 1\r\n\r\nx");
  EXPECT_EQ(response.response.head().raw, "HTTP/1.1 200 OK\r\nContent-Length: 1\r\n\r\n");
  EXPECT_EQ(response.body, "x");
  EXPECT_EQ(outcomeOf("HTTP/1.1 100 Continue\r\n\r\n"), Outcome::cut);
}

TEST(HttpHead, IsNothingElse) {
  for (const char* wire :
       {"garbage\n", "220 FTP ready\r\n", "HTTP/2 200 OK\r\n\r\n", "HTTP/2.0 200 OK\r\n\r\n",
        "HTTP/1. 200 O\r\n", "HTTP/1.1  200 OK\r\n", "HTTP/1.1 20\r\n\r\n", "HTTP/1.1 2000 OK\r\n",
        "HTTP/1.1 099 OK\r\n", "HTTP/1.1 -20 OK\r\n", "HTTP/1.1 abc OK\r\n", "http/1.1 200 OK\r\n",
        " HTTP/1.1 200 OK\r\n", "HTTP/1.1\t200 OK\r\n", "HTTP/1.1 101 Switching\r\n\r\n", "<html>\n",
        "\xff\xfe\n"}) {
    EXPECT_EQ(outcomeOf(wire), Outcome::invalid) << wire;
  }
  EXPECT_EQ(outcomeOf("HTTP/1.1 200 O\0K\r\n"sv), Outcome::invalid);
  EXPECT_EQ(outcomeOf(""), Outcome::cut);
  EXPECT_EQ(outcomeOf("HTTP/1.1 200 OK\r\nA: b\r\n"), Outcome::cut);
}

TEST(HttpHead, HasItsLimits) {
  const std::string line(kMaxHttpHeadLine - 3, 'x');
  EXPECT_EQ(Reading(withHeaders("A:" + line + "\r\n"), 4096).outcome, Outcome::whole);
  EXPECT_EQ(Reading(withHeaders("A:" + line + "xxx\r\n"), 4096).outcome, Outcome::invalid);
  EXPECT_EQ(Reading("HTTP/1.1 200 OK\r\nA:" + line + line, 4096).outcome, Outcome::invalid)
      << "without an end";
  std::string lines;
  while (lines.size() < kMaxHttpHead) lines += "A: b\r\n";
  EXPECT_EQ(Reading(withHeaders(lines), 4096).outcome, Outcome::invalid);
  EXPECT_EQ(Reading(std::string(kMaxHttpHead + 1, '\n'), 4096).outcome, Outcome::invalid);
  std::string interim;
  while (interim.size() < kMaxHttpHead) interim += "HTTP/1.1 100 Continue\r\n\r\n";
  EXPECT_EQ(Reading(interim, 4096).outcome, Outcome::invalid);
}

TEST(HttpBody, OfKnownLengthEndsThere) {
  for (const char* headers :
       {"Content-Length: 5\r\n", "content-LENGTH:5\r\n", "Content-Length:\t 5 \t\r\n",
        "Content-Length: 005\r\n", "Content-Length: 5, 5\r\n", "Content-Length: 5\r\nContent-Length: 5\r\n",
        "Content-Length:\r\n 5\r\n", "Transfer-Encoding: identity\r\nContent-Length: 5\r\n"}) {
    const auto response = reading(withHeaders(headers, "helloHTTP/1.1 200 OK"), false);
    EXPECT_EQ(response.outcome, Outcome::whole) << headers;
    EXPECT_EQ(response.body, "hello") << headers;
    EXPECT_EQ(outcomeOf(withHeaders(headers, "hell")), Outcome::cut) << headers;
  }
  EXPECT_EQ(reading(withHeaders("Content-Length: 0\r\n"), false).outcome, Outcome::whole);
  EXPECT_EQ(outcomeOf(withHeaders("Content-Length: 18446744073709551615\r\n", "x")), Outcome::cut);
}

TEST(HttpBody, OfContradictoryLengthIsNone) {
  for (const char* headers :
       {"Content-Length: 5\r\nContent-Length: 6\r\n", "Content-Length: 5, 6\r\n", "Content-Length: -5\r\n",
        "Content-Length: +5\r\n", "Content-Length: 5x\r\n", "Content-Length: 0x5\r\n", "Content-Length:\r\n",
        "Content-Length: 5,\r\n", "Content-Length: 5 5\r\n", "Content-Length: 18446744073709551616\r\n",
        "Content-Length: 99999999999999999999999\r\n", "Transfer-Encoding: gzip\r\n",
        "Transfer-Encoding: gzip, chunked\r\n",
        "Transfer-Encoding: chunked\r\nTransfer-Encoding: chunked\r\n", "Transfer-Encoding:\r\n"}) {
    EXPECT_EQ(outcomeOf(withHeaders(headers, "hello")), Outcome::invalid) << headers;
  }
}

TEST(HttpBody, WithoutALengthEndsWithTheConnection) {
  EXPECT_EQ(reading(withHeaders("", "hello"), false).outcome, Outcome::more);
  const auto response = reading(withHeaders("X-Content-Length: 3\r\nContent-Length : 3\r\n", "hello"));
  EXPECT_EQ(response.outcome, Outcome::whole);
  EXPECT_EQ(response.body, "hello");
}

TEST(HttpBody, IsThereOnlyWhereTheStatusAllowsIt) {
  EXPECT_EQ(reading("HTTP/1.1 204 No Content\r\nContent-Length: 5\r\n\r\n", false).outcome, Outcome::whole);
  EXPECT_EQ(reading("HTTP/1.1 304 Not Modified\r\nTransfer-Encoding: chunked\r\n\r\n", false).outcome,
            Outcome::whole);
}

std::string chunked(std::string_view body) {
  return withHeaders("Content-Length: 1\r\nTransfer-Encoding: Chunked\r\n", body);
}

TEST(HttpChunks, AreJoined) {
  for (const char* body :
       {"5\r\nhello\r\n0\r\n\r\n", "2\r\nhe\r\n3;x=\"y\"\r\nllo\r\n000\r\nTrailer: x\r\n\r\n",
        "5\nhello\n0\n\n", "0005 \t;x\r\nhello\r\n0 \r\n\r\nmore",
        "1\r\nh\r\n1\r\ne\r\n1\r\nl\r\n1\r\nl\r\n1\r\no\r\n0\r\n\r\n"}) {
    const auto response = reading(chunked(body), false);
    EXPECT_EQ(response.outcome, Outcome::whole) << body;
    EXPECT_EQ(response.body, "hello") << body;
  }
  const auto empty = reading(chunked("0\r\n\r\n"), false);
  EXPECT_EQ(empty.outcome, Outcome::whole);
  EXPECT_EQ(empty.body, "");
  const std::string big(0xABc, 'b');
  EXPECT_EQ(Reading(chunked("aBC\r\n" + big + "\r\n0\r\n\r\n"), 100).body, big);
}

TEST(HttpChunks, ThatBreakOffAreCutShort) {
  constexpr std::string_view kWhole = "2\r\nhe\r\n3\r\nllo\r\n0\r\nT: x\r\n\r\n";
  for (std::size_t size = 0; size < kWhole.size(); ++size) {
    EXPECT_EQ(outcomeOf(chunked(kWhole.substr(0, size))), Outcome::cut) << size;
  }
}

TEST(HttpChunks, OfBadSizesAreNone) {
  for (const char* body : {"x\r\n", "\r\n", "-1\r\n", "+1\r\n", " 1\r\nh", "0x1\r\nh", "1x\r\nh", "1 1\r\nh",
                           "g\r\n", ";x\r\n", "10000000000000000\r\n", "ffffffffffffffffffffffff\r\n",
                           "2\r\nhello\r\n0\r\n\r\n", "1\r\nh 0\r\n\r\n"}) {
    EXPECT_EQ(outcomeOf(chunked(body)), Outcome::invalid) << body;
  }
  EXPECT_EQ(outcomeOf(chunked("ffffffffffffffff\r\nx")), Outcome::cut);
}

TEST(HttpChunks, HaveTheirLimits) {
  const std::string extension(kMaxHttpChunkLine, 'x');
  EXPECT_EQ(Reading(chunked("1;" + extension), 4096).outcome, Outcome::invalid);
  EXPECT_EQ(Reading(chunked("1\r\nx" + extension + "x"), 4096).outcome, Outcome::invalid);
  std::string trailers;
  while (trailers.size() < 2 * kMaxHttpHead) trailers += "A: b\r\n";
  EXPECT_EQ(Reading(chunked("0\r\n" + trailers + "\r\n"), 4096).outcome, Outcome::invalid);
}

TEST(HttpResponse, TellsWhatHasComeAndWasNotTaken) {
  HttpResponse response;
  EXPECT_TRUE(response.feed(chunked("3\r\nabc\r\n2")));
  EXPECT_EQ(response.available(), 3u);
  char taken[8] = {};
  EXPECT_EQ(response.take(taken, 2), 2u);
  EXPECT_EQ(response.available(), 1u);
  EXPECT_TRUE(response.feed("\r\nde\r\n"));
  EXPECT_EQ(response.available(), 3u);
  EXPECT_EQ(response.take(taken, sizeof taken), 3u);
  EXPECT_EQ(taken, "cde"s);
  EXPECT_FALSE(response.complete());
}

}  // namespace
}  // namespace internet
