// SPDX-License-Identifier: MIT
#include "framework/internet/net/ProxySettings.h"

#include <atomic>

#include "framework/internet/net/Aside.h"

namespace internet {

namespace {

constexpr ProxySource kSystem;

std::atomic<const ProxySource*> theSource{&kSystem};

}  // namespace

std::vector<platform::Proxy> waysTo(const platform::ProxyTarget& target, const Deadline& deadline) {
  using Proxies = std::vector<platform::Proxy>;
  const ProxySource& source = *theSource.load(std::memory_order_acquire);
  auto known = source.atOnce(target);
  Proxies ways = known
                     ? std::move(*known)
                     : aside<Proxies>([inTime = source.inTime, target] { return inTime(target); }, deadline);
  if (ways.empty()) ways.emplace_back();
  return ways;
}

void setProxiesForTesting(const ProxySource* source) noexcept {
  theSource.store(source ? source : &kSystem, std::memory_order_release);
}

}  // namespace internet
