// SPDX-License-Identifier: MIT
#include "hosts/qxftp/Commands.h"

namespace qxftp {

CLI::App& Commands::addRun(const std::string& name, const std::string& text, const std::string& example,
                           Run run) {
  m_runs.emplace(name, std::move(run));
  CLI::App& command = *m_app.add_subcommand(name, text);
  command.footer("Example: " + example);
  return command;
}

CLI::App& Commands::addForPaths(const std::string& name, const std::string& text, const std::string& example,
                                RunForPaths work, const std::string& path) {
  auto [command, paths] = add(name, text, example, work);
  takePaths(command, paths, path);
  return command;
}

void takePaths(CLI::App& command, std::vector<std::string>& paths, const std::string& text) {
  command.add_option("PATH", paths, text)->required()->option_text("...");
}

void takeWord(CLI::App& command, std::string& word, const std::string& name, const std::string& text) {
  command.add_option(name, word, text)->required()->option_text(" ");
}

std::string Commands::chosen() const { return m_app.get_subcommands().front()->get_name(); }

}  // namespace qxftp
