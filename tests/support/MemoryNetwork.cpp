// SPDX-License-Identifier: MIT
#include "tests/support/MemoryNetwork.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "framework/platform/stop_token.h"

namespace platform {

struct SocketAccess {
  static void set(Socket& socket, std::intptr_t number) noexcept { socket.socket_ = number; }
  static testing_support::MemoryNetwork::End& end(const Socket& socket) {
    return testing_support::MemoryNetwork::current().end(socket.socket_);
  }
  static testing_support::MemoryLink& link(const Socket& socket) { return *end(socket).link; }
};

}  // namespace platform

namespace testing_support {

namespace {

using std::chrono::milliseconds;
using std::chrono::nanoseconds;

// No conversation of a test needs a tenth of it: the client runs in circles.
constexpr std::uint64_t kMostCalls = 500'000;

thread_local MemoryNetwork* theNetwork = nullptr;

void require(bool condition) {
  if (!condition) std::abort();
}

bool isReady(const MemoryNetwork::End& end, const platform::SocketInterest& interest) {
  if (!end.link) return interest.read && (end.acceptFails || !end.arrived.empty());
  const MemoryLink& link = *end.link;
  if (link.state == MemoryLink::State::connecting) return false;
  if (link.state == MemoryLink::State::refused || link.server == MemoryLink::End::broken) return true;
  const bool readable = !link.toClient.empty() || link.server == MemoryLink::End::ended;
  return (interest.read && readable) || (interest.write && link.room > 0);
}

}  // namespace

MemoryNetwork::MemoryNetwork(MemoryPeer& peer, bool v6) : peer_(peer), v6_(v6) {
  require(!theNetwork);
  theNetwork = this;
}

MemoryNetwork::~MemoryNetwork() { theNetwork = nullptr; }

MemoryNetwork& MemoryNetwork::current() {
  require(theNetwork);
  return *theNetwork;
}

void MemoryNetwork::later(milliseconds after, std::function<void()> event) {
  const nanoseconds last = events_.empty() ? now_ : events_.back().at;
  events_.push_back({std::max(last, now_) + after, std::move(event)});
}

std::shared_ptr<MemoryLink> MemoryNetwork::connectToClient(std::uint16_t port, bool stranger) {
  for (auto& [number, end] : ends_) {
    if (end.link || end.port != port) continue;
    auto link = std::make_shared<MemoryLink>();
    link->state = MemoryLink::State::established;
    end.arrived.emplace_back(link, address(20, stranger));
    return link;
  }
  return nullptr;
}

void MemoryNetwork::failAccepts(std::uint16_t port) {
  for (auto& [number, end] : ends_) {
    if (!end.link && end.port == port) end.acceptFails = true;
  }
}

platform::SocketAddress MemoryNetwork::address(std::uint16_t port, bool stranger) const noexcept {
  platform::SocketAddress address;
  address.v6 = v6_;
  address.port = port;
  if (!v6_) address.host = {127, 0, 0};
  address.host[v6_ ? 15 : 3] = stranger ? 2 : 1;
  return address;
}

std::intptr_t MemoryNetwork::open(std::shared_ptr<MemoryLink> link) {
  const std::intptr_t number = nextNumber_++;
  End& end = ends_[number];
  end.link = std::move(link);
  end.port = static_cast<std::uint16_t>(40'000 + number % 20'000);
  return number;
}

void MemoryNetwork::close(std::intptr_t number, bool breaks) noexcept {
  const auto found = ends_.find(number);
  const std::shared_ptr<MemoryLink> link = found->second.link;
  // Nobody takes those that wait at a listening socket any more.
  for (const auto& [waiting, from] : found->second.arrived) waiting->clientBroken = true;
  ends_.erase(found);
  if (!link) return;
  const bool wasEnded = std::exchange(link->clientEnded, link->clientEnded || !breaks);
  link->clientBroken = breaks;
  if (link->state == MemoryLink::State::established && (breaks || !wasEnded)) peer_.left(link);
}

void MemoryNetwork::tick() {
  require(++calls_ < kMostCalls);
  platform::StopToken* const token = platform::StopToken::current();
  if (token && calls_ == stopAt_) token->raise();
  if (!events_.empty() && peer_.hurries()) happenUntil(now_);
}

// False when nothing was put off, or not to a time within the limit.
bool MemoryNetwork::happenUntil(nanoseconds limit) {
  if (events_.empty() || events_.front().at > limit) return false;
  const Event event = std::move(events_.front());
  events_.pop_front();
  now_ = std::max(now_, event.at);
  event.happen();
  return true;
}

bool MemoryNetwork::markReady(std::span<platform::SocketInterest> interests) {
  bool any = false;
  for (platform::SocketInterest& interest : interests) {
    interest.ready = interest.socket && interest.socket->isOpen() &&
                     isReady(platform::SocketAccess::end(*interest.socket), interest);
    any = any || interest.ready;
  }
  return any;
}

platform::Wake MemoryNetwork::wait(std::span<platform::SocketInterest> interests, milliseconds limit) {
  tick();
  const nanoseconds until = now_ + limit;
  do {
    if (platform::stopRequested()) return platform::Wake::stopped;
    if (markReady(interests)) return platform::Wake::ready;
  } while (happenUntil(until));
  now_ = until;
  return platform::Wake::timedOut;
}

}  // namespace testing_support

// --- The sockets of the platform ---

