// SPDX-License-Identifier: MIT
// Certificates of every kind at servers of FTP and of the web: whether a host gets there, and what it is told
// of a server that it does not.
#include <gmock/gmock.h>

#include <map>

#include "tests/client/HttpDownloadTest.h"
#include "tests/internet/ListOfRevoked.h"
#include "tests/support/TestTrust.h"

namespace {

using nlohmann::json;
using testing::HasSubstr;

struct Case {
  const char* certificate;
  const char* name;  // that the server is asked as
  std::uint32_t error;
  const char* words = "";
};

constexpr const char* kDate = "has expired or is not valid yet";
constexpr const char* kName = "is made out to another name";
constexpr const char* kAuthority = "comes from an authority that this system does not trust";

constexpr Case kCases[] = {
    {"good", "127.0.0.1", 0},
    {"good", "files.localhost", 12038, kName},
    {"chain", "localhost", 0},
    {"wildcard", "ftp.tests.example", 0},
    {"wildcard", "a.ftp.tests.example", 12038, kName},
    {"address", "127.0.0.1", 0},
    {"address", "localhost", 12038, kName},
    {"wrong-name", "127.0.0.1", 12038, kName},
    {"expired", "127.0.0.1", 12037, kDate},
    {"not-yet", "127.0.0.1", 12037, kDate},
    {"self-signed", "127.0.0.1", 12045, kAuthority},
    {"unknown-authority", "127.0.0.1", 12045, kAuthority},
    {"partial-chain", "127.0.0.1", 12045, kAuthority},
    {"revoked", "127.0.0.1", 12170, "has been revoked"},
};
constexpr const char* kOtherPin = "is not the one with the expected fingerprint";

// SHA-256 of the certificate that servers of this kind show.
std::string fingerprintOf(const std::string& certificate, const std::string& listAt) {
  const json script = {{"certificate", certificate}, {"list_at", listAt}};
  return fixture::ScriptedTls(script.dump()).fingerprint();
}

class CertificateFaults : public HttpDownloadTest {
 protected:
  CertificateFaults() {
    internet::setResolverForTesting([](const std::string&, std::uint16_t port) {
      platform::SocketAddress here;
      here.host = {127, 0, 0, 1};
      here.port = port;
      return std::vector<platform::SocketAddress>{here};
    });
  }
  ~CertificateFaults() override { internet::setResolverForTesting(nullptr); }

  [[nodiscard]] json tlsOf(const std::string& certificate, bool implicit = false) const {
    return {{"certificate", certificate}, {"list_at", listAt}, {"implicit", implicit}};
  }
  [[nodiscard]] fixture::ScriptedFtp ftp(const json& tls) const {
    return fixture::ScriptedFtp(json{{"tls", tls}, {"tree", {{"/a", "text"}}}});
  }
  static fixture::ScriptedHttp web(const json& tls) {
    return fixture::ScriptedHttp(json{{"tls", tls}, {"answers", {{{"body", {{"text", "text"}}}}}}});
  }
  void trust() const {
    testing_support::trustTestAuthority();
    internet::tls_testing::haveListOfRevoked(listAt);
  }

  // The host's record of a log-in there.
  std::string login(const std::string& host, const fixture::ScriptedFtp& server, std::uint32_t error) {
    trust();
    record = {};
    const QXBool connected = client.FTPConnect(host.c_str(), "user", "secret", server.port(), 1, 0, nullptr);
    EXPECT_EQ(connected, error == 0);
    EXPECT_EQ(record.nError, error) << record.szText;
    EXPECT_EQ(server.commandCount("USER"), error == 0);
    client.FTPDisconnect();
    return record.szText;
  }
  // The same of an operation that logs in for itself, and that repeats no failure of this kind.
  std::string ask(const std::string& host, const fixture::ScriptedFtp& server, std::uint32_t error) {
    trust();
    record = {};
    client.FTPSetLogin(host.c_str(), "user", "secret", server.port(), 1);
    EXPECT_EQ(client.FTPDownloadFile("/a", local.c_str(), 0), error == 0);
    std::filesystem::remove(local);
    EXPECT_EQ(record.nError, error) << record.szText;
    EXPECT_EQ(server.commandCount("USER"), error == 0);
    return record.szText;
  }
  // The message box of a download.
  std::string fetch(const std::string& host, const fixture::ScriptedHttp& server, std::uint32_t error) {
    trust();
    const auto get = [&] {
      return client.HTTPDownloadFile(host.c_str(), "/a", server.port(), local.c_str(), nullptr, 0, 0);
    };
    const auto boxes = boxesOf([&] { EXPECT_EQ(get(), error == 0); });
    std::filesystem::remove(local);
    EXPECT_EQ(server.requests().size(), error == 0);
    EXPECT_EQ(boxes.size(), error != 0);
    return boxes.empty() ? std::string() : boxes[0].text;
  }

