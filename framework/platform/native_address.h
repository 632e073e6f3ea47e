// SPDX-License-Identifier: MIT
// The part of the socket interface that both systems have in common: addresses as the system has them, and
// lookups. Only for windows/ and posix/ files, which include their system's socket headers first.
#pragma once

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "framework/platform/socket.h"

namespace platform {

struct NativeAddress {
  sockaddr_storage storage{};
  socklen_t length = sizeof(sockaddr_storage);

  sockaddr* get() noexcept { return reinterpret_cast<sockaddr*>(&storage); }
};

inline NativeAddress toNative(const SocketAddress& address) noexcept {
  NativeAddress native;
  if (address.v6) {
    sockaddr_in6 in{};
    in.sin6_family = AF_INET6;
    in.sin6_port = htons(address.port);
    in.sin6_scope_id = address.scope;
    std::memcpy(&in.sin6_addr, address.host.data(), 16);
    std::memcpy(&native.storage, &in, sizeof in);
    native.length = sizeof in;
  } else {
    sockaddr_in in{};
    in.sin_family = AF_INET;
    in.sin_port = htons(address.port);
    std::memcpy(&in.sin_addr, address.host.data(), 4);
    std::memcpy(&native.storage, &in, sizeof in);
    native.length = sizeof in;
  }
  return native;
}

// None for another family.
inline std::optional<SocketAddress> fromNative(const sockaddr* native) noexcept {
  SocketAddress address;
  if (native->sa_family == AF_INET6) {
    sockaddr_in6 in{};
    std::memcpy(&in, native, sizeof in);
    address.v6 = true;
    address.port = ntohs(in.sin6_port);
    address.scope = in.sin6_scope_id;
    std::memcpy(address.host.data(), &in.sin6_addr, 16);
  } else if (native->sa_family == AF_INET) {
    sockaddr_in in{};
    std::memcpy(&in, native, sizeof in);
    address.port = ntohs(in.sin_port);
    std::memcpy(address.host.data(), &in.sin_addr, 4);
  } else {
    return std::nullopt;
  }
  return address;
}

// getsockname or getpeername.
template <class Query, class Handle>
std::optional<SocketAddress> queriedAddress(Query query, Handle handle) noexcept {
  NativeAddress native;
  if (query(handle, native.get(), &native.length) != 0) return std::nullopt;
  return fromNative(native.get());
}

inline std::string nativeAddressText(const SocketAddress& address) {
  std::array<char, 64> text{};
  if (!inet_ntop(address.v6 ? AF_INET6 : AF_INET, address.host.data(), text.data(), text.size())) return {};
  return text.data();
}

inline std::vector<SocketAddress> nativeLookUp(const std::string& host, std::uint16_t port, int flags) {
  addrinfo hints{};
  hints.ai_family = AF_UNSPEC;
  hints.ai_socktype = SOCK_STREAM;
  hints.ai_flags = flags;
  addrinfo* found = nullptr;
  if (getaddrinfo(host.c_str(), nullptr, &hints, &found) != 0) return {};
  const std::unique_ptr<addrinfo, void (*)(addrinfo*)> owner(found,
                                                             [](addrinfo* list) { freeaddrinfo(list); });
  std::vector<SocketAddress> addresses;
  for (const addrinfo* entry = found; entry; entry = entry->ai_next) {
    if (auto address = fromNative(entry->ai_addr)) {
      address->port = port;
      addresses.push_back(*address);
    }
  }
  return addresses;
}

}  // namespace platform
