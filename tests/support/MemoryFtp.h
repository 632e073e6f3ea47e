// SPDX-License-Identifier: MIT
// An FTP server in memory that answers each command by a fixed text; for what no server over real sockets can
// be brought to do on every machine.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/MemoryNetwork.h"

namespace testing_support {

class MemoryFtp : public MemoryPeer {
 public:
  using Link = std::shared_ptr<MemoryLink>;

  // By verb, line ends included; any other command is done.
  std::map<std::string, std::string> answers{{"USER", "331 Password?\r\n"},
                                             {"PASS", "230 Welcome\r\n"},
                                             {"EPSV", "229 Here (|||1000|)\r\n"},
                                             {"PWD", "257 \"/\"\r\n"},
                                             {"SIZE", "550 Not told\r\n"}};
  // What becomes of several lines in one packet: all are answered; the first one is, and the rest is lost; or
  // one 500 is the answer to the whole.
  enum class Packets { taken, cutToOneLine, refused };
  Packets packets = Packets::taken;
  MemoryLink::State passiveState = MemoryLink::State::established;  // of a passive connection at first
  // Called behind the answer.
  std::function<void(const std::string& line)> onCommand;
  // Called when the client has ended or broken a connection.
  std::function<void(const Link& link)> onLeft;

  std::vector<std::string> lines;  // that it has answered, of all control connections
  std::size_t crowdedPackets = 0;  // that held more than one line
  Link control;                    // the last one
  Link data;                       // the last passive one

  void connecting(const Link& link, std::uint16_t port) override {
    link->state = port == kControlPort ? MemoryLink::State::established : passiveState;
    (port == kControlPort ? control : data) = link;
    if (port == kControlPort) link->toClient = "220 Ready\r\n";
  }

  void received(const Link& link) override {
    if (link != control) return;
    const bool crowded = link->toServer.find("\r\n") + 2 < link->toServer.size();
    crowdedPackets += crowded ? 1 : 0;
    if (crowded && packets == Packets::refused) {
      link->toServer.clear();
      link->toClient += "500 What?\r\n";
    }
    for (std::size_t end = 0; (end = link->toServer.find("\r\n")) != std::string::npos;) {
      lines.push_back(link->toServer.substr(0, end));
      link->toServer.erase(0, packets == Packets::cutToOneLine ? std::string::npos : end + 2);
      const auto answer = answers.find(lines.back().substr(0, lines.back().find(' ')));
      link->toClient += answer == answers.end() ? "200 Done\r\n" : answer->second;
      if (onCommand) onCommand(std::string(lines.back()));
    }
  }

  void left(const Link& link) override {
    if (onLeft) onLeft(link);
  }

  // The port in "EPRT |1|127.0.0.1|40001|".
  static std::uint16_t portOf(const std::string& line) {
    const std::size_t start = line.rfind('|', line.size() - 2) + 1;
    return static_cast<std::uint16_t>(std::stoi(line.substr(start)));
  }

 private:
  static constexpr std::uint16_t kControlPort = 21;
};

}  // namespace testing_support
