// SPDX-License-Identifier: MIT
#include "Src/MessageLines.h"

#include <cstdarg>

#include "framework/platform/stop_token.h"
#include "support/Diagnostics.h"

namespace {

// What printf shows for a null text where it shows one at all.
const char* shown(const char* text) { return text != nullptr ? text : "(null)"; }

}  // namespace

void WriteMessage(TQXIP& client, const char* format, ...) {
  if (platform::stopRequested()) return;
  std::va_list arguments;
  va_start(arguments, format);
  TraceMessageV(client.m_szMessage, sizeof client.m_szMessage, format, arguments);
  va_end(arguments);
}

void WriteEntryLine(TQXIP& client, const FailureSite& site, const LinePaths& paths) {
  if (paths.first == nullptr || (paths.isPair && paths.second == nullptr)) {
    WriteMessage(client, "TQXIP::%s - IN: 'NULL'", site.name);
  } else if (paths.isPair) {
    WriteMessage(client, "TQXIP::%s - IN: From '%s' to '%s'", site.name, paths.first, paths.second);
  } else {
    WriteMessage(client, "TQXIP::%s - IN: '%s'", site.name, paths.first);
  }
}

void WriteFailedLine(TQXIP& client, const FailureSite& site, const LinePaths& paths) {
  if (!paths.isPair) {
    WriteMessage(client, "TQXIP::%s '%s' failed!", site.failedName, shown(paths.first));
  } else {
    const char* gap = paths.join == FailedJoin::tight ? "" : " ";
    WriteMessage(client, "TQXIP::%s from '%s'%sto '%s' failed!", site.failedName, shown(paths.first), gap,
                 shown(paths.second));
  }
}

void EndWithReport(TQXIP& client, const FailureSite& site, const LinePaths& paths, bool failed) {
  WriteFailedLine(client, site, paths);
  if (failed) ReportFailure(client, site.line, client.m_szMessage);
}

void ReportTitled(TQXIP& client, int line, const char* title) {
  WriteMessage(client, "%s", title);
  ReportFailure(client, line, title);
}

void ReportFailure(TQXIP& client, int line, const char* title) {
  if (!platform::stopRequested()) TraceFailure(client.m_pErrorInfo, line, title);
}

void ReportFailure(TQXIP& client, int line, const char* title, std::uint32_t error) {
  if (!platform::stopRequested()) TraceFailure(client.m_pErrorInfo, line, title, error);
}
