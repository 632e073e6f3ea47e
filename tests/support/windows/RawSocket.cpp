// SPDX-License-Identifier: MIT
// RawSocket over Winsock.
#include "tests/support/RawSocket.h"

#include <stdexcept>

#include "framework/windows/windows_api.h"
// After windows.h only.
#include <ws2tcpip.h>

namespace testing_support {
namespace {

[[noreturn]] void fail(const char* what, int error) {
  throw std::runtime_error(std::string(what) + ": error " + std::to_string(error));
}

void startSockets() {
  static const int result = [] {
    WSADATA data;
    return WSAStartup(MAKEWORD(2, 2), &data);
  }();
  if (result != 0) fail("WSAStartup", result);
}

SOCKET asSocket(std::intptr_t value) { return static_cast<SOCKET>(value); }

}  // namespace

RawSocket::RawSocket(const std::string& host, std::uint16_t port) : socket_(kNone) {
  startSockets();
  addrinfo hints{};
  hints.ai_socktype = SOCK_STREAM;
  hints.ai_flags = AI_NUMERICHOST;
  addrinfo* found = nullptr;
  if (getaddrinfo(host.c_str(), std::to_string(port).c_str(), &hints, &found) != 0)
    throw std::runtime_error("no numeric address: " + host);
  const SOCKET handle = socket(found->ai_family, SOCK_STREAM, 0);
  const int result = connect(handle, found->ai_addr, static_cast<int>(found->ai_addrlen));
  const int error = WSAGetLastError();
  freeaddrinfo(found);
  if (result != 0) {
    closesocket(handle);
    fail("connect", error);
  }
  socket_ = static_cast<std::intptr_t>(handle);
}

RawSocket::~RawSocket() {
  if (socket_ != kNone) closesocket(asSocket(socket_));
}

void RawSocket::send(std::string_view data) {
  while (!data.empty()) {
    const int count = ::send(asSocket(socket_), data.data(), static_cast<int>(data.size()), 0);
    if (count < 0) fail("send", WSAGetLastError());
    data.remove_prefix(static_cast<std::size_t>(count));
  }
}

std::size_t RawSocket::receiveSome(char* buffer, std::size_t size) {
  const int count = recv(asSocket(socket_), buffer, static_cast<int>(size), 0);
  if (count >= 0) return static_cast<std::size_t>(count);
  const int error = WSAGetLastError();
  if (error != WSAECONNRESET && error != WSAECONNABORTED) fail("recv", error);
  return 0;
}

}  // namespace testing_support
