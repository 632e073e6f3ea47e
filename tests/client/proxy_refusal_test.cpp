// SPDX-License-Identifier: MIT
// Proxies that refuse, resolve names, stall and lie, as a host hears of them.
#include <gmock/gmock.h>

#include <chrono>

#include "tests/client/ProxyTest.h"

namespace {

using nlohmann::json;
using namespace nlohmann::literals;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing_support::ProxyKind;
using testing_support::SystemProxies;

class RefusingProxies : public ProxyOperations {
 protected:
  static json bending(const json& step, ProxyKind kind = ProxyKind::socks) {
    return {{"speaks", kind == ProxyKind::socks ? "socks5" : "http"}, {"connections", json::array({step})}};
  }

  // The failure's text at a login through it.
  std::string refusal(ProxyKind kind, const fixture::Proxy& proxy, const std::string& login = "") {
    const SystemProxies settings(kind, proxy, login);
    record = {};
    EXPECT_EQ(connectTo(server), 0);
    EXPECT_EQ(record.nError, 12029u);
    EXPECT_EQ(server.connections().size(), 0u) << "no way around it";
    return record.szText;
  }
  std::string refusal(ProxyKind kind, const json& step) {
    return refusal(kind, fixture::Proxy("proxy-script", bending(step, kind)));
  }

  const fixture::ScriptedFtp server{R"({"tree": {"/a": "text"}})"_json};
};

TEST_F(RefusingProxies, AreHeardInTheirOwnWords) {
  const fixture::Proxy strict("tinyproxy", R"({"connect": false})"_json);
  EXPECT_THAT(refusal(ProxyKind::http, strict), HasSubstr("403 "));
  const std::string busy = "HTTP/1.1 503 Too busy today\r\nContent-Length: 0\r\n\r\n";
  EXPECT_THAT(refusal(ProxyKind::http, {{"request", {{"refuse", busy}}}}), HasSubstr("503 Too busy today"));
}

TEST_F(RefusingProxies, AreHeardByTheirCodes) {
  std::vector<std::string> texts;
  for (int code = 1; code <= 9; ++code) {
    texts.push_back(refusal(ProxyKind::socks, {{"request", {{"code", code}}}}));
    EXPECT_THAT(texts.back(), HasSubstr("roxy"));
  }
  std::sort(texts.begin(), texts.end());
  EXPECT_EQ(std::unique(texts.begin(), texts.end()), texts.end()) << "two codes with one text";
}

TEST_F(RefusingProxies, AreToldOfTheLoginButNobodyElseIs) {
  const json script = {{"user", "me"}, {"password", "right"}};
  const fixture::Proxy socks("microsocks", script);
  const fixture::Proxy http("tinyproxy", script);
  for (const char* login : {"", "me:hidden"}) {
    for (const std::string& text :
         {refusal(ProxyKind::socks, socks, login), refusal(ProxyKind::http, http, login)}) {
      EXPECT_THAT(text, AllOf(Not(testing::IsEmpty()), Not(HasSubstr("hidden"))));
      EXPECT_THAT(std::string(client.m_szMessage), Not(HasSubstr("hidden")));
    }
  }
}

TEST_F(RefusingProxies, MayBeNoProxiesAtAll) {
  EXPECT_THAT(refusal(ProxyKind::socks, {{"greeting", {{"refuse", "220 Here is FTP\r\n"}}}}),
              HasSubstr("roxy"));
  EXPECT_THAT(refusal(ProxyKind::http, {{"request", {{"refuse", "220 Here is FTP\r\n\r\n"}}}}),
              HasSubstr("roxy"));
  EXPECT_THAT(refusal(ProxyKind::http, {{"request", {{"refuse", "HTTP/1.1 200"}, {"endless", "x"}}}}),
              HasSubstr("roxy"));
}

class ScriptedProxies : public ProxyOperations, public testing::WithParamInterface<ProxyKind> {
 protected:
  static json script(const json& step = json::object()) {
    return {{"speaks", GetParam() == ProxyKind::socks ? "socks5" : "http"},
            {"names", {{"ftp.tests.example", "127.0.0.1"}}},
            {"user", "me"},
            {"password", "secret"},
            {"connections", json::array({step})}};
  }
  // The steps of a conversation with such a proxy.
  static std::vector<const char*> steps() {
    if (GetParam() == ProxyKind::http) return {"request"};
    return {"greeting", "login", "request"};
  }
  QXBool connectByName() {
    return client.FTPConnect("ftp.tests.example", "user", "secret", server.port(), 1, 0, nullptr);
  }
  // Of the same mode as connectByName().
  void loginByName() { client.FTPSetLogin("ftp.tests.example", "user", "secret", server.port(), 1); }

