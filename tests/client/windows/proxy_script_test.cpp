// SPDX-License-Identifier: MIT
// Operations through a proxy that an automatic configuration script names.
#include <chrono>
#include <thread>

#include "framework/platform/proxies.h"
#include "tests/client/ProxyTest.h"
#include "tests/support/windows/ConfigurationScript.h"
#include "tests/support/windows/OwnSettings.h"

namespace {

using nlohmann::json;
using namespace nlohmann::literals;
using testing_support::ConfigurationScript;
using testing_support::OwnSettings;

class ProxyScript : public ProxyOperations {
 protected:
  // Nobody knows this name but the proxy.
  void loginByName() { client.FTPSetLogin("ftp.tests.example", "user", "secret", server.port(), 1); }
  // The thread that was left behind has its answer and is about to end.
  void awaitAnswer() const {
    while (!platform::proxiesAtOnce({"ftp", "ftp.tests.example", server.port()})) std::this_thread::yield();
  }
  [[nodiscard]] std::string namesTheProxy() const { return "return 'PROXY " + placeOf(proxy) + "';"; }

  const fixture::ScriptedFtp server{R"({"tree": {"/a": "text"}})"_json};
  const fixture::Proxy proxy{"proxy-script",
                             json{{"speaks", "http"}, {"names", {{"ftp.tests.example", "127.0.0.1"}}}}};
};

TEST_F(ProxyScript, IsAskedOnceForAllPrivateConnectionsToAServer) {
  const ConfigurationScript script(namesTheProxy());
  const OwnSettings settings({false, script.address(), "", ""});
  loginByName();
  EXPECT_EQ(TransferTest::download(), 1);
  EXPECT_EQ(content(), "text");
  const auto asked = script.requests().size();
  EXPECT_EQ(upload("/b"), 1);
  EXPECT_EQ(client.FTPFileSize("/b", 0, 0, 0), 4u);
  EXPECT_EQ(script.requests().size(), asked);
  expectAllThrough(proxy, server);
}

TEST_F(ProxyScript, ThatDoesNotComeLetsACancelThrough) {
  const ConfigurationScript script(namesTheProxy(), {{"head_gate", "never"}});
  const OwnSettings settings({false, script.address(), "", ""});
  loginByName();
  client.poll = [&](QXHostValue, QXHostValue, QXHostValue, QXBool*) -> QXBool {
    script.waitAtGate("never");
    return 1;
  };
  void* data = nullptr;
  std::uint32_t size = 0;
  EXPECT_EQ(client.FTPReadFile("/a", &data, &size, 3, 0, 0, 0), 0);
  EXPECT_EQ(script.connectionCount(), 1) << "a cancelled operation is not repeated";
  EXPECT_EQ(proxy.requests().size(), 0u);
  script.release("never");
  awaitAnswer();
}

TEST_F(ProxyScript, ThatDoesNotComeEndsTheTimeOfAConnection) {
  using namespace std::chrono_literals;
  shortenTimeouts(100ms);
  const ConfigurationScript script(namesTheProxy(), {{"head_gate", "late"}});
  const OwnSettings settings({false, script.address(), "", ""});
  loginByName();
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(TransferTest::download(), 0);
  EXPECT_GE(std::chrono::steady_clock::now() - start, 100ms);
  EXPECT_EQ(record.nError, 12002u);
  script.release("late");
  awaitAnswer();
}

}  // namespace
