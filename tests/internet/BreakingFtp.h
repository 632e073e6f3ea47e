// SPDX-License-Identifier: MIT
// An FTP server in memory with one file. Its connections break where the seed wants it: in the data, between
// two replies and in the middle of one. What it can do, and what it only says it can, is for the test to set.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "tests/support/MemoryNetwork.h"

namespace internet_tests {

class Choices {
 public:
  explicit Choices(std::uint32_t seed) : engine_(seed) {}
  // 0 to `count` - 1.
  std::uint32_t of(std::size_t count) { return number() % static_cast<std::uint32_t>(count); }
  std::uint32_t number() { return static_cast<std::uint32_t>(engine_()); }

 private:
  std::mt19937 engine_;
};

class BreakingFtp : public testing_support::MemoryPeer {
 public:
  using Link = std::shared_ptr<testing_support::MemoryLink>;

  enum class Restarts {
    both,
    downloads,      // REST is taken, STOR behind it is not
    none,           // REST is refused
    inWords,        // both begin at the start all the same
    uploadsInWords  // STOR does
  };
  struct Abilities {
    bool tellsSize = true;
    bool tellsTime = true;
    Restarts restarts = Restarts::both;
  };
  struct File {
    std::string content;
    std::string time = "20240102030405";
  };

  BreakingFtp(std::uint32_t seed, const Abilities& abilities, File served)
      : file(std::move(served)), choices_(seed), abilities_(abilities) {}

  File file;
  std::size_t breaks = 0;    // so far
  std::size_t restarts = 0;  // transfers behind the start

  void connecting(const Link& link, std::uint16_t port) override;
  void received(const Link& link) override;
  void left(const Link& link) override;
  std::size_t portion(std::size_t most) override { return 1 + choices_.of(most); }

 private:
  // A transfer over the latest data connection.
  struct Transfer {
    Link control;
    Link data;
    bool upload = false;
    std::size_t room = 0;  // bytes until it breaks
    bool late = false;     // an upload: read only when all is on its way
  };

  [[nodiscard]] bool happens(std::uint32_t oneIn) { return choices_.of(oneIn) == 0; }
  [[nodiscard]] std::size_t breakAfter(std::size_t most);
  void answer(const Link& link, const std::string& line);
  void reply(const Link& link, const std::string& text);
  void begin(const Link& link, bool upload);
  void send(Transfer& transfer, std::size_t start);
  void take(Transfer& transfer);
  void breakOff(Transfer& transfer);
  static void end(const Link& link, testing_support::MemoryLink::End how);

  static constexpr std::uint16_t kControlPort = 21;

  Choices choices_;
  const Abilities abilities_;
  std::size_t position_ = 0;  // of the last REST
  Link data_;
  std::optional<Transfer> transfer_;
};

}  // namespace internet_tests
