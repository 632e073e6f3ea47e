// SPDX-License-Identifier: MIT
#include "hosts/qxftp/Manual.h"

#include <algorithm>
#include <cctype>
#include <sstream>
#include <string_view>

#include "QXVersion.h"
#include "hosts/qxftp/ManualText.h"

namespace qxftp {
namespace {

constexpr const char* kSummary = "an FTP client on the command line";

std::string joined(const std::vector<std::string>& words, const char* between = " ") {
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : between) + word;
  return text;
}

// Lines of at most `width` characters, each behind `indent` blanks.
std::string wrapped(const std::string& text, std::size_t indent, std::size_t width = 80) {
  std::string out;
  std::string line(indent, ' ');
  std::size_t begin = 0;
  while (begin < text.size()) {
    const std::size_t end = std::min(text.find(' ', begin), text.size());
    const std::string word = text.substr(begin, end - begin);
    if (line.size() > indent && line.size() + word.size() + 1 > width) {
      out += line + "\n";
      line.assign(indent, ' ');
    }
    line += (line.size() > indent ? " " : "") + word;
    begin = end + 1;
  }
  return out + line + "\n";
}

namespace roff {

std::string escaped(const std::string& plain) {
  std::string out;
  for (const char c : plain) {
    if (c == '\\') {
      out += "\\e";
    } else if (c == '-') {
      out += "\\-";
    } else {
      out += c;
    }
  }
  return out;
}

// Lines of their own. One that begins with a dot or an apostrophe would be a command.
std::string text(const std::string& plain) {
  std::istringstream lines(wrapped(plain, 0, 70));
  std::string out;
  for (std::string line; std::getline(lines, line);) {
    out += (line.starts_with('.') || line.starts_with('\'') ? "\\&" : "") + escaped(line) + "\n";
  }
  return out;
}

std::string bold(const std::string& plain) { return "\\fB" + escaped(plain) + "\\fR\n"; }

std::string heading(std::string title) {
  std::ranges::transform(title, title.begin(), [](char c) {
    return static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  });
  return ".SH " + title + "\n";
}

std::string terms(const std::vector<Term>& terms) {
  std::string out;
  for (const auto& [name, meaning] : terms) out += ".TP\n" + bold(name) + text(meaning);
  return out;
}

std::string command(const CommandText& command) {
  const std::string alias = command.alias.empty() ? "" : " The same by the name " + command.alias + ".";
  return ".SS " + escaped(command.name) + "\n" + text(command.text + alias) + ".PP\n" + bold(command.usage) +
         terms(command.words) + terms(command.options) + ".PP\nExample:\n" + bold(command.example);
}

}  // namespace roff

namespace markdown {

// Quotes of code keep what would be emphasis or a table's border.
std::string code(const std::string& text) { return "`" + text + "`"; }

std::string text(const std::string& plain) {
  std::string out;
  for (const char c : plain) {
    if (std::string_view("*_[]<>|\\`").find(c) != std::string_view::npos) out += '\\';
    out += c;
  }
  return out;
}

std::string terms(const std::vector<Term>& terms) {
  if (terms.empty()) return {};
  std::string out = "\n| | |\n|---|---|\n";
  for (const auto& [name, meaning] : terms) out += "| " + code(name) + " | " + text(meaning) + " |\n";
  return out;
}

std::string command(const CommandText& command) {
  const std::string alias = command.alias.empty() ? "" : " The same by the name " + code(command.alias) + ".";
  std::vector<Term> all = command.words;
  all.insert(all.end(), command.options.begin(), command.options.end());
  return "\n### " + command.name + "\n\n" + wrapped(text(command.text) + alias, 0, 120) + "\n```text\n" +
         command.usage + "\n" + command.example + "\n```\n" + terms(all);
}

}  // namespace markdown

// "a|b|c"
std::string pattern(const std::vector<std::string>& words) { return joined(words, "|"); }

std::vector<std::string> namesOf(const std::vector<CommandText>& commands) {
  std::vector<std::string> names;
  for (const CommandText& command : commands) {
    names.push_back(command.name);
    if (!command.alias.empty()) names.push_back(command.alias);
  }
  return names;
}

std::vector<std::string> allOptions(const CLI::App& app) {
  auto [all, withWord] = optionNames(app);
  all.insert(all.end(), withWord.begin(), withWord.end());
  return all;
}

std::vector<std::string> optionsWithWord(const CLI::App& app) {
  std::vector<std::string> names = optionNames(app).withWord;
  for (const CLI::App* command : app.get_subcommands({})) {
    const auto more = optionNames(*command).withWord;
    names.insert(names.end(), more.begin(), more.end());
  }
  return names;
}

}  // namespace

