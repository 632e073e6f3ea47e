// SPDX-License-Identifier: MIT
// What the queue tells of an entry.
#pragma once

#include <array>
#include <cstddef>

namespace browse {

enum class QueueColumn { name, direction, size, progress, rate, left, state };
constexpr std::size_t kQueueColumns = 7;

using QueueWidths = std::array<int, kQueueColumns>;  // at 96 dots per inch; 0: as usual

}  // namespace browse
