// SPDX-License-Identifier: MIT
// A network in memory with one server program at its far end. A program that links qx_memory_network has it
// in place of the system's sockets: the same input gives the same run, on every machine. Time stands still
// but for the waits on sockets, which pass it at once: while a network exists, its thread's steady_clock
// tells the network's time. One network per thread at a time.
#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "framework/platform/socket.h"

namespace testing_support {

// One connection. The server's side is free to change what is its own.
struct MemoryLink {
  enum class State { connecting, established, refused };
  enum class End { open, ended, broken };

  // The server's own.
  State state = State::connecting;
  std::string toClient;         // arrived, not received yet
  End server = End::open;       // behind the bytes of toClient
  std::size_t room = SIZE_MAX;  // so many bytes the client can send before it has to wait
  std::uint64_t held = 0;       // so many of those sent are still on the client's side

  // The client's.
  std::string toServer;       // the server takes out what it has read
  std::uint64_t sent = 0;     // bytes in all
  bool clientEnded = false;   // in good order
  bool clientBroken = false;  // by a reset; perhaps behind an end
};

// The server program. Called in the middle of the client's calls.
class MemoryPeer {
 public:
  virtual ~MemoryPeer() = default;
  // The client connects: the link may be established or refused at once, later, or never.
  virtual void connecting(const std::shared_ptr<MemoryLink>& link, std::uint16_t port) = 0;
  // There is more in link.toServer.
  virtual void received(const std::shared_ptr<MemoryLink>& link) = 0;
  // The client has ended or broken an established link.
  virtual void left(const std::shared_ptr<MemoryLink>& link) = 0;
  // How many of `most` bytes a call of the client moves: 1 to `most`.
  virtual std::size_t portion(std::size_t most) { return most; }
  // Whether the next event happens right now, though the client does not wait for it.
  virtual bool hurries() { return false; }
};

class MemoryNetwork {
 public:
  explicit MemoryNetwork(MemoryPeer& peer, bool v6 = false);
  ~MemoryNetwork();
  MemoryNetwork(const MemoryNetwork&) = delete;
  MemoryNetwork& operator=(const MemoryNetwork&) = delete;

  // --- For the server ---

  // Happens `after` what was put off last, as soon as the client waits for so long.
  void later(std::chrono::milliseconds after, std::function<void()> event);
  // A connection to the client's listening socket; null when nobody listens there. A stranger's comes from
  // another host.
  std::shared_ptr<MemoryLink> connectToClient(std::uint16_t port, bool stranger = false);
  // The client's listening socket cannot accept any more.
  void failAccepts(std::uint16_t port);

  // --- For the test ---

  // Raises the stop token of the calling thread at that call of the client.
  void stopAt(std::uint64_t call) noexcept { stopAt_ = call; }
  [[nodiscard]] std::uint64_t calls() const noexcept { return calls_; }
  [[nodiscard]] std::size_t openSockets() const noexcept { return ends_.size(); }
  [[nodiscard]] std::chrono::nanoseconds now() const noexcept { return now_; }
  // Time goes by without a wait.
  void pass(std::chrono::nanoseconds time) noexcept { now_ += time; }

  // --- For the sockets ---

  static MemoryNetwork& current();
  [[nodiscard]] bool v6() const noexcept { return v6_; }
  [[nodiscard]] MemoryPeer& peer() noexcept { return peer_; }

  // The client's end of a connection, or a listening socket.
  struct End {
    std::shared_ptr<MemoryLink> link;  // null: listens
    std::uint16_t port = 0;
    bool acceptFails = false;
    std::deque<std::pair<std::shared_ptr<MemoryLink>, platform::SocketAddress>> arrived;
  };
  // Their numbers begin at 1.
  std::intptr_t open(std::shared_ptr<MemoryLink> link);
  void close(std::intptr_t number, bool breaks) noexcept;
  [[nodiscard]] End& end(std::intptr_t number) { return ends_.at(number); }
  // At the start of every call that moves something. Ends the program when there are too many.
  void tick();
  platform::Wake wait(std::span<platform::SocketInterest> interests, std::chrono::milliseconds limit);
  [[nodiscard]] platform::SocketAddress address(std::uint16_t port, bool stranger = false) const noexcept;

 private:
  struct Event {
    std::chrono::nanoseconds at;
    std::function<void()> happen;
  };

  bool happenUntil(std::chrono::nanoseconds limit);
  bool markReady(std::span<platform::SocketInterest> interests);

  MemoryPeer& peer_;
  const bool v6_;
  std::map<std::intptr_t, End> ends_;
  std::intptr_t nextNumber_ = 1;
  std::deque<Event> events_;
  std::chrono::nanoseconds now_{std::chrono::hours(1)};
  std::uint64_t calls_ = 0;
  std::uint64_t stopAt_ = 0;
};

}  // namespace testing_support
