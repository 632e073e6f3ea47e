// SPDX-License-Identifier: MIT
#include "hosts/shared/Moments.h"

#include <algorithm>

namespace hosts {
namespace {

std::chrono::seconds slackOf(const Moment& one, const Moment& other) {
  return std::max(slackOf(one.precision), slackOf(other.precision));
}

}  // namespace

std::chrono::seconds slackOf(Precision precision) {
  using namespace std::chrono_literals;
  switch (precision) {
    case Precision::day:
      return 38h;
    case Precision::minute:
      return 59s;
    case Precision::second:
      break;
  }
  return 1s;
}

bool canBeSame(const Moment& one, const Moment& other) {
  return std::chrono::abs(one.at - other.at) <= slackOf(one, other);
}

bool isSurelyLater(const Moment& one, const Moment& other) { return one.at - other.at > slackOf(one, other); }

}  // namespace hosts
