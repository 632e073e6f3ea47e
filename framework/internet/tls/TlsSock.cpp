// SPDX-License-Identifier: MIT
#include "framework/internet/tls/TlsSock.h"

#include <array>
#include <utility>

#include "framework/internet/net/Failure.h"
#include "framework/internet/net/InternetErrors.h"
#include "framework/internet/tls/ServerJudgement.h"

namespace internet {
namespace {

using platform::IoResult;
using platform::IoStatus;

class TlsSock : public Sock {
 public:
  TlsSock(platform::Socket socket, std::shared_ptr<platform::TlsContext> context, platform::TlsUse use)
      : Sock(std::move(socket)), stream_(platform::makeTlsStream(std::move(context), this->socket(), use)) {
    // The last of a handshake may be ours, and nothing comes back for it: what follows would wait for that.
    this->socket().noDelay();
  }

  [[nodiscard]] const platform::TlsStream& stream() const noexcept { return *stream_; }
  [[nodiscard]] IoStatus handshake() noexcept { return stream_->handshake(); }

  IoResult receive(void* buffer, std::size_t size) noexcept override {
    return stream_->receive(buffer, size);
  }
  IoResult send(const void* data, std::size_t size) noexcept override { return stream_->send(data, size); }
  IoStatus shutdownSend() noexcept override {
    const IoStatus said = stream_->sayClosed();
    return said == IoStatus::done ? Sock::shutdownSend() : said;
  }
  platform::SocketInterest interest(bool receive, bool send) noexcept override {
    return Sock::interest(receive, send || stream_->wantsWrite());
  }

  Failure failureOf(IoStatus status) const override {
    if (status != IoStatus::failed) return Sock::failureOf(status);
    const platform::TlsStream::Fault fault = stream_->fault();
    const std::string words = fault.text.empty() ? "" : ": " + fault.text;
    if (fault.wantsClientCertificate) {
      return {kClientCertificateWanted, "The server wants a certificate of its client" + words};
    }
    return {kSecureChannelFailed, "The encryption of the connection has failed" + words};
  }

 private:
  const std::unique_ptr<platform::TlsStream> stream_;
};

}  // namespace

TlsLogin::TlsLogin(std::string server, const TlsPolicy& policy, bool resumesData)
    : server_(std::move(server)), policy_(policy) {
  std::string reason;
  context_ = platform::makeTlsContext(
      {.server = server_, .onlyTls12 = policy.onlyTls12, .resumesData = resumesData}, reason);
  if (!context_) fail(kSecureChannelFailed, reason);
}

std::unique_ptr<Sock> TlsLogin::secure(std::unique_ptr<Sock> sock, platform::TlsUse use,
                                       const Deadline& deadline) {
  auto secured = secure(std::move(sock), use, [&deadline](const platform::SocketInterest& interest) {
    std::array watched{interest};
    return wait(watched, deadline);
  });
  if (!secured) fail(kTimeout);
  return secured;
}

std::unique_ptr<Sock> TlsLogin::secure(std::unique_ptr<Sock> sock, platform::TlsUse use, const Wait& wait) {
  auto secured = std::make_unique<TlsSock>(std::move(sock->socket()), context_, use);
  for (;;) {
    const IoStatus status = secured->handshake();
    if (status == IoStatus::done) break;
    if (status != IoStatus::wouldBlock) throw secured->failureOf(status);
    if (!wait(secured->interest(true, false))) return nullptr;
  }
  if (const auto fault = faultOf(secured->stream().peer(), server_, policy_)) throw *fault;
  description_ = secured->stream().description();
  return secured;
}

}  // namespace internet
