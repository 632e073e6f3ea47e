// SPDX-License-Identifier: MIT
// UTF-8, which sites are in, from and for windows. What is no text becomes U+FFFD.
#pragma once

#include "hosts/shared/windows/CodePages.h"

namespace browse {

inline std::wstring fromUtf8(std::string_view text) {
  return hosts::wideWithMarks(text, hosts::Encoding::utf8);
}
inline std::string toUtf8(std::wstring_view text) {
  return hosts::narrowWithMarks(text, hosts::Encoding::utf8);
}

}  // namespace browse
