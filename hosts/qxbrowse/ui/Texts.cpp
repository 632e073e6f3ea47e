// SPDX-License-Identifier: MIT
#include "hosts/qxbrowse/ui/Texts.h"

#include <string_view>

namespace browse {
namespace {

constexpr const wchar_t* kTexts[] = {
#define BROWSE_TEXT(name, words) words,
#include "hosts/qxbrowse/ui/Texts.inc"
#undef BROWSE_TEXT
};

}  // namespace

const wchar_t* text(Text name) { return kTexts[static_cast<std::size_t>(name)]; }

std::wstring text(Text name, std::initializer_list<std::wstring> values) {
  std::wstring filled;
  std::wstring_view rest = text(name);
  for (std::size_t at = rest.find(L'%'); at != std::wstring_view::npos; at = rest.find(L'%')) {
    filled += rest.substr(0, at);
    const std::size_t place =
        at + 1 < rest.size() ? static_cast<std::size_t>(rest[at + 1] - L'1') : values.size();
    const bool isFilled = place < values.size();
    filled += isFilled ? values.begin()[place] : std::wstring(1, L'%');
    rest.remove_prefix(at + (isFilled ? 2 : 1));
  }
  return filled.append(rest);
}

}  // namespace browse
