// SPDX-License-Identifier: MIT
#include "tests/support/TestTrust.h"

#include <gtest/gtest.h>
#include <windows.h>
// Behind windows.h.
#include <wincrypt.h>

#include <array>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/support/ScratchFolder.h"

namespace testing_support {
namespace {

std::vector<BYTE> authority() {
  std::ifstream file(fixtureFolder() / "certificates/authority.pem");
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

// Puts it among the roots of this user, who is the Wine prefix of the tests alone; on a Windows, which asks
// the user first, whoever runs the tests has put it there. They are written when they are closed. Gives the
// registry's name of what it has added.
std::string addToRoots(const std::vector<BYTE>& der) {
  const HCERTSTORE roots =
      CertOpenStore(CERT_STORE_PROV_SYSTEM_W, 0, 0, CERT_SYSTEM_STORE_CURRENT_USER, L"Root");
  const PCCERT_CONTEXT wanted =
      CertCreateCertificateContext(X509_ASN_ENCODING, der.data(), static_cast<DWORD>(der.size()));
  PCCERT_CONTEXT known =
      CertFindCertificateInStore(roots, X509_ASN_ENCODING, 0, CERT_FIND_EXISTING, wanted, nullptr);
  std::string name = known ? "" : registryName(wanted);
  if (!known) CertAddCertificateContextToStore(roots, wanted, CERT_STORE_ADD_NEW, &known);
  if (!known) throw std::runtime_error("the system does not take the tests' authority");
  CertFreeCertificateContext(known);
  CertFreeCertificateContext(wanted);
  CertCloseStore(roots, 0);
  return name;
}

// Takes it out again behind the last test. Wine deletes no certificate of such a store: the registry's entry
// goes.
class TrustedAuthority : public ::testing::EmptyTestEventListener {
 public:
  TrustedAuthority() : name_(addToRoots(authority())) {}

  void OnTestProgramEnd(const ::testing::UnitTest&) override {
    if (name_.empty()) return;
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
