// SPDX-License-Identifier: MIT
#include "framework/internet/net/NameLookup.h"

#include <atomic>

#include "framework/internet/net/Aside.h"
#include "framework/internet/net/Failure.h"
#include "framework/internet/net/InternetErrors.h"
#include "framework/platform/resolver.h"
#include "framework/platform/stop_token.h"

namespace internet {

namespace {

std::atomic<Resolver> theResolver{&platform::lookUpAddresses};

}  // namespace

std::vector<platform::SocketAddress> resolve(const std::string& host, std::uint16_t port,
                                             const Deadline& deadline) {
  platform::throwIfStopped();
  auto addresses = platform::numericAddresses(host, port);
  if (!addresses.empty()) return addresses;

  const Resolver resolver = theResolver.load(std::memory_order_acquire);
  addresses = aside<std::vector<platform::SocketAddress>>(
      [resolver, host, port] { return resolver(host, port); }, deadline);
  if (addresses.empty()) fail(kNameNotResolved);
  return addresses;
}

void setResolverForTesting(Resolver resolver) noexcept {
  theResolver.store(resolver ? resolver : &platform::lookUpAddresses, std::memory_order_release);
}

}  // namespace internet
