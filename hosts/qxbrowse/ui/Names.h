// SPDX-License-Identifier: MIT
// Names between the library, whose texts are narrow, and the windows, whose texts are wide; and paths.
#pragma once

#include <string>
#include <string_view>

namespace browse {

// As hosts/shared/windows/CodePages.h has them, and lose nothing besides: a byte that is no text in either
// encoding becomes U+DC00 + byte, and toLibrary() makes the byte of it again. "caf\xE9" -> L"caf\xDCE9" where
// the code page is UTF-8. No file can have such a name: the library would not find it.
std::wstring fromLibrary(std::string_view text);
std::string toLibrary(std::wstring_view text);

// The last part of a path of either side. L"/pub/a" -> L"a", L"C:\\" -> L"C:"
std::wstring lastPart(std::wstring_view path);

// Paths on the server. (L"/", L"a") -> L"/a"; parent of L"/a/b" is L"/a", of L"/a" and of L"/" it is L"/".
std::wstring serverPath(std::wstring_view folder, std::wstring_view name);
std::wstring serverParent(std::wstring_view path);

// Local paths. (L"C:\\", L"a") -> L"C:\\a"; the parent of a drive and of a share is empty.
std::wstring localPath(std::wstring_view folder, std::wstring_view name);
std::wstring localParent(std::wstring_view path);

}  // namespace browse
