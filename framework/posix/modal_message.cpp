// SPDX-License-Identifier: MIT
#include "framework/platform/modal_message.h"

#include <cstdio>

namespace platform {

void showModalMessage(const char* text, const char* caption) noexcept {
  std::fprintf(stderr, "%s: %s\n", caption != nullptr ? caption : "", text != nullptr ? text : "");
}

}  // namespace platform
