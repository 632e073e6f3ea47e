// SPDX-License-Identifier: MIT
// A login text beside the field of the interface in which hosts see it. Names of servers and passwords
// outgrow those fields: what does not fit is kept whole here, and its field holds the beginning.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

#include "framework/text/Secret.h"

class LoginText {
 public:
  // `field`, which outlives this object, holds a text; texts of more than `most` bytes are refused.
  LoginText(std::span<char> field, std::size_t most);
  LoginText(const LoginText&) = delete;
  LoginText& operator=(const LoginText&) = delete;

  // `text` may stand in the field itself and means what counts then. One that is refused leaves the field
  // empty.
  void Store(const char* text) noexcept;

  // The text to log in with: the one that was stored, for as long as its field is left alone; else what
  // stands in the field, which a host has written there.
  [[nodiscard]] const char* Text() const noexcept;

  // False while a refused text is missing in its field: what is left is a login that nobody meant.
  [[nodiscard]] bool Fits() const noexcept { return !m_refused || *m_field.data() != '\0'; }

 private:
  [[nodiscard]] bool KeepsWhole() const noexcept;
  [[nodiscard]] std::string_view Meant(const char* text) const noexcept;

  const std::span<char> m_field;
  // "" when the field could hold the text; zeros behind it.
  std::vector<char, secret::WipingAllocator<char>> m_whole;
  std::size_t m_shown = 0;  // so much of m_whole was written into the field
  bool m_refused = false;
};
