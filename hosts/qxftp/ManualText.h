// SPDX-License-Identifier: MIT
// What Manual.h writes, without a form.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "hosts/qxftp/Commands.h"

namespace qxftp {

struct Term {
  std::string name;
  std::string text;
};

struct Section {
  std::string title;
  std::string text;
  std::vector<Term> terms;
};

[[nodiscard]] std::span<const Section> sections();

struct CommandText {
  std::string name;
  std::string alias;  // empty: none
  std::string usage;  // "qxftp [OPTION...] ls [OPTION...] PATH..."
  std::string text;
  std::string example;
  std::vector<Term> words;
  std::vector<Term> options;
};

[[nodiscard]] std::vector<CommandText> commandTexts(const CLI::App& app);

// "--port N" and so on, of the program or a command.
[[nodiscard]] std::vector<Term> optionTexts(const CLI::App& app);

// The options alone, such as "--port", by whether a word belongs behind them.
struct OptionNames {
  std::vector<std::string> alone;
  std::vector<std::string> withWord;
};
[[nodiscard]] OptionNames optionNames(const CLI::App& app);

}  // namespace qxftp
