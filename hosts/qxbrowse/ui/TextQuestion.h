// SPDX-License-Identifier: MIT
// A dialog that asks for one line of text.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "hosts/qxbrowse/ui/System.h"

namespace browse {

// Nothing: the user went back. OK stays gray while the text is not `isGood`.
std::optional<std::wstring> askText(HWND owner, const std::wstring& question, const std::wstring& start,
                                    const std::function<bool(const std::wstring&)>& isGood);

// What a file or a folder can be called on either side: not empty, without a separator.
bool isGoodName(const std::wstring& name);

}  // namespace browse
