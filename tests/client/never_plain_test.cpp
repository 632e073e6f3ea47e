// SPDX-License-Identifier: MIT
// Where encryption was asked for nothing else goes out: whatever a server does instead, it sees neither a
// name nor a password nor a byte of a file, by no operation and in no repetition of one.
#include <algorithm>
#include <nlohmann/json.hpp>

#include "tests/client/TransferTest.h"
#include "tests/support/TestTrust.h"

namespace {

using nlohmann::json;
using namespace nlohmann::literals;

constexpr const char* kSent = "what is to be sent";

struct Refusal {
  const char* name;
  const char* scheme;
  json script;
  const char* heard = "";  // the command that it answers in this way
};

json instead(const char* verb, const json& steps) { return {{{"on", verb}, {"do", steps}}}; }

json offering(const json& tls, const json& rules = json::array()) {
  return {{"tls", tls}, {"rules", rules}, {"tree", {{"/a", "the text of a file"}, {"/d/", json::object()}}}};
}

json replying(const char* verb, const std::string& reply, const json& after = json::array()) {
  json steps = json::array({{{"raw", reply + "\r\n"}}});
  steps.insert(steps.end(), after.begin(), after.end());
  return offering(json::object(), instead(verb, steps));
}

json spoilt(const char* newest, int flight, bool implicit) {
  const json spoil = {{"stream", "control"}, {"flight", flight}, {"how", "garbage"}};
  return offering({{"newest", newest}, {"implicit", implicit}, {"spoil", spoil}});
}

json plainServer() { return {{"tree", {{"/a", "the text of a file"}, {"/d/", json::object()}}}}; }

std::vector<Refusal> refusals() {
  std::vector<Refusal> all = {
      {"AUTH is left without an answer and the connection closed", "ftpes://",
       offering(json::object(), instead("AUTH", R"(["close"])"_json))},
      {"AUTH is answered by a reset", "ftpes://",
       offering(json::object(), instead("AUTH", R"(["reset"])"_json))},
      {"AUTH is taken and the connection closed", "ftpes://", replying("AUTH", "234 Go", {"close"})},
      {"AUTH is taken and the connection reset", "ftpes://", replying("AUTH", "234 Go", {"reset"})},
      {"text follows the reply to AUTH", "ftpes://", replying("AUTH", "234 Go\r\n230 In", {"encrypt"})},
      {"a server that knows no AUTH", "ftpes://", plainServer()},
      {"a plain server at an implicit port", "ftps://", plainServer()},
      {"an expired certificate", "ftpes://", offering({{"certificate", "expired"}})},
      {"an expired certificate from the first byte", "ftps://",
       offering({{"certificate", "expired"}, {"implicit", true}})},
      {"garbage from the first byte", "ftps://", spoilt("1.3", 1, true)},
      {"a certificate of the client is wanted", "ftpes://", offering({{"wants_certificate", true}})},
  };
  for (const int code : {220, 334, 421, 431, 500, 504, 530, 534}) {
    const std::string reply = std::to_string(code) + " Not here";
    all.push_back({"AUTH is refused", "ftpes://", replying("AUTH", reply), "AUTH TLS"});
    if (code / 100 > 3) all.push_back({"PROT is refused", "ftpes://", replying("PROT", reply), "PROT P"});
  }
  for (const char* newest : {"1.2", "1.3"}) {
    for (const int flight : {1, 2}) {
      all.push_back({"garbage in the handshake", "ftpes://", spoilt(newest, flight, false)});
    }
  }
  return all;
}

class NeverPlain : public TransferTest {
 protected:
  NeverPlain() { write(kSent); }

  // What everybody on the way could have read. A server without TLS takes a handshake for lines, too.
  static void expectNothingPlain(const fixture::ScriptedFtp& server) {
    const json log = server.log();
    for (const json& connection : log.at("connections")) {
      for (const std::string line : connection.at("plain_commands")) {
        if (line != "AUTH TLS") expectTellsNothing(line);
      }
    }
    for (const json& data : log.at("data")) EXPECT_TRUE(data.at("tls").is_string()) << data;
  }
  static void expectTellsNothing(const std::string& line) {
    for (const char* word : {"USER ", "PASS ", "secret", "STOR ", kSent}) {
      EXPECT_EQ(line.find(word), std::string::npos) << word;
    }
  }

  // Each by a way of its own: the object's connection, a private one that is tried again, a finder's.
  void failEverywhere(const std::string& host, const fixture::ScriptedFtp& server) {
    testing_support::trustTestAuthority();
    EXPECT_EQ(client.FTPConnect(host.c_str(), "user", "secret", server.port(), 1, 0, nullptr), 0);
    client.FTPSetLogin(host.c_str(), "user", "secret", server.port(), 1);
    EXPECT_EQ(upload("/up", 1), 0);
    EXPECT_EQ(client.FTPDirExist("/d", 0, 0, 0), 0);
    std::filesystem::rename(local, local + ".up");
    EXPECT_EQ(download("/a", 1), 0);
    std::filesystem::rename(local + ".up", local);
    EXPECT_FALSE(server.exists("/up"));
  }
};

TEST_F(NeverPlain, WhateverAServerRefuses) {
  for (const Refusal& refusal : refusals()) {
    SCOPED_TRACE(refusal.name + refusal.script.dump().substr(0, 200));
    const fixture::ScriptedFtp server(refusal.script);
    failEverywhere(refusal.scheme + server.host(), server);
    expectNothingPlain(server);
    const auto lines = server.commands();
    const std::string heard = refusal.heard;
    EXPECT_TRUE(heard.empty() || std::ranges::find(lines, heard) != lines.end());
    EXPECT_FALSE(server.connections().empty());
  }
}

TEST_F(NeverPlain, AServerThatOnlySaysThatItProtectsData) {
  const fixture::ScriptedFtp server(replying("PROT", "200 Of course"));
  testing_support::trustTestAuthority();
  client.FTPSetLogin(("ftpes://" + server.host()).c_str(), "user", "secret", server.port(), 1);
  std::filesystem::remove(local);
  EXPECT_EQ(download("/a"), 0);
  EXPECT_FALSE(exists());
  std::uint32_t count = 0;
  EXPECT_EQ(client.FTPGetDirectory("/", nullptr, &count, "*", 0), 0);
  shortenTimeouts(std::chrono::seconds(1));  // it waits for what will be sent as its handshake is
  EXPECT_EQ(client.FTPWriteFile("/up", kSent, 18, 0, 0, 0, 0, 0), 0);
  EXPECT_GE(server.dataConnections().size(), 3u);
  server.waitUntilAllClosed();
  EXPECT_EQ(server.content("/up").find(kSent), std::string::npos);
}

}  // namespace
