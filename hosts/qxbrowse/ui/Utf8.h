// SPDX-License-Identifier: MIT
// UTF-8, which sites are in, from and for windows. What is no text becomes U+FFFD.
#pragma once

#include <string>
#include <string_view>

namespace browse {

std::wstring fromUtf8(std::string_view text);
std::string toUtf8(std::wstring_view text);

}  // namespace browse
