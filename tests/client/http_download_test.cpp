// SPDX-License-Identifier: MIT
// HTTPDownloadFile: what it asks for, what it brings, and how it is cancelled.
#include <chrono>
#include <nlohmann/json.hpp>

#include "support/Messages.h"
#include "tests/client/HttpDownloadTest.h"
#include "tests/client/PlainClient.h"
#include "tests/support/Pattern.h"
#include "tests/unit/TestQueue.h"

namespace {

using namespace nlohmann::literals;

class HttpDownload : public HttpDownloadTest {};

TEST_F(HttpDownload, AsksAsAKaltorBrowser) {
  const fixture::ScriptedHttp server;
  EXPECT_EQ(download(server, "/dir/a b.txt?x=1"), 1u);
  EXPECT_EQ(server.requests(),
            std::vector<std::string>{"GET /dir/a%20b.txt?x=1 HTTP/1.1\r\n" + hostLine(server) + kAcceptLine +
                                     "User-Agent: Kaltor WEB/1.0\r\nConnection: close\r\n\r\n"});
  server.waitFor(R"({"closed": 1})");
}

class HttpDownloadSizes : public HttpDownloadTest,
                          public testing::WithParamInterface<std::tuple<std::uint64_t, const char*>> {};

TEST_P(HttpDownloadSizes, BringsEveryByteInChunksOf4096) {
  const auto [size, framing] = GetParam();
  const auto server = answering({{"body", {{"size", size}, {"seed", 5}}}, {"framing", framing}});
  write("what was there before, and longer than one byte");
  std::uint64_t polls = 0;
  client.poll = [&](auto... given) -> QXBool {
    expectDownloads(given...);
    ++polls;
    return 0;
  };
  EXPECT_EQ(download(server), 1u);
  EXPECT_TRUE(testing_support::Pattern(5).matchesFile(local, size));
  EXPECT_GE(polls, (size + 4095) / 4096) << "more where the bytes came slowly";
}

INSTANTIATE_TEST_SUITE_P(Sizes, HttpDownloadSizes,
                         testing::Combine(testing::Values(0u, 1u, 4095u, 4096u, 4097u, 1u << 20),
                                          testing::Values("length", "chunked", "close")),
                         [](const auto& instance) {
                           return std::get<1>(instance.param) + std::to_string(std::get<0>(instance.param));
                         });

// Brackets were refused in a name, and an address of IPv6 was sent to without them alone.
TEST_F(HttpDownload, ReachesAnAddressOfIpv6WithAndWithoutBrackets) {
  for (const char* host : {"[::1]", "::1"}) {
    const fixture::ScriptedHttp server(R"({"host": "::1", "answers": [{"body": {"text": "abc"}}]})"_json);
    EXPECT_EQ(client.HTTPDownloadFile(host, "/a", server.port(), local.c_str(), nullptr, 0, 0), 1u) << host;
    EXPECT_EQ(content(), "abc");
    EXPECT_NE(server.requests().at(0).find("\r\nHost: [::1]:" + std::to_string(server.port()) + "\r\n"),
              std::string::npos);
  }
}

TEST_F(HttpDownload, WritesNeitherMessagesNorReportsAndLeavesTheClientAlone) {
  const auto server = answering(R"({"body": {"text": "abc"}})"_json);
  EXPECT_EQ(download(server), 1u);
  EXPECT_EQ(content(), "abc");
  EXPECT_STREQ(client.m_szMessage, "");
  EXPECT_TRUE(IsBlank(record));
  EXPECT_TRUE(client.calls().empty()) << "its session is none of the client's";
  EXPECT_EQ(client.m_bConnected, 0);
}

TEST_F(HttpDownload, WorksOnAClientThatIsNotInitialised) {
  const auto server = answering(R"({"body": {"text": "abc"}})"_json);
  client.m_bInitialized = 0;
  EXPECT_EQ(download(server), 1u);
  client.m_bInitialized = 1;
  EXPECT_EQ(content(), "abc");
}

TEST_F(HttpDownload, StoresTheLengthAloneWhenItIsAskedFor) {
  for (const char* framing : {"length", "chunked", "close"}) {
    const auto server =
        answering({{"body", {{"text", "0123456789"}}}, {"framing", framing}, {"end", "close"}});
    write("untouched");
    std::uint64_t length = 77;
    EXPECT_EQ(
        client.HTTPDownloadFile(server.host().c_str(), "/a", server.port(), local.c_str(), &length, 0, 0),
        1u);
    EXPECT_GE(length, 1u) << framing;
    EXPECT_LE(length, 10u) << framing;
    EXPECT_EQ(content(), "untouched");
    EXPECT_EQ(client.HTTPDownloadFile(server.host().c_str(), "/a", server.port(), nullptr, &length, 0, 0),
              1u);
  }
}

TEST_F(HttpDownload, TheLengthIsWhatIsThereNotTheWholeBody) {
  const auto server =
      answering(R"({"body": {"size": 1000}, "delay_ms": 1, "stall_after": 600, "gate": "g"})"_json);
  std::uint64_t length = 0;
  EXPECT_EQ(client.HTTPDownloadFile(server.host().c_str(), "/a", server.port(), nullptr, &length, 0, 0), 1u);
  EXPECT_EQ(length, 600u);
}

TEST_F(HttpDownload, TheLengthOfAnEmptyBodyIsZero) {
  for (const char* framing : {"length", "chunked", "close"}) {
    const auto server = answering({{"framing", framing}});
    std::uint64_t length = 77;
    EXPECT_EQ(client.HTTPDownloadFile(server.host().c_str(), "/a", server.port(), nullptr, &length, 0, 0),
              1u);
    EXPECT_EQ(length, 0u) << framing;
  }
}

TEST_F(HttpDownload, AnyOtherStatusFailsInSilence) {
  for (const char* status :
       {"401 Unauthorized", "404 Not Found", "201 Created", "204 No Content", "206 Partial", "300 Choices",
        "304 Not Modified", "307 Temporary", "308 Permanent", "500 Error"}) {
    const auto server = answering({{"status", status},
                                   {"headers", {"Location: http://127.0.0.1:{port}/b"}},
                                   {"body", {{"text", "page"}}}});
    std::uint64_t length = 77;
    EXPECT_TRUE(boxesOf([&] {
                  EXPECT_EQ(download(server), 0u) << status;
                  EXPECT_EQ(client.HTTPDownloadFile("127.0.0.1", "/a", server.port(), nullptr, &length, 0, 0),
                            0u);
                }).empty())
        << status;
    EXPECT_FALSE(exists()) << status;
    EXPECT_EQ(length, 77u);
    EXPECT_EQ(server.connectionCount(), 2) << "one for each call";
  }
}

TEST_F(HttpDownload, AMessageMayUseTheClientAgain) {
  const auto server = answering(R"({"body": {"size": 5000, "seed": 3}})"_json);
  const std::string other = folder.file("other");
  TestQueue queue([&](unsigned) {
    EXPECT_EQ(client.HTTPDownloadFile("127.0.0.1", "/b", server.port(), other.c_str(), nullptr, 0, 0), 1u);
  });
  queue.post(1);
  EXPECT_EQ(download(server), 1u);
  EXPECT_TRUE(testing_support::Pattern(3).matchesFile(local, 5000));
  EXPECT_TRUE(testing_support::Pattern(3).matchesFile(other, 5000));
}

TEST_F(HttpDownload, AMessageMayFreeTheClient) {
  const auto server = answering(R"({"body": {"size": 9000}})"_json);
  auto own = std::make_unique<RecordingClient>();
  TestQueue queue([&](unsigned) { own.reset(); });
  queue.post(1);
  EXPECT_EQ(own->HTTPDownloadFile("127.0.0.1", "/a", server.port(), local.c_str(), nullptr, 0, 0), 0u);
  EXPECT_EQ(own, nullptr);
  EXPECT_LE(content().size(), 4096u);
  server.waitFor(R"({"closed": 1})");
}

TEST_F(HttpDownload, APollThatCancelsMayFreeTheClient) {
  const auto server = answering(R"({"body": {"size": 9000}})"_json);
  auto own = std::make_unique<RecordingClient>();
  const auto poll = [&](auto...) -> QXBool {
    own.reset();
    return 1;
  };
  own->poll = poll;
  EXPECT_EQ(own->HTTPDownloadFile("127.0.0.1", "/a", server.port(), local.c_str(), nullptr, 0, 0), 0u);
  EXPECT_FALSE(exists());
}

TEST_F(HttpDownload, NamesAreCutAt255Characters) {
  const fixture::ScriptedHttp server;
  for (const std::size_t length : {255u, 256u, 600u}) {
    EXPECT_EQ(download(server, "/" + std::string(length - 1, 'o')), 1u);
    const std::string line = server.requests().back();
    EXPECT_EQ(line.substr(0, line.find('\r')), "GET /" + std::string(254, 'o') + " HTTP/1.1") << length;
  }
  static std::string asked;
  internet::setResolverForTesting([](const std::string& name, std::uint16_t) {
    asked = name;
    return std::vector<platform::SocketAddress>();
  });
  for (const std::size_t length : {254u, 255u, 256u, 600u}) {
    const std::string name(length, 'h');
    EXPECT_EQ(boxesOf([&] { client.HTTPDownloadFile(name.c_str(), "/", 80, nullptr, nullptr, 0, 0); }).size(),
              1u);
    EXPECT_EQ(asked.size(), std::min<std::size_t>(length, 255));
  }
  internet::setResolverForTesting(nullptr);
}

TEST_F(HttpDownload, ANullOrEmptyObjectIsTheRoot) {
  const fixture::ScriptedHttp server;
  for (const char* object : {static_cast<const char*>(nullptr), ""}) {
    EXPECT_EQ(client.HTTPDownloadFile("127.0.0.1", object, server.port(), local.c_str(), nullptr, 0, 0), 1u);
    EXPECT_TRUE(server.requests().back().starts_with("GET / HTTP/1.1\r\n"));
  }
}

TEST_F(HttpDownload, OddNamesAreAskedForAsAddressesHaveThem) {
  const std::pair<const char*, const char*> names[] = {
      {"/with blank", "/with%20blank"}, {"/100%25", "/100%25"},     {"/a#b", "/a%23b"},
      {"/what?x=1", "/what?x=1"},       {"/a;type=i", "/a;type=i"}, {"-rf", "/-rf"},
      {"/d\xc3\xbcnn", "/d%C3%BCnn"}};
  const fixture::ScriptedHttp server;
  for (const auto& [object, sent] : names) {
    EXPECT_EQ(download(server, object), 1u) << object;
    const std::string line = server.requests().back();
    EXPECT_EQ(line.substr(0, line.find('\r')), std::string("GET ") + sent + " HTTP/1.1");
  }
}

// Many rounds through every buffer on the way, by a host that is not asked: one that is has a look at the
// message queue behind each chunk of 4096 bytes, which under Wine is a question to its server and took
// minutes of a busy machine. The sizes above are those of a host that is asked.
TEST_F(HttpDownload, AFileOf300MebibytesComesWhole) {
  constexpr std::uint64_t kSize = 300u << 20;
  const auto server = answering({{"body", {{"size", kSize}, {"seed", 5}}}});
  PlainClient plain(nullptr);
  EXPECT_EQ(plain.HTTPDownloadFile("127.0.0.1", "/a", server.port(), local.c_str(), nullptr, 0, 0), 1u);
  EXPECT_TRUE(testing_support::Pattern(5).matchesFile(local, kSize));
}

TEST_F(HttpDownload, PortZeroIs80AndOnly16BitsCount) {
  static std::vector<std::uint16_t> ports;
  ports.clear();
  internet::setResolverForTesting([](const std::string&, std::uint16_t port) {
    ports.push_back(port);
    return std::vector<platform::SocketAddress>();
  });
  boxesOf([&] {
    for (const std::uint32_t port : {0u, 80u, 65535u, 65536u, 65536u + 81}) {
      EXPECT_EQ(client.HTTPDownloadFile("host.test", "/", port, local.c_str(), nullptr, 0, 0), 0u);
    }
  });
  EXPECT_EQ(ports, (std::vector<std::uint16_t>{80, 80, 65535, 80, 81}));
  internet::setResolverForTesting(nullptr);
}

}  // namespace
