// SPDX-License-Identifier: MIT
// Proxies that keep silent, and settings that take their time: neither holds up who wants to leave.
#include "tests/internet/CancelTest.h"
#include "tests/support/ProxiesInUse.h"

namespace internet_tests {
namespace {

using testing_support::ProxiesInUse;

class SilentProxy : public FtpTest, public testing::WithParamInterface<const char*> {
 protected:
  const fixture::Blackhole proxy;
  const ProxiesInUse settings{{GetParam() + proxy.host() + ':' + std::to_string(proxy.port())}};
};

TEST_P(SilentProxy, IsLeftWithinMilliseconds) {
  int connections = 0;
  expectPrompt(GetParam(), [&] {
    return latencyMs(
        [&] {
          RecordingSession own;
          own.GetFtpConnection("ftp.example", "user", "secret");
        },
        [&] { proxy.waitFor("{\"connections\": " + std::to_string(++connections) + "}"); });
  });
}

TEST_P(SilentProxy, IsGivenUpAfterTheTimeLimitOfAConnection) {
  session.SetTimeouts(shortTimeouts());
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(thrownBy([&] { session.GetFtpConnection("ftp.example", "user", "secret"); }).error, 12002u);
  EXPECT_GE(std::chrono::steady_clock::now() - start, shortTimeouts().connect);
}

INSTANTIATE_TEST_SUITE_P(Kinds, SilentProxy, testing::Values("socks5://", "http://"));

class ProxySettings : public FtpTest {};

TEST_F(ProxySettings, TellOfAProxyWithoutAnAddress) {
  const ProxiesInUse settings({"http://nowhere.invalid:1"});
  internet::setResolverForTesting(
      [](const std::string&, std::uint16_t) { return std::vector<platform::SocketAddress>(); });
  const Thrown thrown = thrownBy([&] { session.GetFtpConnection("ftp.example", "user", "secret"); });
  internet::setResolverForTesting(nullptr);
  EXPECT_EQ(thrown.error, 12007u);
  EXPECT_EQ(thrown.text, "Proxy http://nowhere.invalid:1: Its name cannot be resolved");
}

// Settings that the system has to look for first, for as long as the test wants. They name no proxy then.
struct SlowSettings {
  SlowSettings() {
    static constexpr internet::ProxySource kSource{&atOnce, &inTime};
    internet::setProxiesForTesting(&kSource);
  }
  ~SlowSettings() { internet::setProxiesForTesting(nullptr); }
  static std::optional<std::vector<platform::Proxy>> atOnce(const platform::ProxyTarget&) { return {}; }
  // As long as a name takes to look up.
  static std::vector<platform::Proxy> inTime(const platform::ProxyTarget& target) {
    static_cast<void>(SlowLookup::resolve(target.host, target.port));
    return {};
  }
  SlowLookup lookup;
};

TEST_F(ProxySettings, ThatTakeTheirTimeAreLeftWithinMilliseconds) {
  const SlowSettings settings;
  int running = 0;
  expectPrompt("settings", [&] {
    return latencyMs(
        [&] {
          RecordingSession own;
          own.GetFtpConnection("127.0.0.1", "user", "secret");
        },
        [&] { SlowLookup::awaitRunning(++running); });
  });
}

TEST_F(ProxySettings, ThatTakeTooLongAreATimeOut) {
  const SlowSettings settings;
  session.SetTimeouts(shortTimeouts());
  EXPECT_EQ(thrownBy([&] { session.GetFtpConnection("127.0.0.1", "user", "secret"); }).error, 12002u);
}

}  // namespace
}  // namespace internet_tests
