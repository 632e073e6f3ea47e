// SPDX-License-Identifier: MIT
#include "framework/internet/Raising.h"

#include "framework/internet/InternetException.h"
#include "framework/internet/net/InternetErrors.h"
#include "framework/platform/last_error.h"

namespace internet {

void raising(const std::function<void()>& work) {
  if (const std::optional<Failure> failure = attempt(work)) throwAsException(*failure);
}

namespace {

// The rest have a text of their own, whatever a server has said.
bool isToldInFull(std::uint32_t error) noexcept {
  switch (error) {
    case kExtendedError:
    case kCertificateDate:
    case kCertificateName:
    case kClientCertificateWanted:
    case kCertificateAuthority:
    case kSecureChannelFailed:
    case kCertificateInvalid:
    case kCertificateRevoked:
    case platform::kErrorInvalidParameter:
      return true;
    default:
      return false;
  }
}

}  // namespace

void throwAsException(const Failure& failure) {
  const bool told = failure.ownText || isToldInFull(failure.error);
  AfxThrowInternetException(failure.error, told ? failure.serverText : std::string(), failure.connectionLost);
}

}  // namespace internet
