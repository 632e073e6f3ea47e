// SPDX-License-Identifier: MIT
// Logging in over an encrypted connection, and everything that must not go out in plain text.
#include "framework/internet/FtpFileFind.h"
#include "framework/internet/net/NameLookup.h"
#include "tests/internet/FtpTlsTest.h"

namespace internet_tests {
namespace {

using fixture::ScriptedFtp;
using nlohmann::json;
using namespace nlohmann::literals;
using Statuses = std::vector<std::uint32_t>;

const Lines kLogin = {"USER user", "PASS secret", "PBSZ 0", "PROT P"};

class FtpTlsLogin : public FtpTlsTest {
 protected:
  // Neither a name nor a password has left.
  static void expectNoLogin(const ScriptedFtp& server) {
    EXPECT_EQ(server.commandCount("USER") + server.commandCount("PASS"), 0);
    expectNothingPlain(server);
  }
  static void find(CFtpConnection& connection, const char* path) {
    CFtpFileFind finder(&connection);
    EXPECT_TRUE(finder.FindFile(path));
  }
};

TEST_F(FtpTlsLogin, EncryptsBeforeItLogsIn) {
  ScriptedFtp server(script(json::object()));
  auto connection = connectBy("ftpes://", server);
  EXPECT_EQ(session.takeStatuses(), (Statuses{10, 11, 20, 21, 40, 41, 30, 31, 40, 41, 30, 31,
                                              40, 41, 30, 31, 40, 41, 30, 31, 40, 41, 60}));
  EXPECT_TRUE(works(*connection));
  connection->Close();
  server.waitUntilAllClosed();
  Lines expected = {"AUTH TLS"};
  expected.insert(expected.end(), kLogin.begin(), kLogin.end());
  expected.insert(expected.end(), {"PWD", "QUIT"});
  EXPECT_EQ(server.commands(), expected);
  EXPECT_EQ(plainCommands(server), Lines{"AUTH TLS"});
}

TEST_F(FtpTlsLogin, EncryptsFromTheFirstByte) {
  ScriptedFtp server(script({{"implicit", true}}));
  auto connection = connectBy("ftps://", server);
  EXPECT_EQ(session.takeStatuses(),
            (Statuses{10, 11, 20, 21, 40, 41, 30, 31, 40, 41, 30, 31, 40, 41, 30, 31, 40, 41, 60}));
  EXPECT_TRUE(works(*connection));
  EXPECT_EQ(Lines(server.commands()).front(), "USER user");
  EXPECT_EQ(plainCommands(server), Lines());
}

TEST_F(FtpTlsLogin, APlainNameStaysPlain) {
  ScriptedFtp server(script(json::object()));
  auto connection = connectBy("", server);
  EXPECT_TRUE(works(*connection));
  EXPECT_EQ(plainCommands(server), (Lines{"USER user", "PASS secret", "PWD"}));
}

TEST_F(FtpTlsLogin, ARefusedAuthIsAFailureInTheServersWords) {
  for (const char* reply : {"500 What?", "502 Not here", "534 Never", "431 Not now", "334 More"}) {
    ScriptedFtp server(script(json::object(), instead("AUTH", {{{"reply", reply}}})));
    const Thrown thrown = failureBy("ftpes://", server);
    EXPECT_EQ(thrown.error, 12003u) << reply;
    EXPECT_EQ(thrown.text, reply);
    EXPECT_EQ(server.commands(), Lines{"AUTH TLS"});
    expectNoLogin(server);
  }
}

TEST_F(FtpTlsLogin, AServerThatLeavesAtAuthHearsNoLogin) {
  for (const json& steps : {R"([{"reply": "421 Too many"}, "close"])"_json, R"(["close"])"_json}) {
    ScriptedFtp server(script(json::object(), instead("AUTH", steps)));
    EXPECT_EQ(failureBy("ftpes://", server).error, 12030u);
    expectNoLogin(server);
  }
}

TEST_F(FtpTlsLogin, TextBehindTheReplyToAuthIsRefused) {
  for (const char* behind : {"331 Password\r\n", "230 You", "2"}) {
    const std::string text = std::string("234 Go ahead\r\n") + behind;
    ScriptedFtp server(script(json::object(), instead("AUTH", {{{"raw", text}}, "encrypt"})));
    const Thrown thrown = failureBy("ftpes://", server);
    EXPECT_EQ(thrown.error, 12157u) << behind;
    EXPECT_NE(thrown.text.find("plain text"), std::string::npos) << thrown.text;
    expectNoLogin(server);
  }
}

TEST_F(FtpTlsLogin, ARefusedProtectionOfTheDataIsAFailureInTheServersWords) {
  ScriptedFtp server(script(json::object(), instead("PROT", R"([{"reply": "536 Only C"}])"_json)));
  const Thrown thrown = failureBy("ftpes://", server);
  EXPECT_EQ(thrown.error, 12003u);
  EXPECT_EQ(thrown.text, "536 Only C");
  expectNothingPlain(server);
}

TEST_F(FtpTlsLogin, AServerThatNeedsNoBufferSizeIsTaken) {
  ScriptedFtp server(script(json::object(), instead("PBSZ", R"([{"reply": "502 No such thing"}])"_json)));
  EXPECT_TRUE(works(*connectBy("ftpes://", server)));
}

TEST_F(FtpTlsLogin, AServerOfSingleLinesIsLoggedInTo) {
  json single = script(json::object());
  single["packets"] = "first";
  ScriptedFtp server(single);
  EXPECT_TRUE(works(*connectBy("ftpes://", server)));
  EXPECT_EQ(server.commandCount("PROT"), 1);
}

TEST_F(FtpTlsLogin, APlainServerAtAnImplicitPortIsNoTls) {
  ScriptedFtp server;
  EXPECT_EQ(failureBy("ftps://", server).error, 12157u);
  EXPECT_EQ(server.commandCount("USER"), 0);
}

TEST_F(FtpTlsLogin, AWrongCertificateHearsNoLogin) {
  ScriptedFtp server(script({{"certificate", "self-signed"}}));
  const Thrown thrown = failureBy("ftpes://", server, ";tls=1.2");
  EXPECT_EQ(thrown.error, 12045u);
  EXPECT_NE(thrown.text.find("localhost"), std::string::npos) << thrown.text;
  expectNoLogin(server);
  EXPECT_TRUE(works(*connectBy("ftpes://", server, ";verify=no")));
}

TEST_F(FtpTlsLogin, APinTakesThePlaceOfTheAuthority) {
  ScriptedFtp server(script({{"certificate", "self-signed"}}));
  const std::string wrong(64, '0');
  const Thrown thrown = failureBy("ftpes://", server, ";fingerprint=sha256:" + wrong);
  EXPECT_EQ(thrown.error, 12169u);
  expectNoLogin(server);
  // The text tells the fingerprint that would be the right one.
  std::string digits = thrown.text;
  std::erase_if(digits, [](char c) { return !std::isxdigit(static_cast<unsigned char>(c)); });
  bool found = false;
  for (std::size_t i = 0; !found && i + 64 <= digits.size(); ++i) {
    const std::string pin = digits.substr(i, 64);
    found = pin != wrong && failureBy("ftpes://", server, ";fingerprint=sha256:" + pin).error == 0;
  }
  EXPECT_TRUE(found) << thrown.text;
}

TEST_F(FtpTlsLogin, AnUnknownOptionConnectsToNobody) {
  ScriptedFtp server(script(json::object()));
  const Thrown thrown = failureBy("ftpes://", server, ";verify=maybe");
  EXPECT_EQ(thrown.error, 87u);
  EXPECT_EQ(thrown.text, "bad value in option 'verify=maybe' behind the server's name");
  EXPECT_TRUE(server.connections().empty());
  EXPECT_EQ(session.takeStatuses(), Statuses());
}

TEST_F(FtpTlsLogin, ThePortOfPlainFtpMeansTheImplicitOne) {
  static std::uint16_t asked;
  const auto portFor = [&](const char* host, std::uint16_t port) {
    internet::setResolverForTesting([](const std::string&, std::uint16_t wanted) {
      asked = wanted;
      return std::vector<platform::SocketAddress>();
    });
    EXPECT_EQ(thrownBy([&] { session.GetFtpConnection(host, "u", "p", port); }).error, 12007u);
    internet::setResolverForTesting(nullptr);
    return asked;
  };
  EXPECT_EQ(portFor("ftps://nowhere.test", 21), 990);
  EXPECT_EQ(portFor("ftps://nowhere.test", 0), 990);
  EXPECT_EQ(portFor("ftps://nowhere.test", 2121), 2121);
  EXPECT_EQ(portFor("ftpes://nowhere.test", 21), 21);
  EXPECT_EQ(portFor("ftpes://nowhere.test", 0), 21);
  EXPECT_EQ(portFor("nowhere.test", 0), 21);
}

// What somebody on the way has made of a plain connection must not rule an encrypted one.
TEST_F(FtpTlsLogin, KnowsNothingOfAServerFromPlainText) {
  ScriptedFtp server(script(json::object()));
  find(*connectBy("", server), "/small");
  EXPECT_EQ(server.commandCount("FEAT"), 1);
  find(*connectBy("ftpes://", server), "/small");
  EXPECT_EQ(server.commandCount("FEAT"), 2);
  find(*connectBy("ftpes://", server), "/small");
  EXPECT_EQ(server.commandCount("FEAT"), 2);
}

TEST_F(FtpTlsLogin, LogsInAgainAsItDidBefore) {
  ScriptedFtp server(script(json::object()));
  auto connection = connectBy("ftpes://", server);
  connection->ReopenOnDemand(true);
  find(*connection, "/small");
  server.disconnect();
  server.waitUntilAllClosed();
  find(*connection, "/small");
  EXPECT_EQ(server.connections().size(), 2u);
  EXPECT_EQ(plainCommands(server, 2), Lines{"AUTH TLS"});

  server.reconfigure(R"({"rules": [{"on": "AUTH", "do": [{"reply": "534 Not any more"}]}]})");
  server.disconnect();
  server.waitUntilAllClosed();
  CFtpFileFind finder(connection.get());
  const Thrown thrown = thrownBy([&] { EXPECT_FALSE(finder.FindFile("/small")); });
  EXPECT_TRUE(thrown.error == 0 || thrown.connectionLost);
  EXPECT_EQ(server.commands(3), Lines{"AUTH TLS"});
  expectNothingPlain(server);
}

TEST_F(FtpTlsLogin, GarbageInAFlightIsAFailure) {
  for (const char* newest : {"1.2", "1.3"}) {
    for (const int flight : {1, 2}) {
      for (const bool implicit : {false, true}) {
        const json spoil = {{"stream", "control"}, {"flight", flight}, {"how", "garbage"}};
        ScriptedFtp server(script({{"newest", newest}, {"implicit", implicit}, {"spoil", spoil}}));
        const Thrown thrown = failureBy(implicit ? "ftps://" : "ftpes://", server);
        EXPECT_EQ(thrown.error, 12157u) << newest << ' ' << flight;
        expectNothingPlain(server);
      }
    }
  }
}

// A second handshake could lead to somebody else.
TEST_F(FtpTlsLogin, NobodyShakesHandsTwice) {
  const fixture::ScriptedTls server(R"({"connections": [{"renegotiates": true}]})");
  EXPECT_EQ(failureBy("ftps://", server).error, 12157u);
  server.waitUntilClosed(1);
  EXPECT_EQ(server.log().at("closed").at(0).at("how"), "refused");
}

TEST_F(FtpTlsLogin, ASilentHandshakeIs12002) {
  session.SetTimeouts(shortTimeouts());
  const json spoil = {{"stream", "control"}, {"flight", 1}, {"how", "stall"}, {"gate", "never"}};
  ScriptedFtp server(script({{"spoil", spoil}}));
  EXPECT_EQ(failureBy("ftpes://", server).error, 12002u);
  expectNoLogin(server);
}

class FtpTlsCancel : public FtpTlsLogin, public testing::WithParamInterface<std::tuple<const char*, int>> {};

TEST_P(FtpTlsCancel, InAStalledHandshake) {
  const auto [newest, flight] = GetParam();
  const json spoil = {{"stream", "control"}, {"flight", flight}, {"how", "stall"}, {"gate", "never"}};
  ScriptedFtp server(script({{"newest", newest}, {"implicit", true}, {"spoil", spoil}}));
  int count = 0;
  expectPrompt("handshake", [&] {
    return latencyMs(
        [&] {
          RecordingSession own;
          const std::string host = hostText("ftps://", server);
          const std::unique_ptr<CFtpConnection> connection(
              own.GetFtpConnection(host.c_str(), "user", "secret", server.port()));
        },
        [&] {
          ++count;
          server.waitForConnections(count);
          server.waitAtGate("never");
        });
  });
  expectNoLogin(server);
}

INSTANTIATE_TEST_SUITE_P(Flights, FtpTlsCancel,
                         testing::Values(std::tuple("1.3", 1), std::tuple("1.3", 2), std::tuple("1.2", 1),
                                         std::tuple("1.2", 2)));

}  // namespace
}  // namespace internet_tests
