// SPDX-License-Identifier: MIT
// What the tests of operations through proxies have in common.
#pragma once

#include <string>

#include "tests/client/HttpDownloadTest.h"
#include "tests/client/OperationTour.h"
#include "tests/support/SystemProxies.h"
#include "tests/support/TestTrust.h"

struct ProxyCase {
  const char* name;
  const char* kind;
  const char* script;
  testing_support::ProxyKind speaks;
  const char* login;
};

class ProxyOperations : public HttpDownloadTest {
 protected:
  static std::string placeOf(const fixture::Server& server) {
    return server.host() + ":" + std::to_string(server.port());
  }
  void loginBy(const std::string& scheme, const fixture::Server& server) {
    if (!scheme.empty()) testing_support::trustTestAuthority();
    client.FTPSetLogin((scheme + server.host()).c_str(), "user", "secret", server.port(), 1);
  }
  void tour(const fixture::ScriptedFtp& server) {
    server.put(R"({"/start/": {}})");
    operation_tour::run(client, {"/start", folder.path().string()});
  }
  // All that reached the server came from the proxy, and the proxy asked for nothing else.
  static void expectAllThrough(const fixture::Proxy& proxy, const fixture::ScriptedFtp& server) {
    const std::size_t connections = server.connections().size() + server.dataConnections().size();
    EXPECT_GT(connections, 1u);
    proxy.waitForRequests(connections);
    EXPECT_EQ(proxy.requests().size(), connections);
  }
  std::uint32_t downloadFrom(const std::string& host, const fixture::Server& server) {
    std::filesystem::remove(local);
    return client.HTTPDownloadFile(host.c_str(), "/a", server.port(), local.c_str(), nullptr, 0, 0);
  }
};
