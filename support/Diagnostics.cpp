// SPDX-License-Identifier: MIT
#include "support/Diagnostics.h"

#include <cstdio>
#include <cstring>
#include <new>
#include <string>
#include <string_view>

#include "framework/platform/code_page.h"
#include "framework/platform/last_error.h"
#include "framework/text/HostText.h"
#include "support/Paths.h"

namespace {

constexpr const char* kClientSource = "Src/QXIP";
constexpr std::uint32_t kUseLastError = 0xFFFFFFFF;
constexpr std::size_t kTextLimit = 4097;      // szText holds fewer characters than this
constexpr std::size_t kErrorNumberRoom = 14;  // " (0x" + 8 digits + ")" + terminator
constexpr std::size_t kLineEnd = 2;           // the system ends its texts with CR LF

bool holdsError(const QXErrorInfo& record) { return (record.bSet & 0xFF) != 0; }

void appendPiece(QXErrorInfo& record, std::string_view piece) {
  const std::size_t length = std::strlen(record.szText);
  if (length + piece.size() + 1 >= kTextLimit) return;
  std::memcpy(record.szText + length, piece.data(), piece.size());
  record.szText[length + piece.size()] = '\0';
}

std::string systemText(std::uint32_t error) noexcept {
  try {
    return platform::systemErrorText(error);
  } catch (const std::bad_alloc&) {
    return {};
  }
}

// The shared part of both reports. `detailError` stands in the detail; the number stored is read last,
// because fetching the text has reset the thread's last error by then.
void traceFailure(QXErrorInfo* pErrorInfo, int line, const char* title, std::uint32_t error,
                  bool isLastError) {
  if (holdsError(*pErrorInfo)) {
    // The first failure stays. What is left of a report that is dropped: it resets the last error.
    if (error != 0) platform::setLastError(0);
    return;
  }
  PathText source;
  GetSourceFileName(source);
  ErrorText text;
  GetErrorText(error, text);
  ErrorText detail;
  TraceMessage(detail, sizeof detail, "%s [%d %s %d]", text, static_cast<int>(error), source.c_str(), line);
  const std::uint32_t stored = isLastError ? platform::lastError() : error;
  ReportError(pErrorInfo, false, detail, stored, kClientFailure, title);
}

}  // namespace

int TraceMessageV(char* buffer, std::size_t capacity, const char* format, std::va_list arguments) noexcept {
  const int wanted = std::vsnprintf(buffer, capacity, format, arguments);
  if (wanted < 0) {
    buffer[0] = '\0';
    return 0;
  }
  if (static_cast<std::size_t>(wanted) < capacity) return wanted;
  const std::size_t whole = hosttext::wholeSize({buffer, capacity - 1}, platform::narrowCodePage());
  buffer[whole] = '\0';
  return static_cast<int>(whole);
}

int TraceMessage(char* buffer, std::size_t capacity, const char* format, ...) noexcept {
  std::va_list arguments;
  va_start(arguments, format);
  const int written = TraceMessageV(buffer, capacity, format, arguments);
  va_end(arguments);
  return written;
}

char* GetErrorText(std::uint32_t error, ErrorText& buffer) noexcept {
  buffer[0] = '\0';
  if (error == kUseLastError) error = platform::lastError();
  if (error == 0) return buffer;
  std::string text = systemText(error);
  if (text.size() >= kLineEnd && text.size() + kErrorNumberRoom < kErrorTextCapacity) {
    text.resize(text.size() - kLineEnd);
    TraceMessage(buffer, sizeof buffer, "%s (0x%x)", text.c_str(), platform::lastError());
  }
  platform::setLastError(0);
  return buffer;
}

void GetSourceFileName(PathText& name) noexcept { SplitPath(kClientSource, nullptr, &name, nullptr); }

void ReportError(QXErrorInfo* pErrorInfo, bool bOK, const char* detail, std::uint32_t nError,
                 std::uint32_t nCode, const char* title) noexcept {
  if (pErrorInfo == nullptr || bOK || detail == nullptr || holdsError(*pErrorInfo)) return;
  QXErrorInfo record{};
  record.bSet = 1;
  record.nCode = nCode;
  record.nError = nError;
  appendPiece(record, title != nullptr ? title : "Error");
  appendPiece(record, " ");
  appendPiece(record, detail);
  StoreError(pErrorInfo, &record);
}

void ReportErrorCode(QXErrorInfo* pErrorInfo, bool bOK, std::uint32_t nError) noexcept {
  if (pErrorInfo == nullptr || bOK || holdsError(*pErrorInfo)) return;
  QXErrorInfo record{};
  record.bSet = 1;
  record.nError = nError;
  ErrorText text;
  appendPiece(record, GetErrorText(nError, text));
  StoreError(pErrorInfo, &record);
}

void StoreError(QXErrorInfo* pErrorInfo, const QXErrorInfo* record) noexcept {
  if (pErrorInfo == nullptr || record == nullptr || !holdsError(*record) || holdsError(*pErrorInfo)) return;
  *pErrorInfo = *record;
}

void ClearErrorInfo(QXErrorInfo* pErrorInfo) noexcept {
  if (pErrorInfo == nullptr) return;
  platform::setLastError(0);
  *pErrorInfo = QXErrorInfo{};
}

void TakeErrorInfo(QXErrorInfo* pErrorInfo, QXErrorInfo* copy) noexcept {
  if (copy == nullptr) return;
  *copy = QXErrorInfo{};
  if (pErrorInfo == nullptr || !holdsError(*pErrorInfo)) return;
  *copy = *pErrorInfo;
  ClearErrorInfo(pErrorInfo);
}

void TraceFailure(QXErrorInfo* pErrorInfo, int line, const char* title) noexcept {
  if (pErrorInfo != nullptr) traceFailure(pErrorInfo, line, title, platform::lastError(), true);
}

void TraceFailure(QXErrorInfo* pErrorInfo, int line, const char* title, std::uint32_t error) noexcept {
  if (pErrorInfo != nullptr) traceFailure(pErrorInfo, line, title, error, false);
}
