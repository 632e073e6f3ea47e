// SPDX-License-Identifier: MIT
#include "Src/InternetGuard.h"

#include <memory>

#include "Src/HostCall.h"
#include "framework/internet/net/InternetErrors.h"
#include "framework/platform/last_error.h"

namespace {

// The numbers that hosts know by name.
static_assert(internet::kTimeout == QX_ERROR_TIMEOUT && internet::kExtendedError == QX_ERROR_REFUSED &&
              internet::kNameNotResolved == QX_ERROR_NAME_NOT_RESOLVED &&
              internet::kIncorrectPassword == QX_ERROR_INCORRECT_PASSWORD &&
              internet::kLoginFailure == QX_ERROR_LOGIN_FAILURE &&
              internet::kCannotConnect == QX_ERROR_CANNOT_CONNECT &&
              internet::kConnectionAborted == QX_ERROR_CONNECTION_ABORTED &&
              internet::kConnectionReset == QX_ERROR_CONNECTION_RESET &&
              internet::kCertificateDate == QX_ERROR_CERTIFICATE_DATE &&
              internet::kCertificateName == QX_ERROR_CERTIFICATE_NAME &&
              internet::kClientCertificateWanted == QX_ERROR_CLIENT_CERTIFICATE &&
              internet::kCertificateAuthority == QX_ERROR_CERTIFICATE_AUTHORITY &&
              internet::kTransferInProgress == QX_ERROR_BUSY &&
              internet::kSecureChannelFailed == QX_ERROR_SECURE_CHANNEL &&
              internet::kCertificateInvalid == QX_ERROR_CERTIFICATE_INVALID &&
              internet::kCertificateRevoked == QX_ERROR_CERTIFICATE_REVOKED);

struct Delete {
  void operator()(CInternetException* exception) const noexcept { exception->Delete(); }
};

}  // namespace

void RaiseIPError(TQXIP& client, CInternetException* exception, std::uint32_t* pRetries) {
  const std::unique_ptr<CInternetException, Delete> owner(exception);
  char text[kExceptionTextCapacity] = "";
  exception->GetErrorMessage(text, sizeof text);
  HostCall([&] { client.OnIPError(exception->m_dwError, text, pRetries); });
  // Reporting resets the last error; what follows still has to know why the work failed.
  platform::setLastError(exception->m_dwError);
}
