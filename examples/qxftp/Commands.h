// SPDX-License-Identifier: MIT
// The commands of qxftp: each shows how a host uses one or two operations of the client.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "QXIPInt.h"
#include "examples/qxftp/Options.h"

// What a command works with. The client has its login data and keeps the address of `error`.
struct Session {
  TQXIPIFInt& client;
  QXErrorInfo& error;
  const Options& options;

  // Operations keep the first failure; a host that wants the next one clears the record.
  void forgetError() const { error = QXErrorInfo{}; }
  // The set flag is the first byte of its field.
  [[nodiscard]] bool hasError() const { return (error.bSet & 0xFF) != 0; }
};

// How often an attempt that failed is repeated.
inline constexpr std::uint32_t kRetries = 2;

struct Command {
  const char* name;
  const char* arguments;
  std::size_t argumentCount;
  bool (*run)(const Session& session, const std::vector<std::string>& arguments);  // false: it failed
};

[[nodiscard]] std::span<const Command> commands();
