// SPDX-License-Identifier: MIT
// What the system's settings say of proxies, by a wait that can be given up.
#pragma once

#include <optional>
#include <vector>

#include "framework/internet/net/Sock.h"
#include "framework/platform/proxies.h"

namespace internet {

// The ways to `target` in the order in which they are to be tried, at least one. Fails (internet::Failure)
// with 12002 when the system does not tell before the deadline. Leaves by platform::OperationStopped.
std::vector<platform::Proxy> waysTo(const platform::ProxyTarget& target, const Deadline& deadline);

// As platform/proxies.h tells of its two functions.
struct ProxySource {
  using AtOnce = std::optional<std::vector<platform::Proxy>> (*)(const platform::ProxyTarget& target);
  using InTime = std::vector<platform::Proxy> (*)(const platform::ProxyTarget& target);
  AtOnce atOnce = &platform::proxiesAtOnce;
  InTime inTime = &platform::proxiesFor;
};

// Replaces the system's settings for the whole process; null brings them back. What it points to stays.
void setProxiesForTesting(const ProxySource* source) noexcept;

}  // namespace internet
