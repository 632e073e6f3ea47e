// SPDX-License-Identifier: MIT
// An encrypted stream in the place of a Sock, and the judgement over the server that it leads to.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "framework/internet/net/Sock.h"
#include "framework/internet/tls/TlsPolicy.h"
#include "framework/platform/tls.h"

namespace internet {

// What the connections of one login share: whom they expect and how they resume.
class TlsLogin {
 public:
  // Fails (internet::Failure) with 12157 where the system has no TLS. Without `resumesData` nothing has to
  // resume the first connection's session, and the newest version of the system's TLS will do.
  explicit TlsLogin(std::string server, const TlsPolicy& policy, bool resumesData = true);

  // Takes the socket over and shakes hands. Fails with 12002 (deadline), 12030 and 12031 (the connection
  // broke), 12157 (the handshake failed), 12044 (a certificate of ours is wanted), and for the server's own
  // certificate with 12037 (date), 12038 (name), 12045 (authority), 12169 (fingerprint, or invalid) and 12170
  // (revoked); each with a text that tells what was found. Throws platform::OperationStopped. The wait for
  // each step watches the calling thread's stop token.
  std::unique_ptr<Sock> secure(std::unique_ptr<Sock> sock, platform::TlsUse use, const Deadline& deadline);

  // The same for who has more to watch meanwhile: `wait` waits for what the handshake waits for (and for what
  // else it likes). False gives up: the socket is closed, and the result null. What it throws comes out.
  using Wait = std::function<bool(const platform::SocketInterest& interest)>;
  std::unique_ptr<Sock> secure(std::unique_ptr<Sock> sock, platform::TlsUse use, const Wait& wait);

  // Of the connection that was secured last: "TLS 1.3, TLS_AES_256_GCM_SHA384, resumed".
  [[nodiscard]] const std::string& description() const noexcept { return description_; }

 private:
  std::string server_;
  TlsPolicy policy_;
  std::shared_ptr<platform::TlsContext> context_;
  std::string description_;
};

}  // namespace internet
