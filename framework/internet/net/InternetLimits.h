// SPDX-License-Identifier: MIT
// Every time-out, size limit and buffer size of the internet classes, in one place.
#pragma once

#include <chrono>
#include <cstddef>

namespace internet {

// Per session; a host of the classes may shorten them before it connects.
struct Timeouts {
  std::chrono::milliseconds connect{30'000};  // one control or data connection, all addresses together
  unsigned connectAttempts = 1;
  std::chrono::milliseconds connectBackoff{1'000};  // between two attempts
  // A login that is refused because the server has too many others is repeated so often; the first pause
  // before it, of which each further one is the double.
  unsigned crowdedRetries = 0;
  std::chrono::milliseconds crowdedPause{250};
  std::chrono::milliseconds reply{30'000};  // one reply of the server
  // The reply to a line that was sent along with others, behind the reply to the one before it.
  std::chrono::milliseconds followUp{2'000};
  std::chrono::milliseconds data{30'000};        // no byte moved on a data connection
  std::chrono::milliseconds finalReply{30'000};  // the reply that ends a transfer
  // Neither a final reply nor a byte of data, however many preliminary replies come.
  std::chrono::milliseconds progress{120'000};
  std::chrono::milliseconds earlyClose{5'000};  // the reply after a transfer was given up half-way
  std::chrono::milliseconds dataError{3'000};   // the reply that explains a broken data connection
  std::chrono::milliseconds epsvProbe{5'000};   // a host's first EPSV port, before PASV is tried
  // A refusal behind the handshake of a host's first data connection that has resumed no session.
  std::chrono::milliseconds tlsVerdict{500};
  // What may come late at the end of a transfer: a refusal behind data whose size is not known, an active
  // data connection behind the final reply.
  std::chrono::milliseconds endOfData{1'000};
};

inline constexpr std::size_t kMaxReplyLine = std::size_t{64} * 1024;  // bytes of one reply line
inline constexpr std::size_t kMaxReply = std::size_t{1024} * 1024;    // bytes of one reply, all its lines
inline constexpr unsigned kMaxPreliminaryReplies = 1000;              // ahead of one final reply
inline constexpr unsigned kMaxStrayReplies = 100;                     // that nobody asked for, at a time
// Command lines that go out in one packet behind the one whose turn it is.
inline constexpr std::size_t kMaxForeseenLines = 16;
inline constexpr std::size_t kMaxForeseenBytes = std::size_t{8} * 1024;
inline constexpr std::size_t kMaxArgument = 4096;  // bytes of one command argument
inline constexpr std::size_t kMaxHttpHeadLine = std::size_t{64} * 1024;
inline constexpr std::size_t kMaxHttpHead = std::size_t{256} * 1024;  // all heads of a response; its trailers
inline constexpr std::size_t kMaxHttpChunkLine = std::size_t{4} * 1024;  // between the chunks
inline constexpr std::size_t kMaxProxyAnswer = std::size_t{16} * 1024;   // all heads of an answer to CONNECT
inline constexpr std::size_t kHttpBlock = std::size_t{512} * 1024;
inline constexpr std::size_t kTransferBuffer = std::size_t{1024} * 1024;
inline constexpr std::size_t kListingBlock = std::size_t{64} * 1024;
inline constexpr std::size_t kMaxListingBytes = std::size_t{256} * 1024 * 1024;
inline constexpr std::chrono::milliseconds kNextAddressAfter{250};
inline constexpr std::chrono::milliseconds kWaitSlice{1'000};  // no wait sleeps longer without another try

}  // namespace internet
