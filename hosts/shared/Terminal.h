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

// From now on the stream moves bytes as they are, and the console takes texts in this program's code page.
void prepareStreams();

}  // namespace hosts
