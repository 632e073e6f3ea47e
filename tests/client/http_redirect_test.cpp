// SPDX-License-Identifier: MIT
// HTTPDownloadFile: the one redirect that it follows.
#include "tests/client/HttpDownloadTest.h"

namespace {

using nlohmann::json;
using Requests = std::vector<std::string>;

class HttpRedirect : public HttpDownloadTest {
 protected:
  // Answers first with these header lines, then with a page.
  static fixture::ScriptedHttp moving(const json& headers, const char* status = "302 Found",
                                      const json& next = {{"body", {{"text", "page"}}}}) {
    return fixture::ScriptedHttp(json{{"answers", {{{"status", status}, {"headers", headers}}, next}}});
  }
  static json to(const std::string& address) { return {"Location: " + address}; }
};

TEST_F(HttpRedirect, IsAskedForWithoutTheAgentAndWithTheAcceptedTypes) {
  const auto server = moving(to("http://127.0.0.1:{port}/new place?x"));
  EXPECT_EQ(download(server, "/old"), 1u);
  EXPECT_EQ(content(), "page");
  const Requests expected = {
      "GET /old HTTP/1.1\r\n" + hostLine(server) + kAcceptLine +
          "User-Agent: Kaltor WEB/1.0\r\nConnection: close\r\n\r\n",
      "GET /new%20place?x HTTP/1.1\r\n" + hostLine(server) + kAcceptLine + "Connection: close\r\n\r\n"};
  EXPECT_EQ(server.requests(), expected);
  EXPECT_EQ(server.connectionCount(), 2);
  server.waitFor(R"({"closed": 2})");
}

TEST_F(HttpRedirect, IsFollowedForThreeStatuses) {
  for (const char* status : {"301 Moved Permanently", "302 Found", "303 See Other"}) {
    const auto server = moving(to("http://127.0.0.1:{port}/b"), status);
    EXPECT_EQ(download(server), 1u) << status;
    EXPECT_EQ(content(), "page");
    EXPECT_EQ(server.requests().size(), 2u);
  }
}

TEST_F(HttpRedirect, LeadsToAnotherServerAlsoWithoutEncryption) {
  const auto other = answering({{"body", {{"text", "other"}}}});
  for (const char* scheme : {"http", "https", "HTTPS", "ftp"}) {
    const auto server = moving(to(scheme + ("://127.0.0.1:" + std::to_string(other.port()))));
    EXPECT_EQ(download(server), 1u) << scheme;
    EXPECT_EQ(content(), "other");
    EXPECT_EQ(server.requests().size(), 1u);
    EXPECT_TRUE(other.requests().back().starts_with("GET / HTTP/1.1\r\n" + hostLine(other)));
  }
}

TEST_F(HttpRedirect, GoesForTheLengthAsWell) {
  const auto server = moving(to("http://127.0.0.1:{port}/b"));
  std::uint64_t length = 0;
  EXPECT_EQ(client.HTTPDownloadFile("127.0.0.1", "/a", server.port(), local.c_str(), &length, 0, 0), 1u);
  EXPECT_GE(length, 1u);
  EXPECT_LE(length, 4u);
  EXPECT_FALSE(exists());
}

TEST_F(HttpRedirect, IsFollowedOnce) {
  const auto server = moving(to("http://127.0.0.1:{port}/b"), "302 Found",
                             {{"status", "302 Found"}, {"headers", to("http://127.0.0.1:{port}/c")}});
  EXPECT_TRUE(boxesOf([&] { EXPECT_EQ(download(server), 0u); }).empty());
  EXPECT_EQ(server.requests().size(), 2u);
  EXPECT_FALSE(exists());
}

TEST_F(HttpRedirect, FailsInSilenceWhereItsTargetHasNoPage) {
  for (const char* status : {"401 Unauthorized", "404 Not Found", "204 No Content", "500 Error"}) {
    const auto server = moving(to("http://127.0.0.1:{port}/b"), "302 Found", {{"status", status}});
    EXPECT_TRUE(boxesOf([&] { EXPECT_EQ(download(server), 0u); }).empty()) << status;
    EXPECT_EQ(server.requests().size(), 2u);
    EXPECT_FALSE(exists());
  }
}

TEST_F(HttpRedirect, WithoutAnAddressFailsInSilence) {
  const std::string address = "http://127.0.0.1:{port}/b";
  for (const json& headers :
       {json::array(), json{"location: " + address}, json{"LOCATION: " + address},
        json{"Location:" + address}, json{"Location: /b"}, json{"Location: "}, json{"Location: gopher://h/"},
        json{"Location: http://"}, json{"Content-Location: /elsewhere", "Location: " + address}}) {
    const auto server = moving(headers);
    EXPECT_TRUE(boxesOf([&] { EXPECT_EQ(download(server), 0u) << headers; }).empty()) << headers;
    EXPECT_EQ(server.requests().size(), 1u) << headers;
    EXPECT_FALSE(exists());
  }
}

TEST_F(HttpRedirect, IsTheFirstLocationOfTheHead) {
  const std::string address = "http://127.0.0.1:{port}/";
  for (const json& headers :
       {json{"Content-Location: " + address + "first", "Location: " + address + "second"},
        json{"Location: " + address + "first", "Location: " + address + "second"},
        json{"X: Location: " + address + "first"}}) {
    const auto server = moving(headers);
    EXPECT_EQ(download(server), 1u) << headers;
    EXPECT_TRUE(server.requests().at(1).starts_with("GET /first HTTP")) << headers;
  }
}

TEST_F(HttpRedirect, BlanksAtTheEndsOfItsAddressDoNoHarm) {
  const auto server = moving(json{"Location:   http://127.0.0.1:{port}/b \t"});
  EXPECT_EQ(download(server), 1u);
  EXPECT_TRUE(server.requests().at(1).starts_with("GET /b HTTP"));
}

TEST_F(HttpRedirect, WithControlBytesIsNotSent) {
  for (const std::string object : {"b\tc", "b\rX: y", "b\x7f"}) {
    const auto server = moving(to("http://127.0.0.1:{port}/" + object));
    EXPECT_TRUE(boxesOf([&] { EXPECT_EQ(download(server), 0u); }).empty());
    EXPECT_EQ(server.requests().size(), 1u);
  }
  const auto server = moving(to("http://127.0.0.1\rX:{port}/b"));
  EXPECT_TRUE(boxesOf([&] { EXPECT_EQ(download(server), 0u); }).empty());
}

TEST_F(HttpRedirect, ThatFailsOnItsWayShowsABox) {
  const fixture::RefusedPort refused;
  const auto server = moving(to("http://127.0.0.1:" + std::to_string(refused.port()) + "/b"));
  const auto boxes = boxesOf([&] { EXPECT_EQ(download(server), 0u); });
  ASSERT_EQ(boxes.size(), 1u);
  EXPECT_EQ(boxes[0].caption, "ERROR");
  EXPECT_FALSE(exists());
}

}  // namespace
