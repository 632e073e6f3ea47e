// SPDX-License-Identifier: MIT
#include "hosts/shared/Names.h"

#include "hosts/shared/windows/CodePages.h"
#include "hosts/shared/windows/System.h"

namespace hosts {

NameRules namesHere() { return NameRules::windows; }

// By capitals, as the file system does.
std::string withoutCase(std::string_view path) {
  std::wstring text = pathFromServer(path).wstring();
  const int size = static_cast<int>(text.size());
  LCMapStringEx(LOCALE_NAME_INVARIANT, LCMAP_UPPERCASE, text.c_str(), size, text.data(), size, nullptr,
                nullptr, 0);
  return narrowWithMarks(text, Encoding::utf8);
}

std::string nameForServer(const std::filesystem::path& name) { return toLibrary(name.native()); }

// Bytes that are no text are those of Western Europe, most likely: a file has to have some name, which the
// library can open.
std::filesystem::path nameFromServer(const std::string& name) {
  if (const auto text = fromLibrary(name)) return *text;
  std::wstring characters;
  for (const char byte : name) characters += static_cast<unsigned char>(byte);
  return characters;
}

std::optional<std::string> pathForLibrary(const std::filesystem::path& path) {
  return narrow(std::filesystem::absolute(path).make_preferred().native(), Encoding::codePage);
}

std::string shown(const std::filesystem::path& path) {
  return narrowWithMarks(path.native(), Encoding::utf8);
}

}  // namespace hosts
