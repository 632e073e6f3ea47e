// SPDX-License-Identifier: MIT
// The making of one data connection. Passive: EPSV, else PASV; the connection always goes to the control
// connection's peer, whatever address the server tells. Active: EPRT, else PORT, from the control
// connection's local address; only the control connection's peer may connect.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "framework/internet/FtpControl.h"
#include "framework/internet/Sock.h"

namespace internet {

class FtpDataChannel {
 public:
  explicit FtpDataChannel(FtpControl& control) noexcept : control_(control) {}

  // Before the transfer command: agrees with the server on a port. Goes on to connect while the command
  // travels.
  void prepare();
  // After the transfer command: its first reply. The data connection stands then, unless that reply is a
  // refusal, or says that an active transfer is over without one.
  FtpReply establish();
  // The connection, null when there is none.
  std::unique_ptr<Sock> take();

 private:
  bool prepareExtendedPassive();
  void preparePassive();
  void prepareActive();
  void startToConnect(std::uint16_t port);
  bool tryToStand();
  bool standsWithin(const Deadline& deadline);
  [[nodiscard]] platform::SocketInterest interest() const noexcept;

  FtpControl& control_;
  platform::SocketAddress peer_;
  platform::Socket socket_;  // connecting, listening or connected
  bool listening_ = false;
  bool stands_ = false;
  bool extendedPassiveRefused_ = false;
  bool extendedPassiveUnreachable_ = false;
};

}  // namespace internet
