// SPDX-License-Identifier: MIT
// The system's text of an error number, as reports show it.
#pragma once

#include <cstdint>
#include <string>

#include "framework/platform/last_error.h"

inline std::string systemText(std::uint32_t error) {
  const std::string text = platform::systemErrorText(error);
  return text.substr(0, text.find_last_not_of("\r\n") + 1);
}
