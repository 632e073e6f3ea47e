// SPDX-License-Identifier: MIT
// One text for the help, the manual page and the page in docs/: that of the commands and options, which the
// parser has, and that of the sections behind them, which is here.
#pragma once

#include <string>

#include "hosts/qxftp/Commands.h"

namespace qxftp {

// What stands behind the commands in the help of the program.
[[nodiscard]] std::string helpSections();

// For man(1), in the macros of man(7).
[[nodiscard]] std::string manualPage(const CLI::App& app);

// docs/qxftp.md
[[nodiscard]] std::string markdownPage(const CLI::App& app);

// Commands and options for the Tab key of bash, which completes all other words as files.
[[nodiscard]] std::string bashCompletion(const CLI::App& app);

}  // namespace qxftp
