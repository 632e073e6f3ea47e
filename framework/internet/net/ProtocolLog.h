// SPDX-License-Identifier: MIT
// The protocol as lines for people: "> USER name", "< 230 Welcome", "* connected to 192.0.2.1:21". Lines are
// kept until the session can be called; where it does not want them nothing is kept. A password is never
// shown, whoever writes it.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "framework/internet/net/SessionLink.h"

namespace internet {

class ProtocolLog {
 public:
  explicit ProtocolLog(std::shared_ptr<SessionLink> session) noexcept : session_(std::move(session)) {}

  // Command lines or reply lines, with or without their line ends.
  void sent(std::string_view lines) noexcept { keep("> ", lines); }
  void received(std::string_view lines) noexcept { keep("< ", lines); }
  // What has happened besides.
  void note(std::string_view text) noexcept { keep("* ", text); }

  // Shown as asterisks from now on. The text must stay where it is.
  void hide(std::string_view secret) noexcept { secret_ = secret; }

  // Hands on what was kept. The session may destroy the log in it.
  void deliver();

 private:
  void keep(std::string_view mark, std::string_view lines) noexcept;

  std::shared_ptr<SessionLink> session_;
  std::string_view secret_;
  std::vector<std::string> kept_;
};

}  // namespace internet
