// SPDX-License-Identifier: MIT
#include "hosts/qxftp/Commands.h"

namespace qxftp {

CLI::App& Commands::add(const std::string& name, const std::string& text, const std::string& example,
                        Run run) {
  m_runs.emplace(name, std::move(run));
  CLI::App& command = *m_app.add_subcommand(name, text);
  command.footer("Example: " + example);
  return command;
}

std::string Commands::chosen() const { return m_app.get_subcommands().front()->get_name(); }

}  // namespace qxftp
