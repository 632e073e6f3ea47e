// SPDX-License-Identifier: MIT
// What the system is asked for. Wine has no TLS 1.3, so connections do not show whether it was wanted.
#include "framework/windows/system_tls.h"
#include "tests/internet/FtpTlsTest.h"
#include "tests/internet/HttpTest.h"

namespace internet_tests {
namespace {

using nlohmann::json;

// Stands in the place of the system's AcquireCredentialsHandleW.
class WatchedSystem {
 public:
  WatchedSystem() {
    asked.clear();
    refusesNewest = false;
    table.AcquireCredentialsHandleW = &acquire;
  }
  ~WatchedSystem() { table.AcquireCredentialsHandleW = original; }
  WatchedSystem(const WatchedSystem&) = delete;
  WatchedSystem& operator=(const WatchedSystem&) = delete;

  // The protocols of each request, those not named included where only unwanted ones are named.
  static inline std::vector<DWORD> asked;
  // As an older system.
  static inline bool refusesNewest = false;

 private:
  static SECURITY_STATUS SEC_ENTRY acquire(SEC_WCHAR* principal, SEC_WCHAR* package, ULONG use, void* logon,
                                           void* wanted, SEC_GET_KEY_FN getKey, void* argument,
                                           PCredHandle credential, PTimeStamp expiry) {
    if (*static_cast<DWORD*>(wanted) == SCH_CREDENTIALS_VERSION) {
      const SCH_CREDENTIALS& newest = *static_cast<SCH_CREDENTIALS*>(wanted);
      asked.push_back(~newest.pTlsParameters->grbitDisabledProtocols);
      if (refusesNewest) return SEC_E_UNKNOWN_CREDENTIALS;
    } else {
      asked.push_back(static_cast<SCHANNEL_CRED*>(wanted)->grbitEnabledProtocols);
    }
    return original(principal, package, use, logon, wanted, getKey, argument, credential, expiry);
  }

  static inline SecurityFunctionTableW& table = *platform::systemTls()->security;
  static inline const auto original = table.AcquireCredentialsHandleW;
};

constexpr DWORD kTls12 = SP_PROT_TLS1_2_CLIENT;
constexpr DWORD kTls12And13 = SP_PROT_TLS1_2_CLIENT | SP_PROT_TLS1_3_CLIENT;

class TlsCredentials : public FtpTlsTest {
 protected:
  // The beginning of what is asked for to get a file from the web.
  std::vector<DWORD> askedByWeb(const std::string& options = {}) {
    const fixture::ScriptedHttp server(
        json{{"tls", json::object()}, {"answers", {{{"body", {{"text", "x"}}}}}}});
    const HttpFetch fetch(session, hostText("https://", server, options).c_str(), server.port());
    const Thrown thrown = thrownBy([&] {
      EXPECT_TRUE(fetch.request->SendRequest());
      EXPECT_EQ(fetch.readToEnd(), "x");
    });
    EXPECT_EQ(thrown.error, 0u) << thrown.text;
    return WatchedSystem::asked;
  }

  const WatchedSystem system;
};

// It asked for TLS 1.2 alone, which only data connections of FTP need.
TEST_F(TlsCredentials, WebRequestsOfferTheNewest) {
  EXPECT_EQ(askedByWeb(), (std::vector<DWORD>{kTls12And13}));
}

TEST_F(TlsCredentials, WebRequestsOfferNoMoreThanTheyAreToldTo) {
  EXPECT_EQ(askedByWeb(";tls=1.2"), std::vector<DWORD>{kTls12});
}

TEST_F(TlsCredentials, SystemsWithoutTheNewestAreAskedForTheOther) {
  WatchedSystem::refusesNewest = true;
  EXPECT_EQ(askedByWeb(), (std::vector<DWORD>{kTls12And13, kTls12}));
}

TEST_F(TlsCredentials, FtpOffersWhatItsDataConnectionsCanResume) {
  const fixture::ScriptedFtp server(script(json::object()));
  EXPECT_TRUE(works(*connectBy("ftpes://", server)));
  EXPECT_EQ(WatchedSystem::asked, std::vector<DWORD>{kTls12});
}

}  // namespace
}  // namespace internet_tests
