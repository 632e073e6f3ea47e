// SPDX-License-Identifier: MIT
// Contract: host names to addresses, and the thread that a slow lookup may be left behind on.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "framework/platform/socket.h"

namespace platform {

// The addresses of a name or of a numeric address in the system's order of preference; none when it does not
// resolve. Blocks for as long as the system's resolver takes.
std::vector<SocketAddress> lookUpAddresses(const std::string& host, std::uint16_t port);

// The same for a numeric address only ("192.0.2.1", "::1", "fe80::1%eth0"); returns at once.
std::vector<SocketAddress> numericAddresses(const std::string& host, std::uint16_t port);

// Runs `entry(argument)` on a thread that nobody joins. The library stays loaded until that thread has ended.
// False when the system gives no thread.
[[nodiscard]] bool startDetachedThread(void (*entry)(void*), void* argument) noexcept;

}  // namespace platform