  // Names the fault and the certificate.
  void expectTold(const std::string& told, const Case& expected) const {
    EXPECT_THAT(told, HasSubstr(std::string("The certificate of ") + expected.name + " " + expected.words));
    EXPECT_THAT(told, HasSubstr("SHA-256 " + fingerprintOf(expected.certificate, listAt)));
    EXPECT_THAT(told, HasSubstr(", valid from 20"));
    EXPECT_THAT(told, HasSubstr(", issued to CN=localhost, O=Tests, by CN="));
    EXPECT_EQ(told.find("secret"), std::string::npos);
  }
  template <class Try>
  void forEach(Try attempt) {
    for (const Case& expected : kCases) {
      SCOPED_TRACE(std::string(expected.certificate) + " at " + expected.name);
      const std::string told = attempt(expected);
      if (expected.error != 0) expectTold(told, expected);
    }
  }

  const fixture::ScriptedHttp lists;
  const std::string listAt = "http://127.0.0.1:" + std::to_string(lists.port()) + "/authority.crl";
};

TEST_F(CertificateFaults, AreToldOfALogin) {
  forEach([&](const Case& each) {
    return login(std::string("ftpes://") + each.name, ftp(tlsOf(each.certificate)), each.error);
  });
}

TEST_F(CertificateFaults, AreToldOfAnOperationsOwnLogin) {
  forEach([&](const Case& each) {
    return ask(std::string("ftps://") + each.name, ftp(tlsOf(each.certificate, true)), each.error);
  });
}

TEST_F(CertificateFaults, AreToldOfAWebDownload) {
  forEach([&](const Case& each) {
    return fetch(std::string("https://") + each.name, web(tlsOf(each.certificate)), each.error);
  });
}

TEST_F(CertificateFaults, AreForThePinAloneToFindWhereThereIsOne) {
  for (const char* certificate : {"self-signed", "expired", "wrong-name", "revoked"}) {
    SCOPED_TRACE(certificate);
    const std::string pin = ";fingerprint=sha256:" + fingerprintOf(certificate, listAt);
    login("ftpes://127.0.0.1" + pin, ftp(tlsOf(certificate)), 0);
    fetch("https://127.0.0.1" + pin, web(tlsOf(certificate)), 0);
    const Case other{"good", "127.0.0.1", 12169, kOtherPin};
    expectTold(login("ftpes://127.0.0.1" + pin, ftp(tlsOf("good")), other.error), other);
    expectTold(fetch("https://127.0.0.1" + pin, web(tlsOf("good")), other.error), other);
  }
}

TEST_F(CertificateFaults, OfTheClientAreTold) {
  for (const char* newest : {"1.2", "1.3"}) {
    SCOPED_TRACE(newest);
    const json tls = {{"newest", newest}, {"wants_certificate", true}};
    constexpr const char* kWords = "The server wants a certificate of its client";
    EXPECT_THAT(login("ftpes://127.0.0.1", ftp(tls), 12044), HasSubstr(kWords));
    EXPECT_THAT(fetch("https://127.0.0.1", web(tls), 12044), HasSubstr(kWords));
  }
}

}  // namespace
