// SPDX-License-Identifier: MIT
// The commands by their names. Each file of commands adds its own:
//
//   struct ListOptions { std::vector<std::string> paths; bool isLong = false; };
//   void list(Context& context, const ListOptions& options);
//
//   void addMyCommands(Commands& commands) {
//     auto [ls, options] = commands.add("ls", "Lists directories.", "qxftp ls ftp://host/", list);
//     takePaths(ls, options.paths, "directory on a server");
//     ls.add_flag("-l", options.isLong, "with sizes and times");
//   }
#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "hosts/qxftp/Context.h"

namespace qxftp {

class Commands {
 public:
  explicit Commands(CLI::App& app) : m_app(app) {}

  // What the parser is told of a new command, and where it puts what it reads.
  template <typename Options>
  struct Added {
    CLI::App& app;
    Options& options;  // the command's, and lives as long
  };

  // `text` is a sentence, `example` a whole command line: help and manual show both.
  template <typename Options>
  Added<Options> add(const std::string& name, const std::string& text, const std::string& example,
                     void (*work)(Context& context, const Options& options)) {
    const auto options = std::make_shared<Options>();
    CLI::App& app = addRun(name, text, example, [=](Context& context) { work(context, *options); });
    return {app, *options};
  }

  // One that does the same for each of its paths, which `path` describes.
  using RunForPaths = void (*)(Context& context, const std::vector<std::string>& paths);
  CLI::App& addForPaths(const std::string& name, const std::string& text, const std::string& example,
                        RunForPaths work, const std::string& path);

  // The command that the command line named. REQUIRES: it was parsed.
  [[nodiscard]] std::string chosen() const;
  void run(Context& context) const { m_runs.at(chosen())(context); }

 private:
  using Run = std::function<void(Context& context)>;

  CLI::App& addRun(const std::string& name, const std::string& text, const std::string& example, Run run);

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