  const fixture::ScriptedFtp server{R"({"tree": {"/a": "text"}})"_json};
};

TEST_P(ScriptedProxies, ResolveTheNameOfTheServer) {
  const fixture::Proxy proxy("proxy-script", script());
  const SystemProxies settings(GetParam(), proxy, "me:secret");
  loginByName();
  EXPECT_EQ(TransferTest::download(), 1);
  EXPECT_EQ(content(), "text");
  const std::string front = GetParam() == ProxyKind::socks ? "" : "CONNECT ";
  EXPECT_EQ(proxy.requests().at(0), front + "ftp.tests.example:" + std::to_string(server.port()));
  expectAllThrough(proxy, server);
}

TEST_P(ScriptedProxies, CarryEveryOperation) {
  const fixture::Proxy proxy("proxy-script", script());
  const SystemProxies settings(GetParam(), proxy, "me:secret");
  loginByName();
  tour(server);
  expectAllThrough(proxy, server);
}

// The proxy's answer and the server's greeting may come in one piece, and the answer in many.
TEST_P(ScriptedProxies, AreReadToTheLastByteAndNotBeyond) {
  for (const char* key : {"with_server", "bytewise"}) {
    json step;
    for (const char* each : steps()) step[each] = {{"bytewise", std::string(key) == "bytewise"}};
    if (std::string(key) == "with_server") step["request"] = {{"with_server", true}};
    const fixture::Proxy proxy("proxy-script", script(step));
    const SystemProxies settings(GetParam(), proxy, "me:secret");
    client.FTPDisconnect();
    EXPECT_EQ(connectByName(), 1) << key;
  }
}

TEST_P(ScriptedProxies, ThatLeaveAtAnyStepAreAFailure) {
  for (const char* step : steps()) {
    for (const char* how : {"cut_after", "reset_after"}) {
      for (const int bytes : {0, 1}) {
        const fixture::Proxy proxy("proxy-script", script({{step, {{how, bytes}}}}));
        const SystemProxies settings(GetParam(), proxy, "me:secret");
        EXPECT_EQ(connectByName(), 0);
        EXPECT_EQ(record.nError, 12029u) << step << ' ' << how << ' ' << bytes;
        EXPECT_THAT(std::string(record.szText), HasSubstr("roxy")) << step;
      }
    }
  }
}

TEST_P(ScriptedProxies, ThatStallAtAnyStepEndTheTimeOfAConnection) {
  using namespace std::chrono_literals;
  shortenTimeouts(100ms);
  for (const char* step : steps()) {
    const fixture::Proxy proxy("proxy-script", script({{step, {{"stall_after", 1}, {"gate", "never"}}}}));
    const SystemProxies settings(GetParam(), proxy, "me:secret");
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(connectByName(), 0);
    EXPECT_EQ(record.nError, 12002u) << step;
    EXPECT_THAT(std::string(record.szText), HasSubstr("roxy")) << step;
    EXPECT_GE(std::chrono::steady_clock::now() - start, 100ms);
    proxy.waitFor(R"({"closed": 1})");
  }
}

TEST_P(ScriptedProxies, ThatStallAtAnyStepLetACancelThrough) {
  for (const char* step : steps()) {
    const fixture::Proxy proxy("proxy-script", script({{step, {{"stall_after", 1}, {"gate", "never"}}}}));
    const SystemProxies settings(GetParam(), proxy, "me:secret");
    loginByName();
    bool stalled = false;
    client.poll = [&](QXHostValue, QXHostValue, QXHostValue, QXBool*) -> QXBool {
      proxy.waitAtGate("never");
      stalled = true;
      return 1;
    };
    void* data = nullptr;
    std::uint32_t size = 0;
    EXPECT_EQ(client.FTPReadFile("/a", &data, &size, 3, 0, 0, 0), 0) << step;
    EXPECT_TRUE(stalled) << step;
    proxy.waitFor(R"({"closed": 1})");
    EXPECT_EQ(proxy.log().at("connections"), 1) << "a cancelled operation is not repeated";
  }
}

INSTANTIATE_TEST_SUITE_P(Of, ScriptedProxies, testing::Values(ProxyKind::socks, ProxyKind::http),
                         [](const auto& kind) { return kind.param == ProxyKind::socks ? "Socks" : "Http"; });

}  // namespace
