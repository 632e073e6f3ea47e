// SPDX-License-Identifier: MIT
// The making of one data connection. Passive: EPSV, else PASV; the connection always goes to the control
// connection's peer, whatever address the server tells; through a proxy to the host that the control
// connection was asked for. Active: EPRT, else PORT, from the control connection's local address; only the
// control connection's peer may connect. A proxy takes no connections for us: all are passive there.
// Encrypted where the control connection is; then it resumes that one's session, for many servers refuse it
// otherwise.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

#include "framework/internet/ftp/FtpControl.h"
#include "framework/internet/net/ProxyTalk.h"
#include "framework/internet/net/Sock.h"

namespace internet {

class FtpDataChannel {
 public:
  // What the server has said about a transfer.
  struct Opening {
    FtpReply first;
    std::optional<FtpReply> final;           // there already: the first reply, or one behind it
    std::optional<std::uint64_t> announced;  // the size that a preliminary reply has told
  };

  explicit FtpDataChannel(FtpControl& control) noexcept : control_(control) {}
  // Breaks off what was not taken: an upload that was asked for must not end as an empty file.
  ~FtpDataChannel();
  FtpDataChannel(const FtpDataChannel&) = delete;
  FtpDataChannel& operator=(const FtpDataChannel&) = delete;

  // Tells `control` the line that prepare() will send, as far as that is known.
  static void foresee(FtpControl& control);
  // Before the transfer command: agrees with the server on a port. Goes on to connect while the command
  // travels. `verb` and `argument`: that command where it comes next and changes nothing, so that it may
  // travel along; else "".
  void prepare(std::string_view verb, std::string_view argument);
  // After the transfer command: waits until the data connection stands and the server has replied, or until
  // the server says that the transfer is over. Notifies 40 and 41 for the first reply alone.
  Opening establish();
  // The connection, null when there is none.
  std::unique_ptr<Sock> take();

 private:
  [[nodiscard]] static bool isActive(FtpControl& control) noexcept;
  bool prepareExtendedPassive();
  void preparePassive();
  void prepareActive(std::string_view verb, std::string_view argument);
  void startToConnect(std::uint16_t port);
  bool tryToStand();
  void tryToConnect();
  bool talkToProxy();
  void acceptPeer();
  bool standsWithin(const Deadline& deadline);
  void takeReplies(Opening& opening);
  void shakeHands(Opening& opening);
  void awaitVerdict(Opening& opening);
  bool standsAfterAll(const FtpReply& final, const Deadline& deadline);
  [[nodiscard]] platform::SocketInterest interest() const noexcept;

  FtpControl& control_;
  platform::SocketAddress peer_;
  platform::Socket socket_;          // connecting, listening or connected
  std::unique_ptr<ProxyTalk> talk_;  // with the proxy that it is connected to; null: straight to the peer
  std::optional<Failure> proxyFailure_;
  std::unique_ptr<Sock> encrypted_;  // in its place
  bool listening_ = false;
  bool connected_ = false;
  bool stands_ = false;
  bool extendedActive_ = false;
  bool extendedPassiveRefused_ = false;
  bool extendedPassiveUnreachable_ = false;
};

}  // namespace internet
