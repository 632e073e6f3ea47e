// SPDX-License-Identifier: MIT
// Contract: stream sockets over IPv4 and IPv6. All calls but waitForSockets() return at once. A caller tries
// its operation first and waits only after wouldBlock: on Windows a readiness is signalled once per attempt.
// One thread at a time per socket. Sockets need process.h's startSockets() first; the calls here see to it.
#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace platform {

struct SocketAddress {
  bool v6 = false;
  std::array<std::uint8_t, 16> host{};  // network byte order; IPv4 in the first four
  std::uint32_t scope = 0;              // IPv6 zone
  std::uint16_t port = 0;

  // The same host, whatever the port.
  [[nodiscard]] bool sameHost(const SocketAddress& other) const noexcept {
    return v6 == other.v6 && host == other.host;
  }
};

// "192.0.2.1", "2001:db8::1"; without zone and port.
std::string addressText(const SocketAddress& address);

enum class IoStatus {
  done,
  wouldBlock,
  closed,  // the peer has ended its stream in good order
  reset,   // the connection was broken by the peer
  failed   // any other failure
};

// The bytes to send at a time from a file: as few as stay in the processor's cache between reading and
// sending, as many as the cost of a call asks for.
extern const std::size_t kSendBlock;

struct IoResult {
  IoStatus status = IoStatus::failed;
  std::size_t bytes = 0;  // moved, with done
};

class Socket {
 public:
  Socket() noexcept = default;
  ~Socket();  // close()
  Socket(Socket&& other) noexcept;
  Socket& operator=(Socket&& other) noexcept;

  // Starts to connect: done, wouldBlock (then connectResult() after a wait for writing) or failed.
  [[nodiscard]] IoStatus connect(const SocketAddress& peer) noexcept;
  [[nodiscard]] IoStatus connectResult() noexcept;
  // Listens on `local` with a port of the system's choice for one connection.
  [[nodiscard]] bool listen(const SocketAddress& local) noexcept;
  // done with `accepted` and `peer` set, wouldBlock or failed.
  [[nodiscard]] IoStatus accept(Socket& accepted, SocketAddress& peer) noexcept;

  [[nodiscard]] bool isOpen() const noexcept { return socket_ != kNone; }
  [[nodiscard]] std::optional<SocketAddress> localAddress() const noexcept;
  [[nodiscard]] std::optional<SocketAddress> peerAddress() const noexcept;

  [[nodiscard]] IoResult receive(void* buffer, std::size_t size) noexcept;
  [[nodiscard]] IoResult send(const void* data, std::size_t size) noexcept;

  // Changes whenever the peer's system has taken more of what was sent. Constant where the system does not
  // tell.
  [[nodiscard]] std::uint64_t deliveryMark() const noexcept;

  // Ends the outgoing stream; what was sent still arrives.
  void shutdownSend() noexcept;
  // Lets the system probe an idle connection.
  void keepAlive() noexcept;
  // Small writes leave at once.
  void noDelay() noexcept;
  void close() noexcept;
  // Closes so that the peer sees a broken connection, not an ended stream.
  void abort() noexcept;

 private:
  friend struct SocketAccess;  // the implementation's view
  static constexpr std::intptr_t kNone = -1;
  std::intptr_t socket_ = kNone;
  std::intptr_t event_ = 0;  // Windows: the event that the socket signals
};

// A socket and what to wait for on it. A listening socket is readable when somebody connects, a connecting
// one writable when that has ended.
struct SocketInterest {
  const Socket* socket = nullptr;  // null or closed: never ready
  bool read = false;
  bool write = false;
  bool ready = false;  // out: worth a try
};

enum class Wake { ready, stopped, timedOut };

inline constexpr std::size_t kMaxWaitedSockets = 8;
inline constexpr std::intptr_t kNoSignal = -1;

// Waits until one of at most kMaxWaitedSockets sockets may be ready, until `signal` (a handle as
// StopToken::nativeHandle() gives) is signalled (ready), until the calling thread's stop token is raised
// (stopped, ahead of everything else), or until `limit` has passed. A ready socket may still block.
Wake waitForSockets(std::span<SocketInterest> interests, std::chrono::milliseconds limit,
                    std::intptr_t signal = kNoSignal) noexcept;

}  // namespace platform
