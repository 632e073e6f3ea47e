// SPDX-License-Identifier: MIT
// What the tests of command lines that travel together share: over a network in memory, where a packet is
// what one call has sent and time is counted exactly.
#pragma once

#include <algorithm>
#include <chrono>
#include <string>
#include <string_view>

#include "framework/internet/FtpFileFind.h"
#include "tests/internet/FtpMemoryTest.h"

namespace internet_tests {

// A server with one file, "/f" with the content "abc", where everything can be deleted.
struct FileServer : Far {
  using Packets = testing_support::MemoryFtp::Packets;

  explicit FileServer(Packets packets = Packets::taken) {
    server.packets = packets;
    server.answers["FEAT"] = "211-Features\r\n MLST type*;size*;\r\n UTF8\r\n211 End\r\n";
    server.answers["MLST"] = "250-Facts\r\n type=file;size=3; /f\r\n250 End\r\n";
    server.answers["DELE"] = "250 Deleted\r\n";
    server.answers["RETR"] = "150 Here\r\n";
    server.onCommand = [this](const std::string& line) { behind(line); };
  }

  void behind(const std::string& line) {
    if (line.starts_with("EPRT")) port_ = testing_support::MemoryFtp::portOf(line);
    if (!line.starts_with("RETR")) return;
    if (port_ != 0) server.data = network.connectToClient(port_);
    server.data->toClient = "abc";
    server.data->server = testing_support::MemoryLink::End::ended;
    server.control->toClient += "226 Done\r\n";
  }

  // The reply to `verb` comes so much later, and those to what arrives meanwhile behind it.
  void delay(const std::string& verb, std::chrono::milliseconds time) {
    const std::string reply = std::exchange(server.answers[verb], "");
    server.answers["NOOP"] = server.answers["PWD"] = "";
    server.onCommand = [this, verb, reply, time](const std::string& line) {
      const auto say = [this](std::chrono::milliseconds after, const std::string& text) {
        network.later(after, [this, text] { server.control->toClient += text; });
      };
      if (line.starts_with(verb)) say(time, reply);
      if (line == "NOOP") say(std::chrono::milliseconds(0), "200 Nothing\r\n");
      if (line == "PWD") say(std::chrono::milliseconds(0), "257 \"/\"\r\n");
      behind(line);
    };
  }

  [[nodiscard]] std::ptrdiff_t count(std::string_view verb) const {
    return std::count_if(server.lines.begin(), server.lines.end(),
                         [verb](const std::string& line) { return line.starts_with(verb); });
  }

 private:
  std::uint16_t port_ = 0;
};

class FtpLines : public FtpMemory {
 protected:
  static std::string read(CFtpConnection& connection) {
    const auto file = openToRead(connection, "/f");
    std::string content = readToEnd(*file);
    EXPECT_EQ(errorOf([&] { return file->Close(); }), 0u);
    return content;
  }

  // How long a log-in and a download take.
  std::chrono::nanoseconds transferTime(FileServer& far, bool passive = true) {
    const auto before = far.network.now();
    const auto connection = login(passive);
    EXPECT_EQ(read(*connection), "abc");
    EXPECT_TRUE(works(*connection));
    return far.network.now() - before;
  }

  static bool finds(CFtpConnection& connection) {
    CFtpFileFind finder(&connection);
    if (!finder.FindFile("/f")) return false;
    finder.FindNextFile();
    return finder.GetFileName() == "f" && finder.GetLength() == 3;
  }

  // The next connection knows what the first one has learnt of the features, and sends OPTS along.
  std::unique_ptr<CFtpConnection> loginWithOptions() {
    const auto first = login();
    EXPECT_TRUE(finds(*first));
    return login();
  }
};

}  // namespace internet_tests
