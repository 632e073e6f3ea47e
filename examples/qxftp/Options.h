// SPDX-License-Identifier: MIT
// The command line of qxftp.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "QXTypes.h"

struct Options {
  std::string library;  // empty: the library beside the program
  std::string host = "127.0.0.1";
  std::string user = "anonymous";
  std::string password = "anonymous@";
  std::uint32_t port = 21;
  QXBool passive = 1;
  bool verbose = false;
  std::string command;
  std::vector<std::string> arguments;  // of the command
};

// Throws std::invalid_argument with what is wrong.
[[nodiscard]] Options parseOptions(const std::vector<std::string>& words);
