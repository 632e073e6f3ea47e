// SPDX-License-Identifier: MIT
#include "hosts/qxbrowse/sites/SiteMessages.h"

#include <system_error>

#include "hosts/qxbrowse/ui/Names.h"
#include "hosts/qxbrowse/ui/Texts.h"

namespace browse {
namespace {

// Whether the file is out of the way.
bool offerSettingAside(HWND owner, const SiteFile& file, const BrokenSites& broken) {
  const std::wstring what =
      text(Text::brokenFile, {file.path().wstring(), std::to_wstring(broken.line), text(broken.reason)});
  if (!ask(owner, what + text(Text::brokenAside))) return false;
  tell(owner, text(Text::brokenIsAside, {file.setAside().wstring()}));
  return true;
}

}  // namespace

void tell(HWND owner, const std::wstring& what) {
  MessageBoxW(owner, what.c_str(), text(Text::programName), MB_OK | MB_ICONWARNING);
}

bool ask(HWND owner, const std::wstring& question) {
  const UINT kind = MB_YESNO | MB_DEFBUTTON2 | MB_ICONWARNING;
  return MessageBoxW(owner, question.c_str(), text(Text::programName), kind) == IDYES;
}

bool withSites(HWND owner, const SiteFile& file, const std::function<void()>& work) {
  try {
    try {
      work();
    } catch (const BrokenSites& broken) {
      if (!offerSettingAside(owner, file, broken)) return false;
      work();
    }
    return true;
  } catch (const std::exception& problem) {
    tell(owner, text(Text::brokenSystem, {fromLibrary(problem.what())}));
    return false;
  }
}

}  // namespace browse
