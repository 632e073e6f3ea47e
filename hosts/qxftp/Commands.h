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

  // One that does the same for each of its paths, which `path` describes.
  using RunForPaths = void (*)(Context& context, const std::vector<std::string>& paths);
  CLI::App& addForPaths(const std::string& name, const std::string& text, const std::string& example,
                        RunForPaths work, const std::string& path);

  // The command that the command line named. REQUIRES: it was parsed.
  [[nodiscard]] std::string chosen() const;
  void run(Context& context) const { m_runs.at(chosen())(context); }

 private:
  CLI::App& m_app;
  std::map<std::string, Run> m_runs;
};

// The words of a command that takes two.
struct TwoWords {
  std::string first;
  std::string second;
};

// One path or several.
void takePaths(CLI::App& command, std::vector<std::string>& paths, const std::string& text);
// One that has to be there.
void takeWord(CLI::App& command, std::string& word, const std::string& name, const std::string& text);

void addChangeCommands(Commands& commands);
void addContentCommands(Commands& commands);
void addLookCommands(Commands& commands);

}  // namespace qxftp
