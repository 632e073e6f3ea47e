// SPDX-License-Identifier: MIT
// What the tests say about a host's error record.
#pragma once

#include <gmock/gmock.h>

#include <cstring>
#include <string>

#include "QXErrorInfo.h"
#include "framework/platform/last_error.h"

inline bool IsBlank(const QXErrorInfo& record) {
  const QXErrorInfo blank{};
  return std::memcmp(&record, &blank, sizeof record) == 0;
}

// The system's text for a number, without its line end.
inline std::string SystemText(std::uint32_t error) {
  const std::string text = platform::systemErrorText(error);
  return text.substr(0, text.find_last_not_of("\r\n") + 1);
}

// A report whose number is the thread's last error: "title text (0x57) [87 QXIP line]", and 0 stored.
MATCHER_P3(ReportsLastError, title, error, line, "") {
  char hex[32];
  std::snprintf(hex, sizeof hex, " (0x%x)", static_cast<unsigned>(error));
  const std::string text = error == 0 ? "" : SystemText(error);
  const std::string detail = text.empty() ? "" : text + hex;
  const std::string expected = std::string(title) + " " + detail + " [" + std::to_string(error) + " QXIP " +
                               std::to_string(line) + "]";
  *result_listener << "set " << arg.bSet << ", code " << arg.nCode << ", error " << arg.nError << ", text '"
                   << arg.szText << "', not '" << expected << "'";
  return arg.bSet == 1 && arg.nCode == 1000 && arg.nError == 0 && arg.szText == expected;
}

// A report that comes from `line` and has `title`, whatever number the last error happened to be.
MATCHER_P2(ReportsFrom, title, line, "") {
  const std::string text = arg.szText;
  const std::string end = " QXIP " + std::to_string(line) + "]";
  *result_listener << "set " << arg.bSet << ", code " << arg.nCode << ", text '" << text << "'";
  return arg.bSet == 1 && arg.nCode == 1000 && text.starts_with(std::string(title) + " ") &&
         text.ends_with(end);
}

// The report of OnIPError: the number given is stored and shown.
MATCHER_P2(ReportsIPError, title, error, "") {
  const std::string text = arg.szText;
  const std::string end = "[" + std::to_string(error) + " QXIP 1187]";
  *result_listener << "set " << arg.bSet << ", code " << arg.nCode << ", error " << arg.nError << ", text '"
                   << text << "'";
  return arg.bSet == 1 && arg.nCode == 1000 && arg.nError == static_cast<std::uint32_t>(error) &&
         text.starts_with(std::string(title) + " ") && text.ends_with(end);
}
