// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <vector>

namespace testing_support {

// The middle value; of an even number of values the lower of the two middle ones. REQUIRES: values not empty.
template <class T>
[[nodiscard]] T median(std::vector<T> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>((values.size() - 1) / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

}  // namespace testing_support
