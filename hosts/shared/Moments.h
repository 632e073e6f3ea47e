// SPDX-License-Identifier: MIT
// When a file was changed, as exactly as whoever told it knows.
#pragma once

#include <chrono>

#include "QXDirEntry.h"

namespace hosts {

// What a time of a listing is true to. Servers that tell calendar dates show minutes, and of older files
// days.
enum class Precision { second, minute, day };

struct Moment {
  std::chrono::sys_seconds at;
  Precision precision = Precision::second;
};

// Of a calendar time of this machine's zone, as entries of listings have it. REQUIRES: not zero.
std::chrono::sys_seconds momentOf(const QXFileTime& localTime);

// How far apart two tellings of one moment can be. File systems keep even seconds at worst; a day may be that
// of any zone.
std::chrono::seconds slackOf(Precision precision);

// Whether both can be one moment, each told in its precision.
bool canBeSame(const Moment& one, const Moment& other);
// Whether `one` is later, whatever is left out of both.
bool isSurelyLater(const Moment& one, const Moment& other);

}  // namespace hosts
