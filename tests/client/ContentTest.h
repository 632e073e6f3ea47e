// SPDX-License-Identifier: MIT
// What the tests of operations that move content have in common: a temporary folder of their own, contents,
// and what OnPoll saw of the transfer block.
#pragma once

#include <atomic>
#include <compare>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <ostream>
#include <set>
#include <string>
#include <vector>

#include "framework/platform/file.h"
#include "tests/client/TransferTest.h"
#include "tests/support/TemporaryFolder.h"

using testing_support::localName;

// The transfer block at one moment.
struct Progress {
  int valid = 0;
  std::uint64_t transferred = 0;
  std::uint64_t total = 0;

  auto operator<=>(const Progress&) const = default;
  friend std::ostream& operator<<(std::ostream& out, const Progress& progress) {
    return out << progress.valid << ' ' << progress.transferred << '/' << progress.total;
  }
};

// The worker may go on while OnPoll reads, so each member is read as a whole.
inline Progress progressIn(QXTransfer& transfer) {
  return {std::atomic_ref(transfer.bValid).load(), std::atomic_ref(transfer.nTransferred).load(),
          std::atomic_ref(transfer.nTotal).load()};
}

// The first `size` bytes of a pattern.
inline std::string patternText(std::size_t size, std::uint32_t seed = 7) {
  std::string text(size, '\0');
  testing_support::Pattern(seed).fill(0, text.data(), size);
  return text;
}

class ContentTest : public TransferTest {
 protected:
  using Gate = std::function<QXBool(QXBool* reconnect)>;

  const testing_support::TemporaryFolder temporary;

  // The name that the operations give to a temporary copy: put together plainly, doubled separator included.
  static std::string temporaryName(const std::string& name) {
    char start[256];
    const std::size_t length = platform::temporaryFolder(start, sizeof start);
    return std::string(start, length) + "\\FTP\\" + name;
  }
  // The same file, for the standard library.
  [[nodiscard]] std::filesystem::path temporaryFile(const std::string& name) const {
    return temporary.path() / "FTP" / name;
  }
  [[nodiscard]] Names leftInTemporary() const {
    Names names;
    std::error_code none;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(temporary.path(), none)) {
      if (!entry.is_directory()) names.push_back(entry.path().filename().string());
    }
    return names;
  }

  // From now on every look of OnPoll at the transfer block is kept.
  void watchProgress() {
    client.poll = [this](QXHostValue, QXHostValue, QXHostValue transfer, QXBool*) -> QXBool {
      seen.insert(progressIn(*reinterpret_cast<QXTransfer*>(transfer)));
      return 0;
    };
  }
  // At its first call OnPoll waits until a scripted action of the server waits at `gate`, and then does this.
  void atGate(const fixture::ScriptedFtp& server, const std::string& gate, const Gate& action) {
    client.poll = [&server, gate, action, first = true](QXHostValue, QXHostValue, QXHostValue,
                                                        QXBool* reconnect) mutable -> QXBool {
      if (!first) return 0;
      first = false;
      server.waitAtGate(gate);
      return action(reconnect);
    };
  }

  std::set<Progress> seen;
};

// What the calls of OnPoll may do to an operation that hangs.
inline QXBool cancels(QXBool*) { return 1; }
inline QXBool reconnects(QXBool* reconnect) {
  *reconnect = 1;
  return 0;
}

// A transfer whose end the server refuses or loses, and the number that the failure then has.
struct BadEnd {
  const char* name;
  const char* options;  // of the transfer in the server's script
  int error;
  int errorOfUpload;
};

inline std::ostream& operator<<(std::ostream& out, const BadEnd& end) { return out << end.name; }

// The number may come by way of OnIPError, or by the operation's own report.
MATCHER_P(ShowsError, error, "") {
  *result_listener << "text '" << arg.szText << "'";
  return arg.bSet == 1 &&
         std::string(arg.szText).find("[" + std::to_string(error) + " QXIP ") != std::string::npos;
}
