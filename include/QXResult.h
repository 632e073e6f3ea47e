// SPDX-License-Identifier: MIT
// What an operation of qx::Client (QXClient.h) answers: a value or none, and in either case what the library
// reported meanwhile. C++20.
#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

namespace qx {

// The error record and the message line as an operation left them. A success can have a report, too: of an
// attempt that was repeated, or of what the library's answer 1 hides.
struct Report {
  bool isSet = false;        // the library wrote into the record
  bool isCancelled = false;  // a lambda asked to stop
  std::uint32_t number = 0;  // system or internet error number; 0 in reports of the operation itself
  std::string text;          // of the record; a failure that leaves none has one of these headers'
  std::string message;       // m_szMessage
};

// A missing value was asked for; what() is the report's text.
struct NoValue : std::logic_error {
  using std::logic_error::logic_error;
};

// The value of an operation that answers no more than success.
struct Done {};

template <typename Value>
class [[nodiscard]] Result {
 public:
  Result(std::optional<Value> value, Report report)
      : m_value(std::move(value)), m_report(std::move(report)) {}

  explicit operator bool() const noexcept { return m_value.has_value(); }
  const Report& report() const noexcept { return m_report; }

  // Throws NoValue after a failure.
  const Value& value() const& {
    if (!m_value) throw NoValue(m_report.text.empty() ? m_report.message : m_report.text);
    return *m_value;
  }
  Value value() && { return value(), std::move(*m_value); }
  Value valueOr(Value other) const { return m_value ? *m_value : std::move(other); }

  // REQUIRES: a success.
  const Value& operator*() const noexcept { return *m_value; }
  const Value* operator->() const noexcept { return &*m_value; }

 private:
  std::optional<Value> m_value;
  Report m_report;
};

}  // namespace qx
