// SPDX-License-Identifier: MIT
#include "framework/internet/net/NameLookup.h"

#include <atomic>
#include <memory>
#include <utility>

#include "framework/internet/net/Failure.h"
#include "framework/internet/net/InternetErrors.h"
#include "framework/platform/last_error.h"
#include "framework/platform/resolver.h"
#include "framework/platform/stop_token.h"

namespace internet {

namespace {

std::atomic<Resolver> theResolver{&platform::lookUpAddresses};

// Shared by the waiting thread and the lookup's own; the last one frees it.
struct Lookup {
  std::string host;
  std::uint16_t port = 0;
  Resolver resolver = nullptr;
  std::vector<platform::SocketAddress> addresses;  // written before, read after `finished`
  std::atomic<bool> finished{false};
  platform::StopToken done;  // wakes the waiting thread
};

void run(void* argument) {
  const std::unique_ptr<std::shared_ptr<Lookup>> owner(static_cast<std::shared_ptr<Lookup>*>(argument));
  Lookup& lookup = **owner;
  try {
    lookup.addresses = lookup.resolver(lookup.host, lookup.port);
  } catch (...) {
    // Out of memory: the name counts as not resolved.
    lookup.addresses.clear();
  }
  lookup.finished.store(true, std::memory_order_release);
  lookup.done.raise();
}

}  // namespace

std::vector<platform::SocketAddress> resolve(const std::string& host, std::uint16_t port,
                                             const Deadline& deadline) {
  platform::throwIfStopped();
  auto addresses = platform::numericAddresses(host, port);
  if (!addresses.empty()) return addresses;

  const auto lookup = std::make_shared<Lookup>();
  lookup->host = host;
  lookup->port = port;
  lookup->resolver = theResolver.load(std::memory_order_acquire);
  const std::intptr_t done = lookup->done.nativeHandle();
  if (done == platform::StopToken::kNoHandle) fail(platform::kErrorNotEnoughMemory);
  auto argument = std::make_unique<std::shared_ptr<Lookup>>(lookup);
  if (!platform::startDetachedThread(run, argument.get())) fail(platform::kErrorNotEnoughMemory);
  // The thread's own from here on.
  static_cast<void>(argument.release());

  while (!lookup->finished.load(std::memory_order_acquire)) {
    if (!wait({}, deadline, done)) fail(kTimeout);
  }
  if (lookup->addresses.empty()) fail(kNameNotResolved);
  return lookup->addresses;
}

void setResolverForTesting(Resolver resolver) noexcept {
  theResolver.store(resolver ? resolver : &platform::lookUpAddresses, std::memory_order_release);
}

}  // namespace internet
