// SPDX-License-Identifier: MIT
// What the tests of HTTPDownloadFile over a network in memory have in common. Its clock tells each wait
// exactly.
#pragma once

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "tests/client/HttpDownloadTest.h"
#include "tests/client/PlainClient.h"
#include "tests/support/MemoryNetwork.h"

// Answers every request by `answer`.
class MemoryWeb final : public testing_support::MemoryPeer {
 public:
  using Link = std::shared_ptr<testing_support::MemoryLink>;
  using State = testing_support::MemoryLink::State;

  State firstState = State::established;
  std::size_t firstRoom = SIZE_MAX;  // that a link has for the request
  std::string answer;
  std::function<void()> onAnswer;
  std::function<void()> onPiece;  // whenever some of the answer is about to be received
  std::size_t pieceSize = SIZE_MAX;
  std::vector<Link> links;

  void connecting(const Link& link, std::uint16_t) override {
    link->state = firstState;
    link->room = firstRoom;
    links.push_back(link);
  }
  void received(const Link& link) override {
    if (!link->toServer.ends_with("\r\n\r\n")) return;
    link->toClient = answer;
    if (onAnswer) onAnswer();
  }
  void left(const Link&) override {}
  std::size_t portion(std::size_t most) override {
    if (onPiece && !links.empty() && !links.back()->toClient.empty()) onPiece();
    return std::min(most, pieceSize);
  }
};

class HttpMemoryTest : public HttpDownloadTest {
 protected:
  static std::string head(std::size_t length) {
    return "HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(length) + "\r\n\r\n";
  }
  std::uint32_t fetch() {
    return client.HTTPDownloadFile("127.0.0.1", "/a", 80, local.c_str(), nullptr, 0, 0);
  }
  // By a client whose OnPoll is the library's own.
  std::uint32_t fetchUnasked() {
    PlainClient plain(nullptr);
    return plain.HTTPDownloadFile("127.0.0.1", "/a", 80, local.c_str(), nullptr, 0, 0);
  }
  void pollBy(std::function<void()> look) {
    client.poll = [look = std::move(look)](auto...) -> QXBool {
      look();
      return 0;
    };
  }
  // The texts of the boxes that a fetch shows which fails.
  std::vector<std::string> failureOfFetch() {
    std::vector<std::string> texts;
    for (const auto& box : boxesOf([&] { EXPECT_EQ(fetch(), 0u); })) texts.push_back(box.text);
    return texts;
  }

  MemoryWeb server;
  testing_support::MemoryNetwork network{server};
};
