// SPDX-License-Identifier: MIT
// An FTP server in memory that does what the fuzzer's bytes tell it to, and keeps account of what it has
// done.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tests/fuzz/Choices.h"
#include "tests/support/MemoryNetwork.h"

namespace fuzz {

class HostileFtp : public testing_support::MemoryPeer {
 public:
  using Link = std::shared_ptr<testing_support::MemoryLink>;

  struct Command {
    std::string verb;
    std::string argument;
    int first = 0;  // the codes of its first and its final reply, once they have arrived
    int final = 0;
  };

  // Of a file; listings are not recorded.
  struct Transfer {
    std::size_t command = 0;
    bool upload = false;
    std::uint64_t announced = 0;  // the size in the first reply
    std::string content;          // what has gone over the data connection
    bool whole = false;           // a download: all of the file, and its end was in good order
    bool answered = false;        // a final reply was planned, or none
    bool claimed = false;         // the server has called it complete
    bool ended = false;           // an upload: in good order, by the client
    Link control;
    Link data;
  };

  struct Settings {
    bool features = true;
    std::size_t fileSize = 0;  // of every file that is read
  };

  HostileFtp(Choices& choices, const Settings& settings) : choices_(choices), settings_(settings) {}
  void join(testing_support::MemoryNetwork& network) noexcept { network_ = &network; }

  [[nodiscard]] const std::vector<Command>& commands() const noexcept { return commands_; }
  [[nodiscard]] const std::vector<std::shared_ptr<Transfer>>& transfers() const noexcept {
    return transfers_;
  }
  // So far it has said nothing but replies: to each command line one final reply at most, in their order.
  [[nodiscard]] bool orderly() const noexcept { return orderly_; }
  // No listing had anything but rows in it.
  [[nodiscard]] bool plainListings() const noexcept { return plainListings_; }
  [[nodiscard]] std::string fileContent() const;

  void connecting(const Link& link, std::uint16_t port) override;
  void received(const Link& link) override;
  void left(const Link& link) override;
  std::size_t portion(std::size_t most) override;
  bool hurries() override { return choices_.of(4) == 1; }

 private:
  // One control connection.
  struct Session {
    Link link;
    Link data;               // what has come to the passive port
    std::uint16_t port;      // where the client listens, 0 = nowhere
    std::uint16_t dataPort;  // the passive one
  };
  using TransferPtr = std::shared_ptr<Transfer>;

  // How a command is answered.
  void take(Session& session, std::string_view line);
  void answer(Session& session, std::size_t index);
  void answerAsUsual(Session& session, std::size_t index);
  void openPort(Session& session, std::size_t index);
  void reply(const Link& link, std::size_t index, int code, std::string_view text);
  void arrive(const Link& link, std::size_t index, int code, std::string_view text);
  void sayUnasked(const Link& link, const std::string& text);
  void end(const Link& link, testing_support::MemoryLink::End how);
  void later(std::function<void()> event);

  // Transfers.
  void transfer(Session& session, std::size_t index);
  void openingReply(const TransferPtr& transfer, std::size_t size);
  void connectBack(const TransferPtr& transfer, std::uint16_t port);
  void sendContent(const TransferPtr& transfer, const std::string& content);
  void takeSlowly(const TransferPtr& transfer);
  void takeContent(const TransferPtr& transfer);
  void finalReply(const TransferPtr& transfer);
  std::string listing(bool facts);

  Choices& choices_;
  const Settings settings_;
  testing_support::MemoryNetwork* network_ = nullptr;
  std::vector<std::unique_ptr<Session>> sessions_;
  std::vector<Command> commands_;
  std::vector<TransferPtr> transfers_;
  std::chrono::milliseconds pause_{0};  // before the next event
  bool orderly_ = true;
  bool plainListings_ = true;
};

}  // namespace fuzz
