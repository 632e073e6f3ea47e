// SPDX-License-Identifier: MIT
// The terminal that the user sits at, whatever the standard streams are.
#pragma once

#include <cstddef>
#include <cstdio>
#include <optional>
#include <string>

namespace hosts {

enum class Echo { on, off };

// Shows the question and reads a line, which is shown with the echo on. None: there is no terminal, or Ctrl-C
// came (Interrupt.h). The line may end early where the terminal does.
[[nodiscard]] std::optional<std::string> ask(const std::string& question, Echo echo);

[[nodiscard]] bool isTerminal(std::FILE* stream);

// The width of the terminal that the standard error output is; 0: it is none.
[[nodiscard]] std::size_t columnsOfErrorOutput();

// Whether people see colours there: a terminal that has them, and no NO_COLOR in the environment.
[[nodiscard]] bool takesColours(std::FILE* stream);

// From now on the standard streams move bytes as they are, and a console of Windows takes texts in this
// program's code page. On Linux those that are closed are no longer free for files and sockets. Before any of
// these is opened.
void prepareStreams();

}  // namespace hosts
