// SPDX-License-Identifier: MIT
#include "Src/LoginText.h"

#include <cstring>
#include <functional>

#include "framework/platform/code_page.h"
#include "framework/text/HostText.h"

namespace {

// The text, then zeros to the end of the place, so that nothing remains of the text before.
void put(std::span<char> place, std::string_view text) noexcept {
  std::memmove(place.data(), text.data(), text.size());
  secret::wipe(place.data() + text.size(), place.size() - text.size());
}

}  // namespace

LoginText::LoginText(std::span<char> field, std::size_t most) : m_field(field), m_whole(most + 1) {}

void LoginText::Store(const char* text) noexcept {
  if (text == m_field.data() && !Fits()) return;
  std::string_view meant = Meant(text);
  m_refused = meant.size() >= m_whole.size();
  if (m_refused) meant = "";
  if (meant.size() < m_field.size()) {
    put(m_field, meant);
    put(m_whole, "");
    return;
  }
  put(m_whole, meant);
  m_shown = hosttext::wholeSize({m_whole.data(), m_field.size() - 1}, platform::narrowCodePage());
  put(m_field, {m_whole.data(), m_shown});
}

const char* LoginText::Text() const noexcept { return KeepsWhole() ? m_whole.data() : m_field.data(); }

bool LoginText::KeepsWhole() const noexcept {
  return m_whole[0] != '\0' && m_field[m_shown] == '\0' &&
         std::memcmp(m_field.data(), m_whole.data(), m_shown) == 0;
}

std::string_view LoginText::Meant(const char* text) const noexcept {
  const std::less<> before;
  const bool inField = !before(text, m_field.data()) && before(text, m_field.data() + m_field.size());
  return inField && KeepsWhole() ? m_whole.data() + (text - m_field.data()) : text;
}
