// SPDX-License-Identifier: MIT
// Decisions out of the fuzzer's bytes. Where none are left, everybody does the usual thing: 0.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace fuzz {

class Choices {
 public:
  explicit Choices(std::string_view bytes) noexcept : bytes_(bytes) {}

  // 0 to `count` - 1.
  unsigned of(unsigned count) noexcept {
    if (bytes_.empty()) return 0;
    const auto byte = static_cast<unsigned char>(bytes_.front());
    bytes_.remove_prefix(1);
    return byte % count;
  }

  template <class Value, std::size_t count>
  const Value& from(const Value (&values)[count]) noexcept {
    return values[of(count)];
  }

  std::string text(std::size_t size) {
    const std::string taken(bytes_.substr(0, size));
    bytes_.remove_prefix(taken.size());
    return taken;
  }

 private:
  std::string_view bytes_;
};

}  // namespace fuzz
