// SPDX-License-Identifier: MIT
#include "tests/support/TestTrust.h"

#include <gtest/gtest.h>
#include <windows.h>
// Behind windows.h.
#include <wincrypt.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

namespace testing_support {
namespace {

std::vector<BYTE> authority() {
  const char* const folder = std::getenv("QX_FIXTURE_DIR");
  std::ifstream file("Z:" + std::string(folder ? folder : "") + "/certificates/authority.pem");
  const std::string pem{std::istreambuf_iterator<char>(file), {}};
  std::vector<BYTE> der(pem.size());
  auto size = static_cast<DWORD>(der.size());
  if (!CryptStringToBinaryA(pem.c_str(), 0, CRYPT_STRING_BASE64HEADER, der.data(), &size, nullptr, nullptr)) {
    throw std::runtime_error("the fixture has made no authority yet");
  }
  der.resize(size);
  return der;
}

// "06C53025...": the registry's name of a certificate.
std::string registryName(PCCERT_CONTEXT certificate) {
  std::array<BYTE, 20> digest{};
  auto size = static_cast<DWORD>(digest.size());
  CertGetCertificateContextProperty(certificate, CERT_SHA1_HASH_PROP_ID, digest.data(), &size);
  std::array<char, 2 * digest.size() + 1> name{};
  for (std::size_t i = 0; i < digest.size(); ++i) std::snprintf(&name[2 * i], 3, "%02X", digest[i]);
  return name.data();
}

// Puts it among the roots of this user, who is the Wine prefix of the tests alone. They are written when they
// are closed. Gives the registry's name.
std::string addToRoots(const std::vector<BYTE>& der) {
  const HCERTSTORE roots =
      CertOpenStore(CERT_STORE_PROV_SYSTEM_W, 0, 0, CERT_SYSTEM_STORE_CURRENT_USER, L"Root");
  PCCERT_CONTEXT added = nullptr;
  CertAddEncodedCertificateToStore(roots, X509_ASN_ENCODING, der.data(), static_cast<DWORD>(der.size()),
                                   CERT_STORE_ADD_USE_EXISTING, &added);
  if (!added) throw std::runtime_error("the system does not take the tests' authority");
  std::string name = registryName(added);
  CertFreeCertificateContext(added);
  CertCloseStore(roots, 0);
  return name;
}

// Takes it out again behind the last test. Wine deletes no certificate of such a store: the registry's entry
// goes.
class TrustedAuthority : public ::testing::EmptyTestEventListener {
 public:
  TrustedAuthority() : name_(addToRoots(authority())) {}

  void OnTestProgramEnd(const ::testing::UnitTest&) override {
    const std::string roots = R"(Software\Microsoft\SystemCertificates\Root\Certificates\)";
    RegDeleteKeyA(HKEY_CURRENT_USER, (roots + name_).c_str());
  }

 private:
  std::string name_;
};

}  // namespace

void trustTestAuthority() {
  static const bool once = [] {
    ::testing::UnitTest::GetInstance()->listeners().Append(new TrustedAuthority);
    return true;
  }();
  static_cast<void>(once);
}

}  // namespace testing_support
