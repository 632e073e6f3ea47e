// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

namespace testing_support {

// The middle value; of an even number of values the lower of the two middle ones. REQUIRES: values not empty.
template <class T>
[[nodiscard]] T median(std::vector<T> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>((values.size() - 1) / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

// The least of the medians of five runs of values, in their order. For times: other programs on the machine
// delay some of the runs, while what the library itself costs is in each. REQUIRES: at least five values.
template <class T>
[[nodiscard]] T leastDisturbedMedian(const std::vector<T>& values) {
  constexpr std::size_t kRuns = 5;
  const auto at = [&](std::size_t run) {
    return values.begin() + static_cast<std::ptrdiff_t>(values.size() * run / kRuns);
  };
  T least = median(std::vector<T>(at(0), at(1)));
  for (std::size_t run = 1; run < kRuns; ++run) {
    least = std::min(least, median(std::vector<T>(at(run), at(run + 1))));
  }
  return least;
}

}  // namespace testing_support
