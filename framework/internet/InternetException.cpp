// SPDX-License-Identifier: MIT
#include "framework/internet/InternetException.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "framework/internet/net/InternetErrors.h"
#include "framework/platform/last_error.h"

namespace {

std::string_view ownText(std::uint32_t error) noexcept {
  switch (error) {
    case internet::kTimeout:
      return "The operation timed out";
    case internet::kExtendedError:
      return "The server returned extended information";
    case internet::kNameNotResolved:
      return "The server name or address could not be resolved";
    case internet::kIncorrectPassword:
      return "The password was not allowed";
    case internet::kLoginFailure:
      return "The login request was denied";
    case internet::kIncorrectHandleState:
      return "The supplied handle is in the wrong state for the requested operation";
    case internet::kCannotConnect:
      return "A connection with the server could not be established";
    case internet::kConnectionAborted:
      return "The connection with the server was terminated abnormally";
    case internet::kConnectionReset:
      return "The connection with the server was reset";
    case internet::kCertificateDate:
      return "The server's certificate has expired or is not valid yet";
    case internet::kCertificateName:
      return "The server's certificate was made out to another name";
    case internet::kClientCertificateWanted:
      return "The server wants a certificate of the client";
    case internet::kCertificateAuthority:
      return "The server's certificate comes from an authority that is not trusted";
    case internet::kSecureChannelFailed:
      return "The connection could not be encrypted";
    case internet::kCertificateInvalid:
      return "The server's certificate is invalid";
    case internet::kCertificateRevoked:
      return "The server's certificate has been revoked";
    case internet::kTransferInProgress:
      return "There is already a transfer in progress on this connection";
    case internet::kHeaderAlreadyExists:
      return "The HTTP header could not be added because it already exists";
    case internet::kInvalidServerResponse:
      return "The server returned an invalid or unrecognized response";
    default:
      return {};
  }
}

std::string systemText(std::uint32_t error) {
  std::string text = platform::systemErrorText(error);
  text.erase(text.find_last_not_of("\r\n") + 1);
  return text;
}

}  // namespace

CInternetException::CInternetException(std::uint32_t error, std::string text, bool connectionLost)
    : m_dwError(error), m_bConnectionLost(connectionLost), m_text(std::move(text)) {}

bool CInternetException::GetErrorMessage(char* buffer, std::uint32_t size) const noexcept {
  if (!buffer || size == 0) return false;
  *buffer = '\0';
  try {
    std::string text = m_text;
    if (text.empty()) text = ownText(m_dwError);
    if (text.empty()) text = systemText(m_dwError);
    const std::size_t length = std::min<std::size_t>(text.size(), size - 1);
    text.copy(buffer, length);
    buffer[length] = '\0';
    return length > 0;
  } catch (...) {
    // Out of memory: no text.
    return false;
  }
}

void AfxThrowInternetException(std::uint32_t error, std::string text, bool connectionLost) {
  auto* const exception = new CInternetException(error, std::move(text), connectionLost);
  platform::setLastError(error);
  throw exception;
}
