// SPDX-License-Identifier: MIT
// The user's Internet settings, and scripts that the system itself runs.
#include "framework/platform/proxies.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/windows/ConfigurationScript.h"
#include "tests/support/windows/OwnSettings.h"

namespace {

using platform::Proxy;
using platform::ProxyTarget;
using testing_support::ConfigurationScript;
using testing_support::OwnSettings;

const ProxyTarget kFtp{"ftp", "ftp.tests.example", 21};
const ProxyTarget kWeb{"http", "www.tests.example", 80};

std::string told(const std::vector<Proxy>& proxies) {
  constexpr const char* kKinds[] = {"direct", "http", "socks", "unsupported"};
  std::string text;
  for (const Proxy& proxy : proxies) {
    text.append(text.empty() ? "" : ", ").append(kKinds[static_cast<int>(proxy.kind)]);
    if (!proxy.host.empty()) text.append(" " + proxy.host + " " + std::to_string(proxy.port));
  }
  return text;
}

// What is told at once, and "?" where a script has to be asked.
std::string toldAtOnce(const ProxyTarget& target) {
  const auto proxies = platform::proxiesAtOnce(target);
  return proxies ? told(*proxies) : "?";
}

TEST(WindowsProxies, AreReadFromTheUsersSettings) {
  const OwnSettings settings;
  EXPECT_EQ(toldAtOnce(kFtp), "");
  settings.set({false, "", "proxy:3128", "*.inside.test;<local>"});
  EXPECT_EQ(toldAtOnce(kFtp), "http proxy 3128");
  EXPECT_EQ(toldAtOnce({"ftp", "a.inside.test", 21}), "");
  EXPECT_EQ(toldAtOnce({"ftp", "server", 21}), "");
  settings.set({false, "", "http=web:80;socks=door:1080", ""});
  EXPECT_EQ(toldAtOnce(kFtp), "socks door 1080");
  EXPECT_EQ(toldAtOnce(kWeb), "http web 80");
}

TEST(WindowsProxies, LeaveTheOwnMachineAloneUnlessTheyAreToldOtherwise) {
  const OwnSettings settings({true, "http://nowhere.test/", "proxy:3128", "<local>"});
  EXPECT_EQ(toldAtOnce({"ftp", "127.0.0.1", 21}), "");
  EXPECT_EQ(toldAtOnce({"ftp", "localhost", 21}), "");
  settings.set({false, "", "proxy:3128", "<-loopback>"});
  EXPECT_EQ(toldAtOnce({"ftp", "127.0.0.1", 21}), "http proxy 3128");
}

TEST(WindowsProxies, ComeFromAScriptThatIsAskedOnceForATarget) {
  const ConfigurationScript server(
      "return host == 'www.tests.example' ? 'DIRECT' : 'PROXY ' + host + ':81';");
  const OwnSettings settings({false, server.address(), "list:1", "*"});
  EXPECT_EQ(toldAtOnce(kFtp), "?");
  EXPECT_EQ(told(platform::proxiesFor(kFtp)), "http ftp.tests.example 81");
  EXPECT_EQ(toldAtOnce(kFtp), "http ftp.tests.example 81");
  EXPECT_EQ(toldAtOnce(kWeb), "?");
  EXPECT_EQ(told(platform::proxiesFor(kWeb)), "") << "the list is for when there is no script";
  const auto asked = server.requests().size();
  EXPECT_EQ(toldAtOnce(kWeb), "");
  EXPECT_EQ(told(platform::proxiesFor(kFtp)), "http ftp.tests.example 81");
  EXPECT_EQ(server.requests().size(), asked);
}

TEST(WindowsProxies, ComeFromTheListWhereTheScriptIsNotThere) {
  const fixture::RefusedPort nobody;
  const OwnSettings settings(
      {false, "http://127.0.0.1:" + std::to_string(nobody.port()) + "/", "list:1", ""});
  EXPECT_EQ(toldAtOnce(kFtp), "?");
  EXPECT_EQ(told(platform::proxiesFor(kFtp)), "http list 1");
  EXPECT_EQ(toldAtOnce(kFtp), "http list 1");
}

}  // namespace