std::string helpSections() {
  std::string out;
  for (const Section& section : sections()) {
    out += section.title + ":\n" + wrapped(section.text, 2);
    for (const auto& [name, meaning] : section.terms) {
      std::string lines = wrapped(meaning, 30);
      lines.replace(2, std::min<std::size_t>(name.size(), 27), name.substr(0, 27));
      out += name.size() > 27 ? "  " + name + "\n" + wrapped(meaning, 30) : lines;
    }
    out += "\n";
  }
  return out;
}

std::string manualPage(const CLI::App& app) {
  std::string out = ".TH QXFTP 1 \"\" \"qxftp " QXIP_VERSION "\" \"User Commands\"\n";
  out += roff::heading("Name") + "qxftp \\- " + kSummary + "\n";
  out += roff::heading("Synopsis") + "\\fBqxftp\\fR [\\fIOPTION\\fR...] \\fICOMMAND\\fR [\\fIWORD\\fR...]\n";
  out += roff::heading("Options") + "They may stand before and behind the command.\n" +
         roff::terms(optionTexts(app));
  out += roff::heading("Commands");
  for (const CommandText& command : commandTexts(app)) out += roff::command(command);
  for (const Section& section : sections()) {
    out += roff::heading(section.title) + roff::text(section.text) + roff::terms(section.terms);
  }
  return out;
}

std::string markdownPage(const CLI::App& app) {
  std::string out =
      "# qxftp\n\n" + wrapped(std::string(kSummary) +
                                  ", in the folder `bin` of the packages. On Linux this page is "
                                  "the manual page `man qxftp` as well, and the Tab key of bash "
                                  "completes its commands and options.",
                              0, 120);
  out[std::string_view("# qxftp\n\n").size()] = 'A';
  out += "\n```text\nqxftp [OPTION...] COMMAND [WORD...]\n```\n";
  out +=
      "\n## Options\n\nThey may stand before and behind the command.\n" + markdown::terms(optionTexts(app));
  out += "\n## Commands\n";
  for (const CommandText& command : commandTexts(app)) out += markdown::command(command);
  for (const Section& section : sections()) {
    out += "\n## " + section.title + "\n\n" + wrapped(markdown::text(section.text), 0, 120);
    out += markdown::terms(section.terms);
  }
  return out;
}

std::string bashCompletion(const CLI::App& app) {
  const std::vector<CommandText> commands = commandTexts(app);
  std::string perCommand;
  for (const CLI::App* command : app.get_subcommands({})) {
    std::vector<std::string> names = {command->get_name()};
    for (const std::string& alias : command->get_aliases()) names.push_back(alias);
    perCommand += "    " + pattern(names) + ") options+=' " + joined(allOptions(*command)) + "' ;;\n";
  }
  return "# bash completion of qxftp: its commands and options. All other words are completed as files.\n"
         "_qxftp() {\n"
         "  local current=${COMP_WORDS[COMP_CWORD]} command= word at\n"
         "  local options='" +
         joined(allOptions(app)) +
         "'\n"
         "  for ((at = 1; at < COMP_CWORD; ++at)); do\n"
         "    word=${COMP_WORDS[at]}\n"
         "    case $word in\n"
         "    " +
         pattern(optionsWithWord(app)) +
         ") ((++at)) ;;\n"
         "    " +
         pattern(namesOf(commands)) +
         ") command=$word; break ;;\n"
         "    esac\n"
         "  done\n"
         "  case $command in\n" +
         perCommand +
         "  esac\n"
         "  COMPREPLY=()\n"
         "  case ${COMP_WORDS[COMP_CWORD-1]} in\n"
         "  " +
         pattern(optionsWithWord(app)) +
         ") return ;;\n"
         "  esac\n"
         "  if [[ $current == -* ]]; then\n"
         "    mapfile -t COMPREPLY < <(compgen -W \"$options\" -- \"$current\")\n"
         "  elif [[ -z $command ]]; then\n"
         "    mapfile -t COMPREPLY < <(compgen -W '" +
         joined(namesOf(commands)) +
         "' -- \"$current\")\n"
         "  fi\n"
         "}\n"
         "complete -o default -F _qxftp qxftp\n";
}

}  // namespace qxftp
