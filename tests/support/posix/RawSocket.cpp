// SPDX-License-Identifier: MIT
// RawSocket over POSIX sockets.
#include "tests/support/RawSocket.h"

#include <netdb.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>
#include <system_error>

namespace testing_support {
namespace {

[[noreturn]] void fail(const char* what) { throw std::system_error(errno, std::generic_category(), what); }

}  // namespace

RawSocket::RawSocket(const std::string& host, std::uint16_t port) : socket_(kNone) {
  addrinfo hints{};
  hints.ai_socktype = SOCK_STREAM;
  hints.ai_flags = AI_NUMERICHOST;
  addrinfo* found = nullptr;
  if (getaddrinfo(host.c_str(), std::to_string(port).c_str(), &hints, &found) != 0)
    throw std::runtime_error("no numeric address: " + host);
  const int handle = socket(found->ai_family, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const int result = connect(handle, found->ai_addr, found->ai_addrlen);
  freeaddrinfo(found);
  socket_ = handle;
  if (result != 0) {
    const int error = errno;
    close(handle);
    throw std::system_error(error, std::generic_category(), "connect");
  }
}

RawSocket::~RawSocket() {
  if (socket_ != kNone) close(static_cast<int>(socket_));
}

void RawSocket::send(std::string_view data) {
  while (!data.empty()) {
    const ssize_t count = ::send(static_cast<int>(socket_), data.data(), data.size(), MSG_NOSIGNAL);
    if (count < 0 && errno != EINTR) fail("send");
    if (count > 0) data.remove_prefix(static_cast<std::size_t>(count));
  }
}

std::size_t RawSocket::receiveSome(char* buffer, std::size_t size) {
  for (;;) {
    const ssize_t count = recv(static_cast<int>(socket_), buffer, size, 0);
    if (count >= 0) return static_cast<std::size_t>(count);
    if (errno == ECONNRESET) return 0;
    if (errno != EINTR) fail("recv");
  }
}

}  // namespace testing_support
