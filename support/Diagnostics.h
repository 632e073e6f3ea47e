// SPDX-License-Identifier: MIT
// What the client tells its host: message lines and the error record. No function here fails visibly: missing
// pointers make it do nothing, pieces that do not fit are left out.
#pragma once

#include <cstdarg>
#include <cstddef>
#include <cstdint>

#include "QXErrorInfo.h"
#include "support/BoundedText.h"

// Category of every failure that the client reports.
inline constexpr std::uint32_t kClientFailure = 1000;

inline constexpr std::size_t kErrorTextCapacity = 4098;  // with the terminator
using ErrorText = char[kErrorTextCapacity];

// Formats a line into a message buffer of `capacity` bytes; what does not fit is cut, between two characters.
// The bytes written.
int TraceMessage(char* buffer, std::size_t capacity, const char* format, ...) noexcept
    __attribute__((format(printf, 3, 4)));
int TraceMessageV(char* buffer, std::size_t capacity, const char* format, std::va_list arguments) noexcept;

// The trace for the library's own developers: not delivered anywhere in this build.
template <typename... Arguments>
constexpr void DebugTrace(const char* /*format*/, Arguments... /*arguments*/) noexcept {}

// Writes the system's text for `error` (0xFFFFFFFF: for the thread's last error) and, in brackets, the
// thread's last-error value; "" when there is no text. Afterwards the last error is 0, except for error 0.
// Returns buffer.
char* GetErrorText(std::uint32_t error, ErrorText& buffer) noexcept;

// Name of the client's source in failure reports, without directories.
void GetSourceFileName(PathText& name) noexcept;

// Fills the host's record unless it holds an error already; `title` null means "Error". Nothing when bOK.
void ReportError(QXErrorInfo* pErrorInfo, bool bOK, const char* detail, std::uint32_t nError,
                 std::uint32_t nCode, const char* title) noexcept;

// The same without title, detail and category: the text is the system's for nError.
void ReportErrorCode(QXErrorInfo* pErrorInfo, bool bOK, std::uint32_t nError) noexcept;

// Copies a filled record into the host's record unless that holds an error already.
void StoreError(QXErrorInfo* pErrorInfo, const QXErrorInfo* record) noexcept;

// Sets the last error to 0 and zeroes the record; without a record it leaves the last error alone.
void ClearErrorInfo(QXErrorInfo* pErrorInfo) noexcept;

// Zeroes `copy`; moves a held error into it and clears the record.
void TakeErrorInfo(QXErrorInfo* pErrorInfo, QXErrorInfo* copy) noexcept;

// The failure report of an operation: "title text [number source line]" with the thread's last error.
void TraceFailure(QXErrorInfo* pErrorInfo, int line, const char* title) noexcept;

// The same for a number that is not the thread's last error.
void TraceFailure(QXErrorInfo* pErrorInfo, int line, const char* title, std::uint32_t error) noexcept;
