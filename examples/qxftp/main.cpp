// SPDX-License-Identifier: MIT
// qxftp: an FTP client on the command line, made of the library's exports and its client interface only.
#include <algorithm>
#include <cstdio>
#include <stdexcept>
#include <string_view>

#include "QXHooks.h"
#include "QXVersion.h"
#include "examples/host/ClientLibrary.h"
#include "examples/qxftp/Commands.h"
#include "examples/qxftp/Options.h"

namespace {

enum ExitCode { kDone = 0, kFailed = 1, kWrongUsage = 2 };

void printUsage(std::FILE* out) {
  std::fputs(
      "usage: qxftp --help | --version\n"
      "       qxftp [--library FILE] [--host H] [--port P] [--user U] [--password W]\n"
      "             [--passive|--active] [--verbose] COMMAND\n"
      "hosts:\n"
      "  NAME                    FTP in plain text; an address of IPv6 may stand in brackets\n"
      "  ftpes://NAME[;OPTION]   encrypted before the login\n"
      "  ftps://NAME[;OPTION]    encrypted from the first byte, at port 990\n"
      "  https://NAME[;OPTION]   for http\n"
      "  Options: ;fingerprint=sha256:64-HEX-DIGITS ;verify=no ;tls=1.2\n"
      "Proxies are those of the system's settings. --verbose shows the protocol.\n"
      "commands:\n",
      out);
  for (const Command& command : commands()) std::fprintf(out, "  %s %s\n", command.name, command.arguments);
}

int usage(const char* problem) {
  std::fprintf(stderr, "qxftp: %s\n", problem);
  printUsage(stderr);
  return kWrongUsage;
}

// The message line says which operation ended last, the record which failure came first and why.
void printFailure(const Session& session) {
  std::fprintf(stderr, "message: %s\n", session.client.m_szMessage);
  if (session.hasError()) {
    std::fprintf(stderr, "error:   %u (code %u): %s\n", session.error.nError, session.error.nCode,
                 session.error.szText);
  }
}

// In place of OnStatus, which gets the protocol line by line.
void printLine(TQXIPIFInt* /*client*/, const char* line) { std::fprintf(stderr, "%s\n", line); }

int run(const Options& options, const Command& command) {
  const ClientLibrary library(options.library.empty() ? clientLibraryPath() : options.library);
  QXErrorInfo error{};
  const Client client = makeClient(library, &error);
  if (client == nullptr) throw std::runtime_error("the library makes no client");
  QXClientHooks hooks(client.get());
  if (options.verbose) hooks->OnStatus = &printLine;
  client->FTPSetLogin(options.host.c_str(), options.user.c_str(), options.password.c_str(), options.port,
                      options.passive);
  const Session session{*client, error, options};
  if (command.run(session, options.arguments)) return kDone;
  printFailure(session);
  return kFailed;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 2 && std::string_view(argv[1]) == "--help") {
    printUsage(stdout);
    return kDone;
  }
  if (argc == 2 && std::string_view(argv[1]) == "--version") {
    std::puts("qxftp " QXIP_VERSION);
    return kDone;
  }
  try {
    const Options options = parseOptions({argv + 1, argv + argc});
    const auto command = std::ranges::find_if(
        commands(), [&](const Command& candidate) { return options.command == candidate.name; });
    if (command == commands().end()) return usage(("no such command: " + options.command).c_str());
    if (options.arguments.size() != command->argumentCount) {
      return usage(
          (options.command + " takes " + std::to_string(command->argumentCount) + " arguments").c_str());
    }
    return run(options, *command);
  } catch (const std::invalid_argument& problem) {
    return usage(problem.what());
  } catch (const std::exception& problem) {
    std::fprintf(stderr, "qxftp: %s\n", problem.what());
    return kFailed;
  }
}
