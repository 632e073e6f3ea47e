// SPDX-License-Identifier: MIT
// Numbers of the internet classes that hosts know: errors, status notifications, flags.
#pragma once

#include <cstdint>

namespace internet {

// Errors (the thread's last error or CInternetException::m_dwError).
inline constexpr std::uint32_t kTimeout = 12002;
inline constexpr std::uint32_t kExtendedError = 12003;  // the server's refusal; its text goes with it
inline constexpr std::uint32_t kNameNotResolved = 12007;
inline constexpr std::uint32_t kIncorrectPassword = 12014;  // 530 at login
inline constexpr std::uint32_t kLoginFailure = 12015;       // any other refusal at login
inline constexpr std::uint32_t kIncorrectHandleState = 12019;
inline constexpr std::uint32_t kCannotConnect = 12029;
inline constexpr std::uint32_t kConnectionAborted = 12030;
inline constexpr std::uint32_t kConnectionReset = 12031;
inline constexpr std::uint32_t kCertificateDate = 12037;  // expired, or not valid yet
inline constexpr std::uint32_t kCertificateName = 12038;  // made out to another server
inline constexpr std::uint32_t kClientCertificateWanted = 12044;
inline constexpr std::uint32_t kCertificateAuthority = 12045;  // nobody whom the system trusts
inline constexpr std::uint32_t kTransferInProgress = 12110;
inline constexpr std::uint32_t kInvalidServerResponse = 12152;
inline constexpr std::uint32_t kHeaderAlreadyExists = 12155;
inline constexpr std::uint32_t kSecureChannelFailed = 12157;  // the handshake, or a record after it
inline constexpr std::uint32_t kCertificateInvalid = 12169;   // unusable, or not the one that was pinned
inline constexpr std::uint32_t kCertificateRevoked = 12170;

// The connection has broken, or a time limit was over: another one may fare better.
[[nodiscard]] constexpr bool isBrokenConnection(std::uint32_t error) noexcept {
  return error == kTimeout || error == kConnectionAborted || error == kConnectionReset;
}

// Status notifications.
inline constexpr std::uint32_t kStatusResolvingName = 10;
inline constexpr std::uint32_t kStatusNameResolved = 11;
inline constexpr std::uint32_t kStatusConnecting = 20;
inline constexpr std::uint32_t kStatusConnected = 21;
inline constexpr std::uint32_t kStatusSendingRequest = 30;
inline constexpr std::uint32_t kStatusRequestSent = 31;
inline constexpr std::uint32_t kStatusReceivingResponse = 40;
inline constexpr std::uint32_t kStatusResponseReceived = 41;
inline constexpr std::uint32_t kStatusClosing = 50;
inline constexpr std::uint32_t kStatusClosed = 51;
inline constexpr std::uint32_t kStatusHandleCreated = 60;
inline constexpr std::uint32_t kStatusHandleClosing = 70;
inline constexpr std::uint32_t kStatusRequestComplete = 100;
inline constexpr std::uint32_t kStatusRedirect = 110;

// Access rights, transfer types and request flags.
inline constexpr std::uint32_t kGenericRead = 0x80000000u;
inline constexpr std::uint32_t kGenericWrite = 0x40000000u;
inline constexpr std::uint32_t kFileAppendData = 0x4u;
inline constexpr std::uint32_t kTransferTypeBinary = 2;
inline constexpr std::uint32_t kFlagReload = 0x80000000u;
inline constexpr std::uint32_t kFlagExistingConnect = 0x20000000u;
inline constexpr std::uint32_t kFlagNoCacheWrite = 0x04000000u;
inline constexpr std::uint32_t kAddIfNew = 0x10000000u;  // request headers

// Session options; times in milliseconds.
inline constexpr std::uint32_t kOptionConnectTimeout = 2;
inline constexpr std::uint32_t kOptionConnectRetries = 3;  // attempts, the first one included
inline constexpr std::uint32_t kOptionConnectBackoff = 4;

inline constexpr std::uint16_t kDefaultFtpPort = 21;
inline constexpr std::uint16_t kDefaultFtpsPort = 990;

}  // namespace internet
