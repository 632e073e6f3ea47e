// SPDX-License-Identifier: MIT
#include "framework/platform/socket.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <linux/sockios.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "framework/platform/native_address.h"
#include "framework/platform/stop_token.h"
#include "framework/posix/descriptor.h"

namespace platform {

struct SocketAccess {
  static int fd(const Socket& socket) noexcept { return static_cast<int>(socket.socket_); }
  static void set(Socket& socket, int fd) noexcept { socket.socket_ = fd; }
};

const std::size_t kSendBlock = std::size_t{64} * 1024;

namespace {

IoStatus statusOf(int error) noexcept {
  switch (error) {
    case EAGAIN:
      return IoStatus::wouldBlock;
    case ECONNRESET:
    case EPIPE:
      return IoStatus::reset;
    default:
      return IoStatus::failed;
  }
}

template <class Call>
IoResult moved(Call call) noexcept {
  for (;;) {
    const ssize_t count = call();
    if (count >= 0) return {IoStatus::done, static_cast<std::size_t>(count)};
    if (errno != EINTR) return {statusOf(errno), 0};
  }
}

int openSocket(bool v6) noexcept {
  return aboveStandard(::socket(v6 ? AF_INET6 : AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
}

template <class Value>
void setOption(int fd, int level, int name, const Value& value) noexcept {
  ::setsockopt(fd, level, name, &value, sizeof value);
}

}  // namespace

std::string addressText(const SocketAddress& address) { return nativeAddressText(address); }

Socket::~Socket() { close(); }

Socket::Socket(Socket&& other) noexcept : socket_(std::exchange(other.socket_, kNone)) {}

Socket& Socket::operator=(Socket&& other) noexcept {
  if (this != &other) {
    close();
    socket_ = std::exchange(other.socket_, kNone);
  }
  return *this;
}

IoStatus Socket::connect(const SocketAddress& peer) noexcept {
  close();
  const int fd = openSocket(peer.v6);
  if (fd < 0) return IoStatus::failed;
  socket_ = fd;
  NativeAddress native = toNative(peer);
  if (::connect(fd, native.get(), native.length) == 0) return IoStatus::done;
  if (errno == EINPROGRESS || errno == EINTR) return IoStatus::wouldBlock;
  close();
  return IoStatus::failed;
}

IoStatus Socket::connectResult() noexcept {
  pollfd ended{SocketAccess::fd(*this), POLLOUT, 0};
  if (::poll(&ended, 1, 0) < 1) return IoStatus::wouldBlock;
  int error = 0;
  socklen_t length = sizeof error;
  if (::getsockopt(SocketAccess::fd(*this), SOL_SOCKET, SO_ERROR, &error, &length) != 0 || error != 0) {
    return IoStatus::failed;
  }
  return IoStatus::done;
}

bool Socket::listen(const SocketAddress& local) noexcept {
  close();
  const int fd = openSocket(local.v6);
  if (fd < 0) return false;
  socket_ = fd;
  SocketAddress anyPort = local;
  anyPort.port = 0;
  NativeAddress native = toNative(anyPort);
  if (::bind(fd, native.get(), native.length) == 0 && ::listen(fd, 4) == 0) return true;
  close();
  return false;
}

IoStatus Socket::accept(Socket& accepted, SocketAddress& peer) noexcept {
  for (;;) {
    NativeAddress native;
    const int fd = aboveStandard(
        ::accept4(SocketAccess::fd(*this), native.get(), &native.length, SOCK_NONBLOCK | SOCK_CLOEXEC));
    if (fd < 0) {
      // A connection that was broken before it was taken is not this socket's failure.
      if (errno == EINTR || errno == ECONNABORTED) continue;
      return errno == EAGAIN ? IoStatus::wouldBlock : IoStatus::failed;
    }
    Socket taken;
    SocketAccess::set(taken, fd);
    const auto address = fromNative(native.get());
    if (!address) continue;
    accepted = std::move(taken);
    peer = *address;
    return IoStatus::done;
  }
}

std::optional<SocketAddress> Socket::localAddress() const noexcept {
  return queriedAddress(::getsockname, SocketAccess::fd(*this));
}

std::optional<SocketAddress> Socket::peerAddress() const noexcept {
  return queriedAddress(::getpeername, SocketAccess::fd(*this));
}

IoResult Socket::receive(void* buffer, std::size_t size) noexcept {
  const IoResult result = moved([&] { return ::recv(SocketAccess::fd(*this), buffer, size, 0); });
  if (result.status == IoStatus::done && result.bytes == 0 && size > 0) return {IoStatus::closed, 0};
  return result;
}

IoResult Socket::send(const void* data, std::size_t size) noexcept {
  return moved([&] { return ::send(SocketAccess::fd(*this), data, size, MSG_NOSIGNAL); });
}

std::uint64_t Socket::deliveryMark() const noexcept {
  int unacknowledged = 0;
  if (::ioctl(SocketAccess::fd(*this), SIOCOUTQ, &unacknowledged) != 0) return 0;
  return static_cast<std::uint64_t>(unacknowledged);
}

void Socket::shutdownSend() noexcept { ::shutdown(SocketAccess::fd(*this), SHUT_WR); }

void Socket::keepAlive() noexcept {
  const int fd = SocketAccess::fd(*this);
  setOption(fd, SOL_SOCKET, SO_KEEPALIVE, 1);
  // The system's two hours are longer than a middlebox remembers an idle connection.
  setOption(fd, IPPROTO_TCP, TCP_KEEPIDLE, 60);
  setOption(fd, IPPROTO_TCP, TCP_KEEPINTVL, 30);
}

void Socket::noDelay() noexcept { setOption(SocketAccess::fd(*this), IPPROTO_TCP, TCP_NODELAY, 1); }

void Socket::close() noexcept {
  if (isOpen()) ::close(static_cast<int>(std::exchange(socket_, kNone)));
}

void Socket::abort() noexcept {
  if (isOpen()) setOption(SocketAccess::fd(*this), SOL_SOCKET, SO_LINGER, linger{1, 0});
  close();
}

Wake waitForSockets(std::span<SocketInterest> interests, std::chrono::milliseconds limit,
                    std::intptr_t signal) noexcept {
  // poll() skips negative descriptors, so absent ones keep their places.
  std::array<pollfd, kMaxWaitedSockets + 2> watched{};
  const StopToken* stop = StopToken::current();
  watched[0] = {stop ? static_cast<int>(stop->nativeHandle()) : -1, POLLIN, 0};
  watched[1] = {static_cast<int>(signal), POLLIN, 0};
  std::size_t count = 2;
  for (SocketInterest& interest : interests) {
    interest.ready = false;
    const auto events = static_cast<short>((interest.read ? POLLIN : 0) | (interest.write ? POLLOUT : 0));
    watched[count++] = {interest.socket ? SocketAccess::fd(*interest.socket) : -1, events, 0};
  }
  const int ready = ::poll(watched.data(), count, static_cast<int>(limit.count()));
  if (stop && stop->raised()) return Wake::stopped;
  if (ready == 0) return Wake::timedOut;
  // An interrupted wait counts as ready: whoever waits tries again.
  for (std::size_t i = 0; i < interests.size(); ++i) {
    interests[i].ready = interests[i].socket && (ready < 0 || watched[i + 2].revents != 0);
  }
  return Wake::ready;
}

}  // namespace platform
