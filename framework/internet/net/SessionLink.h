// SPDX-License-Identifier: MIT
// What a connection needs of the session it was made on. It outlives the session: after the session's end it
// stays silent and keeps the last settings.
#pragma once

#include <cstdint>

#include "framework/internet/net/InternetLimits.h"

namespace internet {

class SessionLink {
 public:
  virtual ~SessionLink() = default;
  // Called on the thread that does the work, holding no lock. May re-enter the connection or destroy it.
  virtual void notify(std::uint32_t status, void* information, std::uint32_t length) = 0;
  [[nodiscard]] virtual Timeouts timeouts() const noexcept = 0;
  // Whether anybody wants the lines of the protocol (ProtocolLog.h), and one of them; called as notify().
  [[nodiscard]] virtual bool wantsProtocol() const noexcept { return false; }
  virtual void protocolLine(const char* /*line*/) {}
};

// What was made on a session and ends with it at the latest.
class SessionMember {
 public:
  virtual ~SessionMember() = default;
  // May be called twice.
  virtual void close() noexcept = 0;
};

}  // namespace internet
