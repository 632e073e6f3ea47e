// SPDX-License-Identifier: MIT
// Texts that must not stay behind in memory: passwords, and whatever carries them.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace secret {

// Overwrites memory that is about to be given back: plain stores into that need not be made.
inline void wipe(void* memory, std::size_t size) noexcept {
  volatile char* const bytes = static_cast<char*>(memory);
  for (std::size_t i = 0; i < size; ++i) bytes[i] = 0;
}

// Wipes what it frees, also what a container outgrows.
template <typename T>
struct WipingAllocator {
  using value_type = T;

  WipingAllocator() noexcept = default;
  template <typename Other>
  WipingAllocator(const WipingAllocator<Other>&) noexcept {}

  [[nodiscard]] T* allocate(std::size_t count) { return std::allocator<T>().allocate(count); }
  void deallocate(T* memory, std::size_t count) noexcept {
    wipe(memory, count * sizeof(T));
    std::allocator<T>().deallocate(memory, count);
  }
  friend bool operator==(WipingAllocator, WipingAllocator) noexcept { return true; }
};

// A text of which nothing is left when it goes or gets another value. No std::string: that one keeps short
// texts, as passwords are, within itself.
class Text {
 public:
  Text() noexcept = default;
  explicit Text(std::string_view text) { append(text); }
  Text(const Text&) = default;
  Text(Text&&) noexcept = default;
  ~Text() = default;
  Text& operator=(Text other) noexcept {
    bytes_.swap(other.bytes_);
    return *this;
  }

  Text& append(std::string_view text) {
    bytes_.insert(bytes_.end(), text.begin(), text.end());
    return *this;
  }
  [[nodiscard]] bool empty() const noexcept { return bytes_.empty(); }
  [[nodiscard]] std::string_view view() const noexcept { return {bytes_.data(), bytes_.size()}; }

 private:
  std::vector<char, WipingAllocator<char>> bytes_;
};

// `text` as it may be shown: without the secret, which may be empty.
inline std::string masked(std::string_view text, std::string_view secret) {
  constexpr std::string_view kMask = "****";
  std::string result(text);
  if (secret.empty()) return result;
  for (std::size_t at = 0; (at = result.find(secret, at)) != std::string::npos; at += kMask.size()) {
    result.replace(at, secret.size(), kMask);
  }
  return result;
}

}  // namespace secret
