// SPDX-License-Identifier: MIT
// A plain blocking TCP connection for tests: to the fixture controller, and to talk to a server by hand.
// One thread at a time. Failures throw std::runtime_error.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace testing_support {

class RawSocket {
 public:
  // Connects to a numeric address ("127.0.0.1", "::1").
  RawSocket(const std::string& host, std::uint16_t port);
  ~RawSocket();
  RawSocket(RawSocket&& other) noexcept;
  RawSocket& operator=(RawSocket&& other) noexcept;

  void send(std::string_view data);
  void sendLine(std::string_view line) { send(std::string(line) + "\r\n"); }
  // The next line without its line end. Throws when the peer closes before the line is complete.
  std::string readLine();
  // Everything up to the peer's end, by FIN or by RST: Wine cannot always tell them apart. `limit` stops an
  // endless answer: reading ends at that many bytes or more.
  std::string readToEnd(std::size_t limit = SIZE_MAX);

 private:
  // Bytes received, 0 at the end or after a reset.
  std::size_t receiveSome(char* buffer, std::size_t size);

  static constexpr std::intptr_t kNone = -1;
  std::intptr_t socket_;
  std::string received_;
};

}  // namespace testing_support