namespace platform {

using testing_support::MemoryLink;
using testing_support::MemoryNetwork;

const std::size_t kSendBlock = std::size_t{64} * 1024;

std::string addressText(const SocketAddress& address) { return address.v6 ? "::1" : "127.0.0.1"; }

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
  MemoryNetwork& network = MemoryNetwork::current();
  network.tick();
  const auto link = std::make_shared<MemoryLink>();
  SocketAccess::set(*this, network.open(link));
  network.peer().connecting(link, peer.port);
  if (link->state == MemoryLink::State::established) return IoStatus::done;
  if (link->state == MemoryLink::State::connecting) return IoStatus::wouldBlock;
  close();
  return IoStatus::failed;
}

IoStatus Socket::connectResult() noexcept {
  MemoryNetwork::current().tick();
  switch (SocketAccess::link(*this).state) {
    case MemoryLink::State::established:
      return IoStatus::done;
    case MemoryLink::State::connecting:
      return IoStatus::wouldBlock;
    default:
      return IoStatus::failed;
  }
}

bool Socket::listen(const SocketAddress&) noexcept {
  close();
  SocketAccess::set(*this, MemoryNetwork::current().open(nullptr));
  return true;
}

IoStatus Socket::accept(Socket& accepted, SocketAddress& peer) noexcept {
  MemoryNetwork& network = MemoryNetwork::current();
  network.tick();
  MemoryNetwork::End& end = SocketAccess::end(*this);
  if (end.acceptFails) return IoStatus::failed;
  if (end.arrived.empty()) return IoStatus::wouldBlock;
  const auto [link, from] = std::move(end.arrived.front());
  end.arrived.pop_front();
  accepted.close();
  SocketAccess::set(accepted, network.open(link));
  peer = from;
  return IoStatus::done;
}

std::optional<SocketAddress> Socket::localAddress() const noexcept {
  const MemoryNetwork& network = MemoryNetwork::current();
  return network.address(SocketAccess::end(*this).port);
}

// The system does not know the peer of a broken connection any more.
std::optional<SocketAddress> Socket::peerAddress() const noexcept {
  if (SocketAccess::link(*this).server == MemoryLink::End::broken) return std::nullopt;
  return MemoryNetwork::current().address(21);
}

IoResult Socket::receive(void* buffer, std::size_t size) noexcept {
  MemoryNetwork& network = MemoryNetwork::current();
  network.tick();
  MemoryLink& link = SocketAccess::link(*this);
  if (!link.toClient.empty()) {
    const std::size_t count = network.peer().portion(std::min(size, link.toClient.size()));
    std::memcpy(buffer, link.toClient.data(), count);
    link.toClient.erase(0, count);
    return {IoStatus::done, count};
  }
  if (link.server == MemoryLink::End::open) return {IoStatus::wouldBlock, 0};
  return {link.server == MemoryLink::End::ended ? IoStatus::closed : IoStatus::reset, 0};
}

IoResult Socket::send(const void* data, std::size_t size) noexcept {
  MemoryNetwork& network = MemoryNetwork::current();
  network.tick();
  const std::shared_ptr<MemoryLink> link = SocketAccess::end(*this).link;
  if (link->server == MemoryLink::End::broken) return {IoStatus::reset, 0};
  if (link->room == 0) return {IoStatus::wouldBlock, 0};
  const std::size_t count = network.peer().portion(std::min(size, link->room));
  if (link->room != SIZE_MAX) link->room -= count;
  link->sent += count;
  if (link->server == MemoryLink::End::ended) {
    // Nobody is there to take it: the answer is a reset.
    link->server = MemoryLink::End::broken;
  } else {
    link->toServer.append(static_cast<const char*>(data), count);
    network.peer().received(link);
  }
  return {IoStatus::done, count};
}

std::uint64_t Socket::deliveryMark() const noexcept {
  const MemoryLink& link = SocketAccess::link(*this);
  return link.sent - link.held;
}

void Socket::shutdownSend() noexcept {
  const std::shared_ptr<MemoryLink> link = SocketAccess::end(*this).link;
  if (!std::exchange(link->clientEnded, true)) MemoryNetwork::current().peer().left(link);
}

void Socket::keepAlive() noexcept {}

void Socket::noDelay() noexcept {}

void Socket::close() noexcept {
  if (isOpen()) MemoryNetwork::current().close(std::exchange(socket_, kNone), false);
}

void Socket::abort() noexcept {
  if (isOpen()) MemoryNetwork::current().close(std::exchange(socket_, kNone), true);
}

Wake waitForSockets(std::span<SocketInterest> interests, std::chrono::milliseconds limit,
                    std::intptr_t) noexcept {
  return MemoryNetwork::current().wait(interests, limit);
}

}  // namespace platform

// --- The clock ---

// The linker leads steady_clock::now() here (--wrap), and what is called __real_ to the original.
std::chrono::steady_clock::time_point originalNow() noexcept
    __asm__("__real__ZNSt6chrono3_V212steady_clock3nowEv");
std::chrono::steady_clock::time_point networkNow() noexcept
    __asm__("__wrap__ZNSt6chrono3_V212steady_clock3nowEv");

std::chrono::steady_clock::time_point networkNow() noexcept {
  if (!testing_support::theNetwork) return originalNow();
  return std::chrono::steady_clock::time_point(testing_support::theNetwork->now());
}
