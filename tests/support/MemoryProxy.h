// SPDX-License-Identifier: MIT
// A proxy in memory in front of a server in memory. It answers in order and hands a connection on to the
// server at once, so that the server's first bytes come in one piece with the proxy's last.
#pragma once

#include <algorithm>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/support/MemoryNetwork.h"

namespace testing_support {

class MemoryProxy : public MemoryPeer {
 public:
  using Link = std::shared_ptr<MemoryLink>;

  explicit MemoryProxy(MemoryPeer& server) noexcept : server_(server) {}

  // What a test may change of an answer before it goes out.
  struct Answer {
    std::string bytes;
    bool opens = false;  // the connection is the server's behind it
    MemoryLink::End end = MemoryLink::End::open;
  };
  // `heard`: the client's whole message; `number`: how many it has sent on all connections before.
  std::function<void(const std::string& heard, std::size_t number, Answer& answer)> onAnswer;
  // Of SOCKS: the proxy wants a user and a password.
  bool wantsLogin = false;
  MemoryLink::State firstState = MemoryLink::State::established;
  std::size_t mostAtOnce = SIZE_MAX;  // bytes of one call

  std::vector<std::string> heard;          // the client's messages
  std::vector<std::uint16_t> connections;  // the ports of ours that it has come to

  // The server's port in a message that asks for a connection; 0: it is none.
  static std::uint16_t portAskedFor(const std::string& message) {
    if (message.starts_with("CONNECT ")) {
      const std::size_t end = message.find(" HTTP/");
      return static_cast<std::uint16_t>(std::stoi(message.substr(message.rfind(':', end) + 1)));
    }
    if (!message.starts_with(std::string_view("\5\1\0", 3)) || message.size() < 10) return 0;
    const auto byte = [&](std::size_t back) {
      return static_cast<unsigned char>(message[message.size() - back]);
    };
    return static_cast<std::uint16_t>(byte(2) << 8 | byte(1));
  }

  void connecting(const Link& link, std::uint16_t port) override {
    connections.push_back(port);
    link->state = firstState;
  }

  void received(const Link& link) override {
    if (through_.contains(link)) return server_.received(link);
    if (!isWhole(link)) return;
    greeted_.insert(link);
    const std::string message = std::exchange(link->toServer, {});
    Answer answer = answerTo(message);
    if (onAnswer) onAnswer(message, heard.size(), answer);
    heard.push_back(message);
    link->server = answer.end;
    if (answer.opens) {
      through_.insert(link);
      server_.connecting(link, portAskedFor(message));
    }
    link->toClient.insert(0, answer.bytes);
  }

  void left(const Link& link) override {
    if (through_.erase(link) > 0) server_.left(link);
  }

  std::size_t portion(std::size_t most) override { return std::min(most, mostAtOnce); }

 private:
  [[nodiscard]] bool isWhole(const Link& link) const {
    const std::string& bytes = link->toServer;
    const auto byte = [&](std::size_t at) {
      return at < bytes.size() ? static_cast<unsigned char>(bytes[at]) : 0u;
    };
    if (byte(0) != 5 && byte(0) != 1) return bytes.ends_with("\r\n\r\n");
    if (!greeted_.contains(link)) return bytes.size() == 2 + byte(1);
    if (byte(0) == 1) return bytes.size() > 2 && bytes.size() == 3 + byte(1) + byte(2 + byte(1));
    const std::size_t host = byte(3) == 1 ? 4 : byte(3) == 4 ? 16 : 1 + byte(4);
    return bytes.size() > 4 && bytes.size() == 4 + host + 2;
  }

  Answer answerTo(const std::string& message) const {
    using std::string_literals::operator""s;
    if (message.starts_with("CONNECT ")) return {"HTTP/1.1 200 Here you are\r\nVia: memory\r\n\r\n", true};
    if (message.front() == 1) return {"\1\0"s};
    if (portAskedFor(message) != 0) return {"\5\0\0\1\177\0\0\1\0\25"s, true};
    return {wantsLogin ? "\5\2"s : "\5\0"s};
  }

  MemoryPeer& server_;
  std::set<Link> greeted_;
  std::set<Link> through_;
};

}  // namespace testing_support
