// SPDX-License-Identifier: MIT
// A connected stream of the internet layer. receive() and send() are virtual so that a stream with encryption
// can take this one's place. wait() is the only place of the internet layer that blocks; it watches the
// calling thread's stop token and leaves by platform::OperationStopped.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "framework/internet/net/Failure.h"
#include "framework/platform/socket.h"

namespace internet {

class Deadline {
 public:
  explicit Deadline(std::chrono::milliseconds limit) noexcept
      : at_(std::chrono::steady_clock::now() + limit) {}
  [[nodiscard]] bool passed() const noexcept { return std::chrono::steady_clock::now() >= at_; }
  // Rounded up, so that a wait does not end before the deadline has passed.
  [[nodiscard]] std::chrono::milliseconds left() const noexcept;

 private:
  std::chrono::steady_clock::time_point at_;
};

// Tells whether the peer takes what was sent; never where the system does not tell.
class DeliveryWatch {
 public:
  explicit DeliveryWatch(const platform::Socket& socket) noexcept
      : socket_(&socket), mark_(socket.deliveryMark()) {}
  // True when the peer has taken more since the last call.
  [[nodiscard]] bool moved() noexcept {
    const std::uint64_t mark = socket_->deliveryMark();
    return std::exchange(mark_, mark) != mark;
  }

 private:
  const platform::Socket* socket_;
  std::uint64_t mark_;
};

class Sock {
 public:
  explicit Sock(platform::Socket socket) noexcept : socket_(std::move(socket)) {}
  virtual ~Sock() = default;
  Sock(const Sock&) = delete;
  Sock& operator=(const Sock&) = delete;

  // Never block. After receive() has given less than asked for, nothing that came is held back.
  [[nodiscard]] virtual platform::IoResult receive(void* buffer, std::size_t size) noexcept;
  [[nodiscard]] virtual platform::IoResult send(const void* data, std::size_t size) noexcept;
  // wouldBlock: once more after a wait for writing.
  [[nodiscard]] virtual platform::IoStatus shutdownSend() noexcept;

  // What to wait for before the next receive(), before the next send(), or for either.
  [[nodiscard]] virtual platform::SocketInterest interest(bool receive, bool send) noexcept;
  [[nodiscard]] platform::Socket& socket() noexcept { return socket_; }

  // What a status of this stream that is not what it should be means to the caller; wouldBlock: 12002.
  [[nodiscard]] virtual Failure failureOf(platform::IoStatus status) const;

 private:
  platform::Socket socket_;
};

// Waits until one of the sockets (or `signal`, see platform/socket.h) may be ready and marks it so: true.
// False when the deadline has passed. A long wait is cut into slices after which everything is worth another
// try, so a readiness that the system forgot to tell costs a second, not the transfer. The thread's WaitWatch
// looks meanwhile. Throws platform::OperationStopped.
bool wait(std::span<platform::SocketInterest> interests, const Deadline& deadline,
          std::intptr_t signal = platform::kNoSignal);

// Lets the time pass, as a wait for what never comes.
void rest(std::chrono::milliseconds duration);

// Sends all. wouldBlock: not done before the deadline. Throws platform::OperationStopped, as the next one.
platform::IoStatus sendAll(Sock& sock, std::string_view bytes, const Deadline& deadline);
// The last of a stream that is to end in good order: says that ours is whole, and drops what has come unread.
// Such bytes would turn the end of the connection into a reset, which a server may take for a failure.
void endInOrder(Sock& sock) noexcept;
// What has come, at least one byte; wouldBlock: nothing before the deadline.
platform::IoResult receiveSome(Sock& sock, std::span<char> buffer, const Deadline& deadline);

// Connects to the first address that answers; the next one is tried after a refusal or after
// kNextAddressAfter without an answer, while the earlier attempts go on. Null when none answers before the
// deadline.
std::unique_ptr<Sock> connectToAny(const std::vector<platform::SocketAddress>& addresses,
                                   const Deadline& deadline);

}  // namespace internet
