// SPDX-License-Identifier: MIT
// Name resolution that can be given up: the system's lookup runs aside (Aside.h).
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "framework/internet/net/Sock.h"

namespace internet {

// The addresses of `host`; a numeric address needs no lookup. Fails (internet::Failure) with 12007 when the
// name does not resolve, 12002 after the deadline. Leaves by platform::OperationStopped.
std::vector<platform::SocketAddress> resolve(const std::string& host, std::uint16_t port,
                                             const Deadline& deadline);

using Resolver = std::vector<platform::SocketAddress> (*)(const std::string& host, std::uint16_t port);

// Replaces the system's lookup of names for the whole process; null brings it back.
void setResolverForTesting(Resolver resolver) noexcept;

}  // namespace internet
