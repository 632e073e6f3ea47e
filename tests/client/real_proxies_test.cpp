// SPDX-License-Identifier: MIT
// Whole operations through proxies that are not ours, which the system's settings name.
#include <gmock/gmock.h>

#include "tests/client/ProxyTest.h"

namespace {

using nlohmann::json;
using namespace nlohmann::literals;
using testing::ElementsAre;
using testing_support::ProxyKind;
using testing_support::SystemProxies;

constexpr const char* kLogin = R"({"user": "me", "password": "pass"})";
constexpr ProxyCase kCases[] = {
    {"Socks", "microsocks", "{}", ProxyKind::socks, ""},
    {"SocksWithLogin", "microsocks", kLogin, ProxyKind::socks, "me:p%61ss"},
    {"Http", "tinyproxy", "{}", ProxyKind::http, ""},
    {"HttpWithLogin", "tinyproxy", kLogin, ProxyKind::http, "me:p%61ss"},
};

class RealProxies : public ProxyOperations, public testing::WithParamInterface<ProxyCase> {
 protected:
  // As the proxy tells of a connection to the server.
  [[nodiscard]] std::string tunnelTo(const fixture::Server& server) const {
    return (GetParam().speaks == ProxyKind::http ? "CONNECT " : "") + placeOf(server);
  }

  const fixture::Proxy proxy{GetParam().kind, json::parse(GetParam().script)};
  const SystemProxies settings{GetParam().speaks, proxy, GetParam().login};
};

// In plain text without a login at the proxy, encrypted with one: they know no difference, and are slow.
TEST_P(RealProxies, CarryListsTransfersAndRenames) {
  const bool encrypted = GetParam().login[0] != 0;
  json script = {{"tree", {{"/a", "text"}, {"/b/", json::object()}}}};
  if (encrypted) script["tls"] = json::object();
  const fixture::ScriptedFtp server(script);
  loginBy(encrypted ? "ftpes://" : "", server);
  EXPECT_EQ(TransferTest::download(), 1);
  EXPECT_EQ(content(), "text");
  EXPECT_EQ(upload("/up"), 1);
  EXPECT_EQ(server.content("/up"), "text");
  EXPECT_EQ(client.FTPRenameFile("/up", "/b/renamed", 0), 1);
  std::uint32_t files = 0, folders = 0;
  EXPECT_EQ(client.FTPCountFolderItems("/b", &files, &folders, 0), 1);
  EXPECT_EQ(files, 1u);
  expectAllThrough(proxy, server);
  if (!encrypted) return;
  const json log = server.log();
  for (const json& each : log.at("connections"))
    EXPECT_EQ(each.at("plain_commands"), json::array({"AUTH TLS"}));
}

TEST_P(RealProxies, CarryWebDownloads) {
  const auto server = answering({{"body", {{"text", "page"}}}});
  EXPECT_EQ(downloadFrom("127.0.0.1", server), 1u);
  EXPECT_EQ(content(), "page");
  proxy.waitForRequests(1);
  const bool http = GetParam().speaks == ProxyKind::http;
  const std::string address = "GET http://" + placeOf(server) + "/a";
  EXPECT_THAT(proxy.requests(), ElementsAre(http ? address : tunnelTo(server)));
  EXPECT_THAT(server.requests().at(0), testing::Not(testing::HasSubstr("Authorization")));
}

TEST_P(RealProxies, CarryEncryptedWebDownloads) {
  const fixture::ScriptedHttp server(
      json{{"tls", json::object()}, {"answers", json::array({{{"body", {{"text", "secret"}}}}})}});
  testing_support::trustTestAuthority();
  EXPECT_EQ(downloadFrom("https://127.0.0.1", server), 1u);
  EXPECT_EQ(content(), "secret");
  proxy.waitForRequests(1);
  EXPECT_THAT(proxy.requests(), ElementsAre(tunnelTo(server)));
}

INSTANTIATE_TEST_SUITE_P(Of, RealProxies, testing::ValuesIn(kCases),
                         [](const auto& instance) { return instance.param.name; });

class ProxySettingsInUse : public ProxyOperations {};

TEST_F(ProxySettingsInUse, LeaveExceptedHostsAlone) {
  const fixture::Proxy proxy("microsocks");
  const fixture::ScriptedFtp server(R"({"tree": {"/a": "text"}})"_json);
  const auto web = answering({{"body", {{"text", "page"}}}});
  loginBy("", server);
  {
    const SystemProxies settings(ProxyKind::socks, proxy, "", "127.0.0.1");
    EXPECT_EQ(TransferTest::download(), 1);
    EXPECT_EQ(downloadFrom("127.0.0.1", web), 1u);
  }
  const SystemProxies settings(ProxyKind::socks, proxy);
  EXPECT_EQ(downloadFrom("127.0.0.1", web), 1u);
  proxy.waitForRequests(1);
  EXPECT_THAT(proxy.requests(), ElementsAre(placeOf(web)));
}

// The settings are read for each connection: a user who changes them starts no program anew.
TEST_F(ProxySettingsInUse, CountFromTheNextConnectionOn) {
  const fixture::Proxy first("microsocks");
  const fixture::Proxy second("tinyproxy");
  const auto web = answering({{"body", {{"text", "page"}}}});
  for (const auto* proxy : {&first, &second, &first}) {
    const SystemProxies settings(proxy == &first ? ProxyKind::socks : ProxyKind::http, *proxy);
    EXPECT_EQ(downloadFrom("127.0.0.1", web), 1u);
  }
  first.waitForRequests(2);
  second.waitForRequests(1);
  EXPECT_EQ(first.requests().size() + second.requests().size(), 3u);
}

}  // namespace
