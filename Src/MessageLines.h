// SPDX-License-Identifier: MIT
// The lines that operations write into the object's message buffer, and their failure reports. A worker that
// has been asked to stop writes neither: whoever cancelled it has the last word.
#pragma once

#include "Src/FailureSites.h"
#include "Src/QXIP.h"

// How the failed line of an operation with two paths joins them.
enum class FailedJoin { spaced, tight };  // "from 'a' to 'b'", "from 'a'to 'b'"

// The one path, or the pair of paths, that an operation's lines name. Any may be null.
struct LinePaths {
  const char* first;
  const char* second = nullptr;
  bool isPair = false;
  FailedJoin join = FailedJoin::spaced;
};

// "TQXIP::<text>", printf style, into m_szMessage.
void WriteMessage(TQXIP& client, const char* format, ...) __attribute__((format(printf, 2, 3)));

// "TQXIP::Name - IN: 'path'", "... - IN: From 'a' to 'b'", "... - IN: 'NULL'".
void WriteEntryLine(TQXIP& client, const FailureSite& site, const LinePaths& paths);

// "TQXIP::Name 'path' failed!", written at the end of every run, successful or not: it titles the report.
void WriteFailedLine(TQXIP& client, const FailureSite& site, const LinePaths& paths);

// The failed line and, when `failed`, the failure report titled by it.
void EndWithReport(TQXIP& client, const FailureSite& site, const LinePaths& paths, bool failed);

// For operations and events without a path: `title` into the message buffer, and the failure report titled by
// it.
void ReportTitled(TQXIP& client, int line, const char* title);

// The failure report titled by `title` with the thread's last error, or with `error`.
void ReportFailure(TQXIP& client, int line, const char* title);
void ReportFailure(TQXIP& client, int line, const char* title, std::uint32_t error);
