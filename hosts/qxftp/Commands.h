// SPDX-License-Identifier: MIT
// The commands by their names. Each file of commands adds its own:
//
//   void addMyCommands(Commands& commands) {
//     struct Options { std::vector<std::string> paths; };
//     const auto options = std::make_shared<Options>();
//     CLI::App& size = commands.add("size", "Tells how many bytes files have.", "qxftp size ftp://host/file",
//                                   [options](Context& context) { tellSizes(context, options->paths); });
//     size.add_option("path", options->paths, "file on a server")->required();
//   }
#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <map>
#include <string>

#include "hosts/qxftp/Context.h"

namespace qxftp {

class Commands {
 public:
  using Run = std::function<void(Context& context)>;

  explicit Commands(CLI::App& app) : m_app(app) {}

  // `text` is a sentence, `example` a whole command line: help and manual show both.
  CLI::App& add(const std::string& name, const std::string& text, const std::string& example, Run run);

  // The command that the command line named. REQUIRES: it was parsed.
  [[nodiscard]] std::string chosen() const;
  void run(Context& context) const { m_runs.at(chosen())(context); }

 private:
  CLI::App& m_app;
  std::map<std::string, Run> m_runs;
};

void addLookCommands(Commands& commands);

}  // namespace qxftp
