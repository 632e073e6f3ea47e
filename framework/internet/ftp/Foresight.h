// SPDX-License-Identifier: MIT
// Lines that a caller is going to send, told ahead so that they travel behind an earlier one. When their turn
// comes, in the same order, their replies are there or on the way. At the first line that is another one the
// rest is forgotten: what the server says to it goes nowhere. No I/O.
#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "framework/internet/ftp/FtpReply.h"
#include "framework/text/Secret.h"

namespace internet {

class Foresight {
 public:
  // Takes the reply to a line ahead of a command. False = the command fails with that reply's text.
  using ReplyHandler = std::function<bool(const FtpReply&)>;

  struct Line {
    secret::Text text;  // one of them carries the password
    bool sent = false;
    std::optional<FtpReply> reply{};
    ReplyHandler handler{};  // of the caller that has come for it before its reply

    bool answer(const FtpReply& answer);
  };
  using LinePtr = std::shared_ptr<Line>;

  // False when there is no room for more: a server that answers a long packet while it is still being sent
  // would fill the way back.
  bool add(std::string_view line);
  [[nodiscard]] bool empty() const noexcept { return lines_.empty(); }
  // Those that have not gone out, which they do now.
  std::vector<LinePtr> takeUnsent();
  // `line` is the next one that was told, and has gone out.
  [[nodiscard]] bool holds(std::string_view line) const noexcept;
  // The turn of `line` has come: the one that holds() tells, else null.
  LinePtr take(std::string_view line);
  // A line that was sent and then forgotten has left the server somewhere else.
  [[nodiscard]] bool astray() const noexcept { return astray_; }
  void forget() noexcept;
  // For another connection.
  void clear() noexcept;

 private:
  std::deque<LinePtr> lines_;
  std::size_t bytes_ = 0;  // of all that were added to them
  bool astray_ = false;
};

}  // namespace internet
