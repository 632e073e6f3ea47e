// SPDX-License-Identifier: MIT
#include "framework/internet/net/Sock.h"

#include <algorithm>
#include <array>

#include "framework/internet/net/InternetErrors.h"
#include "framework/internet/net/InternetLimits.h"
#include "framework/platform/stop_token.h"
#include "framework/platform/wait_watch.h"

namespace internet {

using platform::IoStatus;
using std::chrono::milliseconds;

milliseconds Deadline::left() const noexcept {
  const auto left = std::chrono::ceil<milliseconds>(at_ - std::chrono::steady_clock::now());
  return std::max(left, milliseconds(0));
}

platform::IoResult Sock::receive(void* buffer, std::size_t size) noexcept {
  return socket_.receive(buffer, size);
}

platform::IoResult Sock::send(const void* data, std::size_t size) noexcept {
  return socket_.send(data, size);
}

IoStatus Sock::shutdownSend() noexcept {
  socket_.shutdownSend();
  return IoStatus::done;
}

platform::SocketInterest Sock::interest(bool receive, bool send) noexcept {
  return {&socket_, receive, send};
}

Failure Sock::failureOf(IoStatus status) const {
  if (status == IoStatus::wouldBlock) return {kTimeout, {}};
  return {status == IoStatus::reset ? kConnectionReset : kConnectionAborted, {}};
}

bool wait(std::span<platform::SocketInterest> interests, const Deadline& deadline, std::intptr_t signal) {
  if (deadline.passed()) {
    platform::throwIfStopped();
    return false;
  }
  const milliseconds slice = platform::WaitWatch::sleepAtMost(std::min(deadline.left(), kWaitSlice));
  const platform::Wake wake = platform::waitForSockets(interests, slice, signal);
  if (wake == platform::Wake::stopped) throw platform::OperationStopped{};
  platform::WaitWatch::lookIfDue();
  if (wake == platform::Wake::ready) return true;
  if (deadline.passed()) return false;
  for (platform::SocketInterest& interest : interests) interest.ready = interest.socket != nullptr;
  return true;
}

void rest(milliseconds duration) {
  const Deadline deadline(duration);
  while (wait({}, deadline)) continue;
}

IoStatus sendAll(Sock& sock, std::string_view bytes, const Deadline& deadline) {
  while (!bytes.empty()) {
    const auto sent = sock.send(bytes.data(), bytes.size());
    if (sent.status == IoStatus::done) {
      bytes.remove_prefix(sent.bytes);
      continue;
    }
    std::array<platform::SocketInterest, 1> interest{{sock.interest(false, true)}};
    if (sent.status != IoStatus::wouldBlock || !wait(interest, deadline)) return sent.status;
  }
  return IoStatus::done;
}

void endInOrder(Sock& sock) noexcept {
  constexpr int kMostBlocks = 64;
  std::array<char, std::size_t{16} * 1024> block;
  static_cast<void>(sock.shutdownSend());
  for (int i = 0; i < kMostBlocks; ++i) {
    if (sock.receive(block.data(), block.size()).status != IoStatus::done) return;
  }
}

platform::IoResult receiveSome(Sock& sock, std::span<char> buffer, const Deadline& deadline) {
  for (;;) {
    const auto received = sock.receive(buffer.data(), buffer.size());
    std::array<platform::SocketInterest, 1> interest{{sock.interest(true, false)}};
    if (received.status != IoStatus::wouldBlock || !wait(interest, deadline)) return received;
  }
}

namespace {

// Attempts to connect that run side by side.
class Race {
 public:
  // The connected socket when that has gone at once.
  std::unique_ptr<Sock> start(const platform::SocketAddress& address) {
    platform::Socket socket;
    switch (socket.connect(address)) {
      case IoStatus::done:
        return std::make_unique<Sock>(std::move(socket));
      case IoStatus::wouldBlock:
        runners_.push_back(std::move(socket));
        break;
      default:
        break;
    }
    return nullptr;
  }

  // The first one that has arrived. Those that have failed are dropped.
  std::unique_ptr<Sock> winner() {
    for (std::size_t i = 0; i < runners_.size();) {
      const IoStatus status = runners_[i].connectResult();
      if (status == IoStatus::done) return std::make_unique<Sock>(std::move(runners_[i]));
      if (status == IoStatus::wouldBlock) {
        ++i;
      } else {
        runners_.erase(runners_.begin() + static_cast<std::ptrdiff_t>(i));
      }
    }
    return nullptr;
  }

  void waitFor(const Deadline& deadline) {
    std::array<platform::SocketInterest, platform::kMaxWaitedSockets> interests{};
    for (std::size_t i = 0; i < runners_.size(); ++i) interests[i] = {&runners_[i], false, true};
    static_cast<void>(wait(std::span(interests).first(runners_.size()), deadline));
  }

  [[nodiscard]] bool empty() const noexcept { return runners_.empty(); }
  [[nodiscard]] bool full() const noexcept { return runners_.size() == platform::kMaxWaitedSockets; }

 private:
  std::vector<platform::Socket> runners_;
};

}  // namespace

std::unique_ptr<Sock> connectToAny(const std::vector<platform::SocketAddress>& addresses,
                                   const Deadline& deadline) {
  Race race;
  auto next = addresses.begin();
  Deadline headStart(milliseconds(0));
  while (!deadline.passed()) {
    const bool more = next != addresses.end() && !race.full();
    if (more && (race.empty() || headStart.passed())) {
      if (auto connected = race.start(*next++)) return connected;
      headStart = Deadline(kNextAddressAfter);
      continue;
    }
    if (race.empty()) return nullptr;
    const bool nextComesFirst = more && headStart.left() < deadline.left();
    race.waitFor(nextComesFirst ? headStart : deadline);
    if (auto connected = race.winner()) return connected;
  }
  platform::throwIfStopped();
  return nullptr;
}

}  // namespace internet
