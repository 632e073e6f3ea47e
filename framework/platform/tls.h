// SPDX-License-Identifier: MIT
// Contract: the system's TLS over a connected socket, as client. Windows: the system's own; Linux: OpenSSL,
// loaded when it is first asked for. All calls return at once, as those of socket.h do. One thread at a time
// per stream; a context may serve streams of several threads.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "framework/platform/socket.h"

namespace platform {

struct TlsSettings {
  std::string server;       // the name that the server is asked as; an address is not sent
  bool onlyTls12 = false;   // else the newest that the system has, never below TLS 1.2
  bool resumesData = true;  // the streams of data connections must be able to resume: no version that the
                            // system cannot resume is offered
};

// What the streams of one login share: the settings, and the session that the data connections resume.
class TlsContext {
 public:
  virtual ~TlsContext() = default;
};

// What the system found about the certificate chain; the name is not judged here. The gravest fault alone.
enum class TlsTrust {
  trusted,
  date,              // expired, or not valid yet
  unknownAuthority,  // self-signed, partial chain, a root that the system does not know
  revoked,
  invalid  // anything else that makes the chain unusable
};

struct TlsPeer {
  std::vector<unsigned char> certificate;  // DER of the server's own; empty when there is none
  TlsTrust trust = TlsTrust::invalid;
  std::string text;  // the system's words for what is wrong, "" if it has none
};

class TlsStream {
 public:
  virtual ~TlsStream() = default;

  // Goes on with the handshake. done: it has ended, and nothing of it waits to be sent; wouldBlock: again
  // after a wait for what wantsWrite() tells; closed, reset: by the peer; failed: fault() tells why. Trust is
  // left to the caller: a handshake with an untrusted server succeeds.
  [[nodiscard]] virtual IoStatus handshake() noexcept = 0;

  // As Socket's, of plain bytes, after the handshake. receive() fills the buffer while there is something to
  // fill it with: after it has given less than asked for, or wouldBlock, nothing readable is held back, so
  // waiting for the socket is right. closed: the peer has said that its stream is whole; reset: it has ended
  // without that word. send() takes bytes only while those before them are on their way; what it has taken
  // and could not pass on goes with later calls of send() and flush().
  [[nodiscard]] virtual IoResult receive(void* buffer, std::size_t size) noexcept = 0;
  [[nodiscard]] virtual IoResult send(const void* data, std::size_t size) noexcept = 0;
  // done: all that send() has taken is with the system.
  [[nodiscard]] virtual IoStatus flush() noexcept = 0;
  // Says that our stream is whole (once) and flushes; leaves the socket open.
  [[nodiscard]] virtual IoStatus sayClosed() noexcept = 0;
  // Whether bytes of ours wait for room in the socket: a wait must watch for writing, too.
  [[nodiscard]] virtual bool wantsWrite() const noexcept = 0;

  // After the handshake. peer() alone may take longer: Windows fetches a root that it trusts, at Windows' own
  // servers, when that is first needed (five seconds at most).
  [[nodiscard]] virtual TlsPeer peer() const = 0;
  // "TLS 1.3, TLS_AES_256_GCM_SHA384", with ", resumed" where it was.
  [[nodiscard]] virtual std::string description() const = 0;

  struct Fault {
    bool wantsClientCertificate = false;  // the server turned us away for want of one
    std::string text;                     // the system's words, "" if it has none
  };
  [[nodiscard]] virtual Fault fault() const = 0;
};

// Null with `reason` set where the system has no TLS to offer.
std::shared_ptr<TlsContext> makeTlsContext(const TlsSettings& settings, std::string& reason);

enum class TlsUse {
  control,  // its newest session is kept for data connections
  data      // resumes that session
};

// `socket` must outlive the stream.
std::unique_ptr<TlsStream> makeTlsStream(std::shared_ptr<TlsContext> context, Socket& socket, TlsUse use);

// SHA-256 of some bytes; empty where the system has none.
std::vector<unsigned char> sha256(const void* data, std::size_t size);

}  // namespace platform
