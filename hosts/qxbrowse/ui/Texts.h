// SPDX-License-Identifier: MIT
// What the program says, in one table (Texts.inc): no other file has words for the user.
#pragma once

#include <initializer_list>
#include <string>

namespace browse {

enum class Text {
#define BROWSE_TEXT(name, words) name,
#include "hosts/qxbrowse/ui/Texts.inc"
#undef BROWSE_TEXT
};

// Lives as long as the program.
const wchar_t* text(Text name);

// With "%1" to "%9" replaced. A "%" in what is given stays as it is.
std::wstring text(Text name, std::initializer_list<std::wstring> values);

}  // namespace browse
