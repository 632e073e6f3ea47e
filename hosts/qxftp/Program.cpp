// SPDX-License-Identifier: MIT
#include "hosts/qxftp/Program.h"

#include <algorithm>
#include <cstdio>
#include <string_view>
#include <system_error>

#include "QXVersion.h"
#include "hosts/qxftp/Commands.h"
#include "hosts/qxftp/Manual.h"
#include "hosts/qxftp/TransferCommands.h"
#include "hosts/shared/Interrupt.h"
#include "hosts/shared/Terminal.h"

namespace qxftp {
namespace {

void addLoginOptions(CLI::App& app, Settings& settings) {
  app.add_option("--host", settings.host, "server of paths that are no whole addresses: a name or an address")
      ->option_text("HOST");
  app.add_option("--port", settings.port, "its port")->check(CLI::Range(1, 65535))->option_text("N");
  app.add_option("--user", settings.user, "user, where an address names none")->option_text("NAME");
  app.add_option("--password-file", settings.passwordFile, "file whose first line is the password")
      ->option_text("FILE");
  app.add_option("--netrc", settings.netrc, "file of logins, in place of the usual one")->option_text("FILE");
  app.add_flag("--no-netrc", settings.ignoresNetrc, "reads no such file");
  app.add_flag("--active", settings.isActive, "lets the server connect to this machine for data");
}

void addOptions(CLI::App& app, Settings& settings) {
  app.set_help_flag("-h,--help", "shows this text, or that of the command");
  app.set_version_flag("--version", "qxftp " QXIP_VERSION, "shows the version");
  addLoginOptions(app, settings);
  app.add_option("--library", settings.library,
                 "file of the library, in place of the one beside this program")
      ->option_text("FILE");
  app.add_option("--retries", settings.retries, "how often a failed attempt is made again; 2 without a word")
      ->option_text("N");
  app.add_flag("--literal", settings.isLiteral, "takes wildcards for plain characters");
  app.add_flag("-v,--verbose", settings.isVerbose, "shows the protocol on the standard error output");
  app.add_flag("--json", settings.isJson, "writes one JSON document in place of texts");
}

using Write = std::string (*)(const CLI::App& app);

// For the build alone, and not in the help: what the program says of itself, in other forms.
void addWriters(CLI::App& app, Write& chosen) {
  static constexpr std::pair<const char*, Write> kWriters[] = {{"--write-manual", &manualPage},
                                                               {"--write-page", &markdownPage},
                                                               {"--write-completion", &bashCompletion}};
  for (const auto& [name, write] : kWriters) {
    app.add_flag_callback(name, [&chosen, write = write] { chosen = write; })->group("");
  }
}

// The document is there whatever happened.
void writeDocument(const Settings& settings, Json document, ExitCode code) {
  if (!settings.isJson) return;
  document["ok"] = code == kDone;
  document["exitCode"] = static_cast<int>(code);
  std::printf("%s\n", document.dump(2, ' ', false, Json::error_handler_t::replace).c_str());
}

ExitCode failed(const Settings& settings, ExitCode code, const std::string& text) {
  Context::warn(text);
  writeDocument(settings, {{"error", {{"number", 0}, {"text", text}, {"cancelled", false}}}}, code);
  return code;
}

ExitCode runChosen(const Commands& commands, const Settings& settings) {
  Context context(settings);
  try {
    commands.run(context);
  } catch (const WrongUsage& problem) {
    return failed(settings, kWrongUsage, problem.what());
  } catch (const Failure& failure) {
    return failed(settings, kFailed, failure.report.text);
  } catch (const std::system_error& problem) {
    return failed(settings, kFailed, problem.what());
  } catch (const std::runtime_error& problem) {
    return failed(settings, kNoLibrary, problem.what());
  }
  const ExitCode code = context.exitCode();
  writeDocument(settings, {{"command", commands.chosen()}, {"results", context.results()}}, code);
  return code;
}

int runWords(int count, const char* const* words) {
  CLI::App app("An FTP client on the command line.", "qxftp");
  app.allow_windows_style_options(false);  // "/pub" is a path
  app.require_subcommand(0, 1);
  app.fallthrough();
  app.footer(helpSections());
  Settings settings;
  addOptions(app, settings);
  Write write = nullptr;
  addWriters(app, write);
  Commands commands(app);
  addLookCommands(commands);
  addContentCommands(commands);
  addChangeCommands(commands);
  addGet(commands);
  addPut(commands);
  addMirror(commands);
  try {
    app.parse(count, words);
    if (write != nullptr) {
      std::fputs(write(app).c_str(), stdout);
      return kDone;
    }
    if (app.get_subcommands().empty()) return failed(settings, kWrongUsage, "which command? (qxftp --help)");
  } catch (const CLI::Success& asked) {
    return app.exit(asked);
  } catch (const CLI::ParseError& problem) {
    settings.isJson = std::find(words, words + count, std::string_view("--json")) != words + count;
    return failed(settings, kWrongUsage, problem.what());
  }
  hosts::catchInterrupts();
  hosts::prepareStreams();
  return runChosen(commands, settings);
}

}  // namespace

int runProgram(int count, const char* const* words) {
  const int code = runWords(count, words);
  if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return code;
  Context::warn("the standard output cannot be written");
  return code == kDone ? kFailed : code;
}

}  // namespace qxftp
