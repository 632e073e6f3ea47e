// SPDX-License-Identifier: MIT
// For framework/windows/*.cpp: a local path as hosts write it, as the system wants it. Its calls take 260
// characters of an ordinary path; a longer one has to be whole and in plain form, behind "\\?\".
#pragma once

#include <array>
#include <cstddef>

namespace platform {

class LocalPath {
 public:
  // A path in the code page of the system's file calls. What is null, or too long in any form, is empty,
  // which every call of the system refuses.
  explicit LocalPath(const char* path) noexcept;

  [[nodiscard]] const wchar_t* text() const noexcept { return text_.data(); }

 private:
  static constexpr std::size_t kLongest = 4096;  // with the terminator
  static constexpr std::size_t kRoom = 512;      // of the current folder and the prefix, in front

  void makeLong(const wchar_t* path) noexcept;

  std::array<wchar_t, kRoom + kLongest> text_{};
};

}  // namespace platform
