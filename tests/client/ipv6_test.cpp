// SPDX-License-Identifier: MIT
// Addresses of IPv6 as people write them. One in brackets was looked up as a name with brackets in it, which
// nobody has: 12007.
#include <nlohmann/json.hpp>

#include "tests/client/TransferTest.h"
#include "tests/support/TestTrust.h"

namespace {

struct Way {
  const char* name;
  const char* host;
  bool passive;
  const char* tls = nullptr;  // what the server's script says of it
};

nlohmann::json script(const Way& way) {
  auto result = nlohmann::json::parse(R"({"host": "::1", "tree": {"/a": "four", "/pub/": {}}})");
  if (way.tls) result["tls"] = nlohmann::json::parse(way.tls);
  return result;
}

class Ipv6Host : public TransferTest, public testing::WithParamInterface<Way> {
 protected:
  Ipv6Host() {
    if (GetParam().tls) testing_support::trustTestAuthority();
  }

  const fixture::ScriptedFtp server{script(GetParam())};

  QXBool connect() {
    return client.FTPConnect(GetParam().host, "user", "secret", server.port(), GetParam().passive ? 1 : 0, 0,
                             nullptr);
  }
};

TEST_P(Ipv6Host, EveryConnectionGoesThere) {
  EXPECT_EQ(connect(), 1);
  EXPECT_EQ(client.FTPDirExist("/pub", 0, 0, 0), 1) << "the object's own connection";
  EXPECT_EQ(client.FTPFileSize("/a", 0, 0, 0), 4u) << "a private one";
  EXPECT_EQ(download(), 1);
  EXPECT_EQ(content(), "four");
  EXPECT_EQ(upload("/pub/b"), 1);
  EXPECT_EQ(server.content("/pub/b"), "four");
}

TEST_P(Ipv6Host, DataTakesTheSameWay) {
  client.FTPSetLogin(GetParam().host, "user", "secret", server.port(), GetParam().passive ? 1 : 0);
  EXPECT_EQ(download(), 1);
  EXPECT_EQ(server.commandCount(GetParam().passive ? "EPSV" : "EPRT"), 1);
  const auto data = server.dataConnections();
  ASSERT_EQ(data.size(), 1u);
  EXPECT_EQ(data[0].peer, "::1");
  EXPECT_EQ(data[0].mode, GetParam().passive ? "passive" : "active");
  EXPECT_EQ(server.log().at("data").at(0).at("tls").is_string(), GetParam().tls != nullptr);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, Ipv6Host,
    testing::Values(Way{"Bare", "::1", true}, Way{"Bracketed", "[::1]", true},
                    Way{"BracketedActive", "[::1]", false}, Way{"BehindAScheme", "ftp://[::1]", true},
                    Way{"BareBehindAScheme", "FTP://::1", true}, Way{"WrittenOut", "[0:0:0:0:0:0:0:1]", true},
                    Way{"Encrypted", "ftpes://[::1]", true, "{}"},
                    Way{"EncryptedActive", "ftpes://[::1]", false, "{}"},
                    Way{"EncryptedFromTheStart", "ftps://[::1]", true, R"({"implicit": true})"}),
    [](const auto& instance) { return instance.param.name; });

TEST(Ipv6, TheFieldHasTheHostAsItWasGiven) {
  RecordingClient client;
  client.FTPSetLogin("ftp://[fe80::1%eth0]", "user", "secret", 21, 1);
  EXPECT_STREQ(client.m_RemoteSystem, "[fe80::1%eth0]");
}

}  // namespace
