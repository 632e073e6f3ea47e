// SPDX-License-Identifier: MIT
// What the storms must know of the build they run in; CMakeLists.txt says it.
#pragma once

namespace storm {

// How often a storm repeats its round.
inline constexpr int kRounds = QX_STORM_ROUNDS;

// A sanitizer slows everything down and keeps freed memory for itself: neither times nor memory mean
// anything.
inline constexpr bool kSanitized = QX_STORM_SANITIZED != 0;

// Not a Windows program.
inline constexpr bool kNative = QX_STORM_NATIVE != 0;

// Under Wine times are printed, not judged.
inline constexpr bool kJudgesTimes = kNative && !kSanitized;

}  // namespace storm
