// SPDX-License-Identifier: MIT
// What goes over the wire, and what the session is told.
#include "tests/internet/HttpTest.h"

namespace internet_tests {
namespace {

using fixture::ScriptedHttp;
using Statuses = std::vector<std::uint32_t>;

class HttpRequest : public HttpTest {
 protected:
  static std::string hostLine(const ScriptedHttp& server) {
    return "Host: 127.0.0.1:" + std::to_string(server.port()) + "\r\n";
  }
};

TEST_F(HttpRequest, IsOneGetOverAConnectionOfItsOwn) {
  const ScriptedHttp server;
  {
    const HttpFetch fetch(session, server, "/a b?c=d");
    EXPECT_TRUE(fetch.request->SendRequest());
  }
  server.waitFor(R"({"closed": 1})");
  EXPECT_EQ(server.requests(), (std::vector<std::string>{"GET /a%20b?c=d HTTP/1.1\r\n" + hostLine(server) +
                                                         "Connection: close\r\n\r\n"}));
}

TEST_F(HttpRequest, CarriesTheHeadersInTheirOrder) {
  const ScriptedHttp server;
  const HttpFetch fetch(session, server, nullptr);
  EXPECT_TRUE(fetch.request->AddRequestHeaders("B: 1\r\nA: 2\r\n"));
  EXPECT_TRUE(fetch.request->AddRequestHeaders("C: 3\r\nD: 4\r\n", internet::kAddIfNew, 6));
  EXPECT_TRUE(fetch.request->AddRequestHeaders("a: again", 0));
  EXPECT_TRUE(fetch.request->SendRequest());
  EXPECT_EQ(server.requests().at(0), "GET / HTTP/1.1\r\n" + hostLine(server) +
                                         "B: 1\r\nA: 2\r\nC: 3\r\na: again\r\nConnection: close\r\n\r\n");
}

TEST_F(HttpRequest, TakesAHeaderOnlyIfItIsNew) {
  const ScriptedHttp server;
  const HttpFetch fetch(session, server);
  EXPECT_TRUE(fetch.request->AddRequestHeaders("Accept: one\r\n"));
  EXPECT_EQ(errorOf([&] { return fetch.request->AddRequestHeaders("N: 1\r\nACCEPT: two\r\n"); }), 12155u);
  EXPECT_TRUE(fetch.request->SendRequest());
  EXPECT_NE(server.requests().at(0).find("\r\nAccept: one\r\nConnection"), std::string::npos);
}

TEST_F(HttpRequest, RefusesWhatIsNoHeaderLine) {
  const ScriptedHttp server;
  const HttpFetch fetch(session, server);
  for (const char* line :
       {"no colon", ": no name", "a b: c", "A: b\nC: d", "A: b\rC: d", "A: \x01", "A: b\r\n\r\nC: d"}) {
    EXPECT_EQ(errorOf([&] { return fetch.request->AddRequestHeaders(line); }), 87u) << line;
  }
}

TEST_F(HttpRequest, MakesOneHeaderOfTheAcceptedTypes) {
  const ScriptedHttp server;
  const char* const types[] = {"text/plain", "accept: image/png, image/gif\r\n", nullptr};
  const HttpFetch fetch(session, server, "/a", types);
  EXPECT_EQ(errorOf([&] { return fetch.request->AddRequestHeaders("Accept: other\r\n"); }), 12155u);
  EXPECT_TRUE(fetch.request->SendRequest());
  EXPECT_EQ(server.requests().at(0),
            "GET /a HTTP/1.1\r\n" + hostLine(server) +
                "Accept: text/plain, image/png, image/gif\r\nConnection: close\r\n\r\n");
}

TEST_F(HttpRequest, IsRefusedForWhatItCannotCarry) {
  const std::unique_ptr<CHttpConnection> connection(session.GetHttpConnection("127.0.0.1", 1));
  const char* const hostile[] = {"text/plain\r\nX: y", nullptr};
  EXPECT_EQ(thrownBy([&] { connection->OpenRequest("GET", "/", nullptr, 1, hostile); }).error, 87u);
  EXPECT_EQ(thrownBy([&] { connection->OpenRequest("POST", "/"); }).error, 87u);
  EXPECT_EQ(thrownBy([&] { connection->OpenRequest(0, "/"); }).error, 87u);
  EXPECT_EQ(thrownBy([&] { session.GetHttpConnection(nullptr); }).error, 87u);
  EXPECT_EQ(thrownBy([&] { session.GetHttpConnection(""); }).error, 87u);
}

TEST_F(HttpRequest, WithBytesThatCouldSmuggleIsNotSent) {
  const ScriptedHttp server;
  for (const char* object : {"/a\r\nX: y", "/a\r", "/\t", "/\x7f"}) {
    const HttpFetch fetch(session, server, object);
    EXPECT_EQ(errorOf([&] { return fetch.request->SendRequest(); }), 87u) << object;
    EXPECT_EQ(fetch.status(), 0u);
  }
  for (const char* name : {"127.0.0.1 x", "127.0.0.1\r\nX: y", "127.0.0.1/", "u@127.0.0.1"}) {
    const HttpFetch fetch(session, name, server.port());
    EXPECT_EQ(errorOf([&] { return fetch.request->SendRequest(); }), 87u) << name;
  }
  EXPECT_EQ(server.connectionCount(), 0);
}

TEST_F(HttpRequest, NamesAnAddressOfIPv6InBrackets) {
  const ScriptedHttp server(std::string_view(R"({"host": "::1"})"));
  const HttpFetch fetch(session, server);
  EXPECT_TRUE(fetch.request->SendRequest());
  EXPECT_NE(server.requests().at(0).find("\r\nHost: [::1]:" + std::to_string(server.port()) + "\r\n"),
            std::string::npos);
}

TEST_F(HttpRequest, IsSentOnce) {
  const ScriptedHttp server;
  const HttpFetch fetch(session, server);
  EXPECT_TRUE(fetch.request->SendRequest());
  EXPECT_EQ(thrownBy([&] { fetch.request->SendRequest(); }).error, 12019u);
  EXPECT_EQ(server.connectionCount(), 1);
}

TEST_F(HttpRequest, NotifiesEachStep) {
  const ScriptedHttp server;
  HttpFetch fetch(session, server);
  EXPECT_EQ(session.takeStatuses(), (Statuses{60, 60}));
  EXPECT_TRUE(fetch.request->SendRequest());
  EXPECT_EQ(session.takeStatuses(), (Statuses{10, 11, 20, 21, 30, 31, 40, 41, 100}));
  EXPECT_EQ(session.texts.at(2), "127.0.0.1");
  EXPECT_EQ(session.lengths.at(2), sizeof "127.0.0.1");
  fetch.request->Close();
  EXPECT_EQ(session.takeStatuses(), (Statuses{50, 51, 70}));
  fetch.request.reset();
  fetch.connection->Close();
  fetch.connection.reset();
  EXPECT_EQ(session.takeStatuses(), (Statuses{70}));
}

TEST_F(HttpRequest, EndsWithItsSession) {
  const ScriptedHttp server;
  const HttpFetch fetch(session, server);
  EXPECT_TRUE(fetch.request->SendRequest());
  session.takeStatuses();
  session.Close();
  server.waitFor(R"({"closed": 1})");
  EXPECT_EQ(session.takeStatuses(), (Statuses{50, 51, 70, 70}));
  char byte = 0;
  EXPECT_EQ(thrownBy([&] { fetch.request->Read(&byte, 1); }).error, 12019u);
  EXPECT_EQ(thrownBy([&] { fetch.request->GetLength(); }).error, 12019u);
  EXPECT_EQ(thrownBy([&] { fetch.connection->OpenRequest("GET", "/"); }).error, 12019u);
  EXPECT_EQ(fetch.status(), 0u);
}

TEST_F(HttpRequest, MayOutliveItsSession) {
  const ScriptedHttp server;
  auto own = std::make_unique<RecordingSession>();
  const HttpFetch fetch(*own, server);
  EXPECT_TRUE(fetch.request->SendRequest());
  own.reset();
  fetch.request->Close();
  fetch.connection->Close();
}

TEST_F(HttpRequest, MayBeClosedByEachNotification) {
  const ScriptedHttp server;
  for (const std::uint32_t at : {10u, 11u, 20u, 21u, 30u, 31u, 40u, 41u}) {
    const HttpFetch fetch(session, server);
    session.onStatus = [&](std::uint32_t status) {
      if (status == at) session.Close();
    };
    const auto thrown = thrownBy([&] { fetch.request->SendRequest(); });
    EXPECT_EQ(thrown.error, at == 41 ? 0u : 12019u) << at;
    EXPECT_EQ(fetch.status(), 0u) << at;
    session.onStatus = nullptr;
  }
  server.waitFor(R"({"closed": 1})");
}

TEST_F(HttpRequest, MayBeDeletedByANotification) {
  const ScriptedHttp server;
  for (const std::uint32_t at : {10u, 21u, 31u, 41u, 100u}) {
    HttpFetch fetch(session, server);
    session.onStatus = [&](std::uint32_t status) {
      if (status == at) fetch.request.reset();
    };
    thrownBy([request = fetch.request.get()] { request->SendRequest(); });
    EXPECT_EQ(fetch.request, nullptr) << at;
    session.onStatus = nullptr;
  }
}

TEST_F(HttpRequest, ConnectsInAsManyAttemptsAsTheSessionSays) {
  const fixture::RefusedPort refused;
  EXPECT_TRUE(session.SetOption(internet::kOptionConnectRetries, 3));
  EXPECT_TRUE(session.SetOption(internet::kOptionConnectBackoff, 25));
  EXPECT_TRUE(session.SetOption(internet::kOptionConnectTimeout, 30'000));
  EXPECT_EQ(errorOf([&] { return session.SetOption(99, 1); }), 87u);
  const HttpFetch fetch(session, refused);
  session.takeStatuses();
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(thrownBy([&] { fetch.request->SendRequest(); }).error, 12029u);
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(2 * 25))
      << "a back-off between two";
  EXPECT_EQ(session.takeStatuses(), (Statuses{10, 11, 20, 50, 51, 10, 11, 20, 50, 51, 10, 11, 20, 50, 51}));
}

}  // namespace
}  // namespace internet_tests
