// SPDX-License-Identifier: MIT
#include "hosts/qxbrowse/Start.h"

#include <memory>
#include <stdexcept>
#include <vector>

#include "hosts/qxbrowse/sites/SiteFile.h"
#include "hosts/qxbrowse/ui/Names.h"
#include "hosts/qxbrowse/ui/Texts.h"
#include "hosts/qxbrowse/ui/Utf8.h"
#include "hosts/shared/Library.h"
// Only now:
#include "hosts/qxbrowse/ui/System.h"

namespace browse {
namespace {

std::vector<std::wstring> commandLine() {
  int count = 0;
  wchar_t** const words = CommandLineToArgvW(GetCommandLineW(), &count);
  const std::unique_ptr<wchar_t*, decltype(&LocalFree)> owner(words, &LocalFree);
  return words != nullptr ? std::vector<std::wstring>(words + 1, words + count) : std::vector<std::wstring>();
}

int refuse(const std::wstring& why, ExitCode code) {
  MessageBoxW(nullptr, why.c_str(), text(Text::programName), MB_OK | MB_ICONERROR);
  return code;
}

Start prepare(const StartOptions& options) {
  // A file that is no library is told by this program, not by the system.
  SetErrorMode(SEM_FAILCRITICALERRORS);
  return {hosts::openLibrary(options.library), options.sites.empty() ? usualSiteFile() : options.sites};
}

}  // namespace

StartOptions readOptions(std::span<const std::wstring> arguments) {
  StartOptions options;
  for (std::size_t at = 0; at < arguments.size(); at += 2) {
    const std::wstring& name = arguments[at];
    std::filesystem::path* const file = name == L"--library" ? &options.library
                                        : name == L"--sites" ? &options.sites
                                                             : nullptr;
    if (file == nullptr || at + 1 == arguments.size()) throw std::invalid_argument(toUtf8(name));
    *file = arguments[at + 1];
  }
  return options;
}

int start(const std::function<int(const Start&)>& run) {
  Start prepared;
  try {
    prepared = prepare(readOptions(commandLine()));
  } catch (const std::invalid_argument& wrong) {
    return refuse(text(Text::startUsage, {fromUtf8(wrong.what())}), kWrongUsage);
  } catch (const std::exception& problem) {
    return refuse(text(Text::startFailed, {fromLibrary(problem.what())}), kNoLibrary);
  }
  return run(prepared);
}

}  // namespace browse
