// SPDX-License-Identifier: MIT
// The terminal that the user sits at, whatever the standard streams are.
#pragma once

#include <cstdio>
#include <optional>
#include <string>

namespace hosts {

// Shows the question and reads a line that is not shown. None: there is no terminal, or Ctrl-C came
// (Interrupt.h). The line may end early where the terminal does.
[[nodiscard]] std::optional<std::string> askSecret(const std::string& question);

[[nodiscard]] bool isTerminal(std::FILE* stream);

// Whether people see colours there: a terminal that has them, and no NO_COLOR in the environment.
[[nodiscard]] bool takesColours(std::FILE* stream);

// From now on the standard streams move bytes as they are, and a console of Windows takes texts in this
// program's code page.
void prepareStreams();

}  // namespace hosts
