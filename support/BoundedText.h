// SPDX-License-Identifier: MIT
// A NUL-terminated text in a fixed buffer that is never overrun and never silently cut: what does not fit is
// refused and leaves the text empty.
#pragma once

#include <cstddef>
#include <cstring>
#include <string_view>

template <std::size_t Capacity>  // with the terminator
class BoundedText {
 public:
  BoundedText() noexcept { clear(); }
  // No more than the text is copied: most are much shorter than their place.
  BoundedText(const BoundedText& other) noexcept { *this = other; }
  BoundedText& operator=(const BoundedText& other) noexcept {
    if (this != &other) std::memcpy(m_text, other.m_text, other.size() + 1);
    return *this;
  }

  // False, and empty, for a null or an over-long text.
  [[nodiscard]] bool assign(const char* text) noexcept {
    clear();
    return text != nullptr && append(text);
  }

  [[nodiscard]] bool append(std::string_view piece) noexcept {
    if (piece.size() >= Capacity - size()) {
      clear();
      return false;
    }
    const std::size_t length = size();
    piece.copy(m_text + length, piece.size());  // unlike memcpy it takes an empty piece without address
    m_text[length + piece.size()] = '\0';
    return true;
  }

  void clear() noexcept { m_text[0] = '\0'; }
  [[nodiscard]] bool empty() const noexcept { return m_text[0] == '\0'; }
  [[nodiscard]] std::size_t size() const noexcept { return std::strlen(m_text); }
  [[nodiscard]] const char* c_str() const noexcept { return m_text; }
  // For routines that shorten the text in place.
  [[nodiscard]] char* data() noexcept { return m_text; }

 private:
  char m_text[Capacity];
};

// Every path of the client is held in such a text: one of 4,095 bytes is the longest that systems take.
inline constexpr std::size_t kPathCapacity = 4096;
using PathText = BoundedText<kPathCapacity>;

// Such a path as fits where hosts have room for one: in an entry of a listing, in the name of a new
// directory.
inline constexpr std::size_t kHostPathCapacity = 256;
using HostPathText = BoundedText<kHostPathCapacity>;
