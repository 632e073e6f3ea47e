// SPDX-License-Identifier: MIT
// What is shown on a terminal beside the output, and what is asked there.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace hosts {

// The width of the terminal that the standard error output is; 0: it is none.
std::size_t columnsOfErrorOutput();

// Whether somebody can be asked: the standard input and the standard error output are terminals.
bool canAsk();

// Shows the question on the standard error output and reads a line of the standard input. None: it has ended,
// or Ctrl-C came (Interrupt.h).
std::optional<std::string> ask(const std::string& question);

}  // namespace hosts
