// SPDX-License-Identifier: MIT
// Whether to judge figures that hold on a machine with nothing else to do: QX_LATENCY=1 says so.
#pragma once

#include <cstdlib>

namespace browse {

inline bool isMachineQuiet() { return std::getenv("QX_LATENCY") != nullptr; }

}  // namespace browse
