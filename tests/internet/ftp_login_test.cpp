// SPDX-License-Identifier: MIT
// Connecting and logging in: error numbers, notifications, refused arguments.
#include <nlohmann/json.hpp>

#include "framework/internet/net/NameLookup.h"
#include "tests/internet/FtpTest.h"

namespace internet_tests {
namespace {

using fixture::ScriptedFtp;
using nlohmann::json;
using namespace nlohmann::literals;
using Statuses = std::vector<std::uint32_t>;

class FtpLogin : public FtpTest {
 protected:
  Thrown failureAt(const fixture::Server& server) {
    return thrownBy([&] { connect(server); });
  }
};

TEST_F(FtpLogin, NotifiesInTheUsualOrderAndKeepsToFourReplies) {
  ScriptedFtp server;
  auto connection = connect(server);
  EXPECT_EQ(session.takeStatuses(), (Statuses{10, 11, 20, 21, 40, 41, 30, 31, 40, 41, 30, 31, 40, 41, 60}));
  EXPECT_EQ(session.texts[0], "127.0.0.1");
  EXPECT_EQ(session.lengths[0], 10u) << "its NUL included";
  EXPECT_EQ(session.texts[1], "127.0.0.1");
  for (std::size_t i = 2; i < session.texts.size(); ++i) {
    EXPECT_EQ(session.texts[i], "");
    EXPECT_EQ(session.lengths[i], 0u);
  }
  EXPECT_EQ(session.contexts, std::vector<std::uintptr_t>(session.contexts.size(), 7));

  EXPECT_EQ(errorOf([&] { return connection->Remove("/missing"); }), 12003u);
  EXPECT_EQ(session.takeStatuses(), (Statuses{30, 31, 40, 41, 100}));
  EXPECT_EQ(server.repliesSent(), 4) << "banner, USER, PASS, DELE";

  connection->Close();
  EXPECT_EQ(session.takeStatuses(), (Statuses{50, 51, 70}));
  connection->Close();
  connection.reset();
  EXPECT_EQ(session.takeStatuses(), Statuses{});
  server.waitUntilAllClosed();
  EXPECT_EQ(server.commands(),
            (std::vector<std::string>{"USER user", "PASS secret", "DELE /missing", "QUIT"}));
}

TEST_F(FtpLogin, LogsInAnonymouslyWithoutAUser) {
  ScriptedFtp server;
  for (const char* user : {static_cast<const char*>(nullptr), ""}) {
    const std::unique_ptr<CFtpConnection> connection(
        session.GetFtpConnection(server.host().c_str(), user, nullptr, server.port(), true));
    ASSERT_TRUE(connection);
  }
  const auto commands = server.commands(2);
  ASSERT_GE(commands.size(), 2u);
  EXPECT_EQ(commands[0], "USER anonymous");
  EXPECT_TRUE(commands[1].starts_with("PASS ") && commands[1].size() > 5);
}

TEST_F(FtpLogin, NeedsNoPasswordWhereTheServerAsksForNone) {
  ScriptedFtp server(R"({"login": "user-only"})"_json);
  EXPECT_TRUE(works(*connect(server)));
  EXPECT_EQ(server.commandCount("PASS"), 0);
}

TEST_F(FtpLogin, SendsAnEmptyPasswordForAUserWithoutOne) {
  ScriptedFtp server;
  const std::unique_ptr<CFtpConnection> connection(
      session.GetFtpConnection(server.host().c_str(), "user", "", server.port(), true));
  EXPECT_EQ(server.commands().at(1), "PASS ");
}

TEST_F(FtpLogin, AWrongPasswordIs12014) {
  ScriptedFtp server(R"({"password": "another"})"_json);
  EXPECT_EQ(failureAt(server).error, 12014u);
  const auto statuses = session.takeStatuses();
  EXPECT_EQ(Statuses(statuses.end() - 2, statuses.end()), (Statuses{50, 51}));
  server.waitUntilAllClosed();
}

TEST_F(FtpLogin, AnyOtherRefusalAtLoginIs12015) {
  for (const char* script : {R"({"login": "account", "account": "x"})", R"({"welcome": "500 Go away"})",
                             R"({"rules": [{"on": "USER", "do": [{"reply": "501 Bad name"}]}]})",
                             R"({"rules": [{"on": "PASS", "do": [{"reply": "550 Disabled"}]}]})"}) {
    ScriptedFtp server{json::parse(script)};
    EXPECT_EQ(failureAt(server).error, 12015u) << script;
  }
  ScriptedFtp server(R"({"welcome": "530 Not for you"})"_json);
  EXPECT_EQ(failureAt(server).error, 12014u);
}

TEST_F(FtpLogin, TooManyConnectionsIs12030) {
  for (const char* verb : {"CONNECT", "USER", "PASS"}) {
    ScriptedFtp server(
        json{{"rules", {{{"on", verb}, {"do", {{{"reply", "421 Too many connections"}}, "close"}}}}}});
    EXPECT_EQ(failureAt(server).error, 12030u) << verb;
  }
}

TEST_F(FtpLogin, WaitsForTheGreetingBehindAPreliminaryOne) {
  ScriptedFtp server(
      R"({"rules": [{"on": "CONNECT", "do": [{"reply": "120 Ready soon"}, {"reply": "220 Ready"}]}]})"_json);
  EXPECT_TRUE(works(*connect(server)));
}

TEST_F(FtpLogin, ARefusedConnectionIs12029) {
  fixture::RefusedPort port;
  EXPECT_EQ(failureAt(port).error, 12029u);
  EXPECT_EQ(session.takeStatuses(), (Statuses{10, 11, 20, 50, 51}));
}

TEST_F(FtpLogin, AnUnknownNameIs12007) {
  internet::setResolverForTesting(
      [](const std::string&, std::uint16_t) { return std::vector<platform::SocketAddress>(); });
  EXPECT_EQ(thrownBy([&] { session.GetFtpConnection("nowhere.test"); }).error, 12007u);
  internet::setResolverForTesting(nullptr);
  EXPECT_EQ(session.takeStatuses(), (Statuses{10}));
}

TEST_F(FtpLogin, ASilentServerIs12002) {
  session.SetTimeouts(shortTimeouts());
  fixture::Blackhole silent;
  EXPECT_EQ(failureAt(silent).error, 12002u);
  fixture::Blackhole unreachable(false);
  EXPECT_EQ(failureAt(unreachable).error, 12002u);
}

TEST_F(FtpLogin, AClosedConnectionIs12030AndABrokenOne12031) {
  ScriptedFtp closing(R"({"rules": [{"on": "USER", "do": ["close"]}]})"_json);
  EXPECT_EQ(failureAt(closing).error, 12030u);
  ScriptedFtp breaking(R"({"rules": [{"on": "USER", "do": ["reset"]}]})"_json);
  EXPECT_EQ(failureAt(breaking).error, 12031u);
}

TEST_F(FtpLogin, AnotherProtocolIsNoAnswer) {
  ScriptedFtp server(R"({"welcome": "HTTP/1.1 400 Bad Request"})"_json);
  EXPECT_EQ(failureAt(server).error, 12152u);
}

TEST_F(FtpLogin, RefusesArgumentsBeforeItConnects) {
  ScriptedFtp server;
  const auto error = [&](const char* host, const char* user, const char* password) {
    return thrownBy([&] { session.GetFtpConnection(host, user, password, server.port()); }).error;
  };
  const std::string tooLong(5000, 'x');
  EXPECT_EQ(error(nullptr, "u", "p"), 87u);
  EXPECT_EQ(error("", "u", "p"), 87u);
  EXPECT_EQ(error("127.0.0.1\n", "u", "p"), 87u);
  EXPECT_EQ(error("127.0.0.1", "u\r\nDELE x", "p"), 87u);
  EXPECT_EQ(error("127.0.0.1", "u", "p\r\nDELE x"), 87u);
  EXPECT_EQ(error("127.0.0.1", "u\x7f", "p"), 87u);
  EXPECT_EQ(error(tooLong.c_str(), "u", "p"), 87u);
  EXPECT_EQ(error("127.0.0.1", tooLong.c_str(), "p"), 87u);
  EXPECT_EQ(error("127.0.0.1", "u", tooLong.c_str()), 87u);
  EXPECT_EQ(session.takeStatuses(), Statuses{});
  EXPECT_TRUE(server.connections().empty());
}

TEST_F(FtpLogin, ReachesAServerOverIpv6) {
  ScriptedFtp server(R"({"host": "::1"})"_json);
  EXPECT_TRUE(works(*connect(server)));
  EXPECT_EQ(server.connections().at(0).peer, "::1");
}

TEST_F(FtpLogin, TriesTheNextAddressOfAName) {
  // ::1 refuses, 127.0.0.1 answers.
  ScriptedFtp server;
  internet::setResolverForTesting([](const std::string&, std::uint16_t port) {
    platform::SocketAddress v6;
    v6.v6 = true;
    v6.host[15] = 1;
    v6.port = port;
    platform::SocketAddress v4;
    v4.host = {127, 0, 0, 1};
    v4.port = port;
    return std::vector<platform::SocketAddress>{v6, v4};
  });
  const std::unique_ptr<CFtpConnection> connection(
      session.GetFtpConnection("both.test", "user", "secret", server.port(), true));
  internet::setResolverForTesting(nullptr);
  EXPECT_TRUE(works(*connection));
}

TEST_F(FtpLogin, TriesTheNextAddressBesideOneThatHangs) {
  fixture::Blackhole hanging(false);
  ScriptedFtp server;
  static std::uint16_t hangingPort = 0;
  hangingPort = hanging.port();
  internet::setResolverForTesting([](const std::string&, std::uint16_t port) {
    platform::SocketAddress address;
    address.host = {127, 0, 0, 1};
    address.port = hangingPort;
    platform::SocketAddress good = address;
    good.port = port;
    return std::vector<platform::SocketAddress>{address, good};
  });
  const std::unique_ptr<CFtpConnection> connection(
      session.GetFtpConnection("both.test", "user", "secret", server.port(), true));
  internet::setResolverForTesting(nullptr);
  EXPECT_TRUE(works(*connection));
}

}  // namespace
}  // namespace internet_tests
