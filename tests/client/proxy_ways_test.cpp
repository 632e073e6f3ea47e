// SPDX-License-Identifier: MIT
// What a host asks for and a proxy has no way to do.
#include <gmock/gmock.h>

#include "tests/client/ProxyTest.h"
#include "tests/support/ProxiesInUse.h"

namespace {

using namespace nlohmann::literals;
using testing::AllOf;
using testing::HasSubstr;
using testing_support::ProxiesInUse;

class ProxyWays : public ProxyOperations {};

// Nobody can connect to us through a proxy.
TEST_F(ProxyWays, AreAllPassiveWhateverTheHostAsksFor) {
  const fixture::ScriptedFtp server;
  const fixture::Proxy proxy("proxy-script");
  const ProxiesInUse settings({"socks5://" + placeOf(proxy)});
  client.FTPSetLogin(server.host().c_str(), "user", "secret", server.port(), 0);
  tour(server);
  EXPECT_EQ(server.commandCount("EPRT") + server.commandCount("PORT"), 0);
  expectAllThrough(proxy, server);
}

TEST_F(ProxyWays, ToTheWebFailWithTheProxysWordsWhereItWantsALogin) {
  const auto server = answering({{"body", {{"size", 3}}}});
  const fixture::Proxy proxy("tinyproxy", R"({"user": "me", "password": "pa55"})"_json);
  const ProxiesInUse settings({"http://" + placeOf(proxy)});
  const auto boxes = boxesOf([&] { EXPECT_EQ(downloadFrom(server.host(), server), 0u); });
  ASSERT_EQ(boxes.size(), 1u);
  EXPECT_THAT(boxes[0].text,
              AllOf(HasSubstr("Proxy http://"), HasSubstr("407 Proxy Authentication Required")));
  EXPECT_FALSE(exists());
}

}  // namespace
