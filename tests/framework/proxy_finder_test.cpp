// SPDX-License-Identifier: MIT
// Lists, scripts, and what is remembered of them, at a system that is made up.
#include "framework/platform/proxy_finder.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <thread>
#include <vector>

namespace {

using platform::Proxy;
using platform::ProxyFinder;
using platform::ProxySettings;
using platform::ProxyTarget;

constexpr const char* kDetected = "";
constexpr const char* kScript = "http://pac.test/p.pac";
const ProxyTarget kFtp{"ftp", "ftp.example.com", 21};

Proxy proxyNamed(const char* name) {
  Proxy proxy;
  proxy.kind = Proxy::Kind::http;
  proxy.host = name;
  return proxy;
}

// Scripts that are there answer with one proxy for every host.
struct MadeUpSystem : platform::ProxySystem {
  bool sendsOwnMachineThrough() override { return ownMachineThrough; }
  ProxySettings settings() override {
    ++readings;
    return says;
  }
  std::optional<std::vector<Proxy>> askScript(const std::string& script, const ProxyTarget& target) override {
    asked.push_back((script == kDetected ? "network" : "script") + (" " + target.scheme) + " " + target.host);
    const auto found = scripts.find(script);
    if (found == scripts.end()) return std::nullopt;
    return found->second.empty() ? std::vector<Proxy>() : std::vector{proxyNamed(found->second.c_str())};
  }
  Time now() override { return time; }

  ProxySettings says;
  bool ownMachineThrough = false;
  std::map<std::string, std::string> scripts;
  std::vector<std::string> asked;
  int readings = 0;
  Time time{std::chrono::hours(1)};
};

struct ProxyFinding : testing::Test {
  // "at once", or "asked", and the proxies.
  std::string found(const ProxyTarget& target = kFtp) {
    const auto quick = finder.atOnce(target);
    const auto all = quick ? *quick : finder.find(target);
    std::string text = quick ? "at once" : "asked";
    for (const auto& proxy : all) text += " " + proxy.host;
    return text;
  }

  MadeUpSystem system;
  ProxyFinder finder{system};
};

TEST_F(ProxyFinding, TakesTheListAndItsExceptionsAtOnce) {
  system.says = {false, "", "ftp=files:1;http=web:2", "*.inside.test;<local>"};
  EXPECT_EQ(found(), "at once files");
  EXPECT_EQ(found({"http", "www.example.com", 80}), "at once web");
  EXPECT_EQ(found({"https", "www.example.com", 443}), "at once");
  EXPECT_EQ(found({"ftp", "a.inside.test", 21}), "at once");
  EXPECT_EQ(found({"ftp", "server", 21}), "at once");
  system.says.proxies = "other:3";
  EXPECT_EQ(found(), "at once other") << "what changes counts at once";
}

TEST_F(ProxyFinding, ReachesTheOwnMachineWithoutAskingAnything) {
  system.says = {true, kScript, "proxy", ""};
  EXPECT_EQ(found({"ftp", "127.0.0.1", 21}), "at once");
  EXPECT_EQ(found({"http", "localhost", 80}), "at once");
  EXPECT_EQ(system.readings, 0);
  system.ownMachineThrough = true;
  system.says = {false, "", "proxy", "<-loopback>"};
  EXPECT_EQ(found({"ftp", "127.0.0.1", 21}), "at once proxy");
}

TEST_F(ProxyFinding, AsksTheNetworksScriptThenTheNamedOneThenTheList) {
  system.says = {true, kScript, "list", ""};
  system.scripts = {{kDetected, "network"}, {kScript, "script"}};
  EXPECT_EQ(found(), "asked network");

  MadeUpSystem named;
  named.says = system.says;
  named.scripts = {{kScript, "script"}};
  ProxyFinder second(named);
  EXPECT_EQ(second.atOnce(kFtp), std::nullopt);
  EXPECT_EQ(second.find(kFtp).at(0).host, "script");

  MadeUpSystem none;
  none.says = system.says;
  EXPECT_EQ(ProxyFinder(none).find(kFtp).at(0).host, "list");
  EXPECT_EQ(none.asked,
            (std::vector<std::string>{"network ftp ftp.example.com", "script ftp ftp.example.com"}));
}

TEST_F(ProxyFinding, TakesAScriptThatSaysDirectAtItsWord) {
  system.says = {false, kScript, "list", ""};
  system.scripts = {{kScript, ""}};
  EXPECT_EQ(found(), "asked");
  EXPECT_EQ(found(), "at once");
}

TEST_F(ProxyFinding, HeedsNoExceptionsWhereAScriptSpeaks) {
  system.says = {false, kScript, "list", "*.example.com"};
  system.scripts = {{kScript, "script"}};
  EXPECT_EQ(found(), "asked script");
}

TEST_F(ProxyFinding, RemembersAnAnswerForAMinuteAndForItsTargetAlone) {
  system.says = {false, kScript, "", ""};
  system.scripts = {{kScript, "script"}};
  EXPECT_EQ(found(), "asked script");
  EXPECT_EQ(found(), "at once script");
  EXPECT_EQ(found({"ftp", "ftp.example.com", 22}), "asked script");
  EXPECT_EQ(found({"http", "ftp.example.com", 21}), "asked script");
  EXPECT_EQ(found({"ftp", "other.example.com", 21}), "asked script");
  system.scripts = {{kScript, "changed"}};
  system.time += ProxyFinder::kAnswerLasts - std::chrono::seconds(1);
  EXPECT_EQ(found(), "at once script");
  system.time += std::chrono::seconds(1);
  EXPECT_EQ(found(), "asked changed");
}

TEST_F(ProxyFinding, DoesNotLookForAScriptThatIsNotThereForEachConnection) {
  system.says = {true, "", "list", ""};
  EXPECT_EQ(found(), "asked list");
  EXPECT_EQ(found(), "at once list");
  EXPECT_EQ(found({"ftp", "other.example.com", 21}), "at once list") << "it is not there for any target";
  system.time += ProxyFinder::kFailureLasts;
  EXPECT_EQ(found(), "asked list");
  EXPECT_EQ(system.asked.size(), 2U);
}

TEST_F(ProxyFinding, AsksAnotherScriptAnew) {
  system.says = {false, kScript, "", ""};
  system.scripts = {{kScript, "script"}, {"http://other.test/", "other"}};
  EXPECT_EQ(found(), "asked script");
  system.says.script = "http://other.test/";
  EXPECT_EQ(found(), "asked other");
}

TEST_F(ProxyFinding, RemembersABoundedNumberOfTargets) {
  system.says = {false, kScript, "", ""};
  system.scripts = {{kScript, "script"}};
  EXPECT_EQ(found(), "asked script");
  for (std::size_t i = 1; i < ProxyFinder::kMostAnswers; ++i) found({"ftp", "h" + std::to_string(i), 21});
  EXPECT_EQ(found(), "at once script");
  EXPECT_EQ(found({"ftp", "one.more", 21}), "asked script");
  EXPECT_EQ(found(), "asked script");
}

}  // namespace
