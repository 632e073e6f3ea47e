// SPDX-License-Identifier: MIT
// Boxes about sites.
#pragma once

#include <functional>
#include <string>

#include "hosts/qxbrowse/sites/SiteFile.h"
#include "hosts/qxbrowse/ui/System.h"

namespace browse {

void tell(HWND owner, const std::wstring& what);
// "No" is what Enter chooses.
bool ask(HWND owner, const std::wstring& question);

// Does what reads or writes the file; whether it went well. A broken file is told with its line, and set
// aside when the user wants that; then it is tried once more.
bool withSites(HWND owner, const SiteFile& file, const std::function<void()>& work);

}  // namespace browse
