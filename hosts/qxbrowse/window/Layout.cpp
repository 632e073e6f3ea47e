// SPDX-License-Identifier: MIT
#include "hosts/qxbrowse/window/Layout.h"

#include <algorithm>

#include "hosts/qxbrowse/ui/Dpi.h"

namespace browse {
namespace {

constexpr int kSplitter = 6;  // all at 96 dots per inch
constexpr int kMargin = 4;
constexpr int kLeastSide = 120;
constexpr int kLeastBottom = 60;

// Where `share` of the length ends, both parts being at least this long.
int split(int length, double share, int least) {
  const int wanted = static_cast<int>(share * length);
  return length < 2 * least ? length / 2 : std::clamp(wanted, least, length - least);
}

double shareAt(int position, int length) {
  return length <= 0 ? 0.5 : std::clamp(static_cast<double>(position) / length, 0.0, 1.0);
}

}  // namespace

Layout arrange(const RECT& area, const Splits& splits, UINT dpi) {
  const int margin = scale(kMargin, dpi);
  const LONG half = scale(kSplitter, dpi) / 2;
  const RECT room{area.left + margin, area.top + margin, area.right - margin, area.bottom};
  const LONG middle = room.left + split(room.right - room.left, splits.side, scale(kLeastSide, dpi));
  const LONG floor = room.top + split(room.bottom - room.top, splits.bottom, scale(kLeastBottom, dpi));
  Layout layout{};
  layout.local = {room.left, room.top, middle - half, floor - half};
  layout.server = {middle + half, room.top, room.right, floor - half};
  layout.bottom = {room.left, floor + half, room.right, room.bottom};
  layout.sideSplitter = {middle - half, room.top, middle + half, floor - half};
  layout.bottomSplitter = {room.left, floor - half, room.right, floor + half};
  return layout;
}

Splits dragSide(const RECT& area, Splits splits, POINT to) {
  splits.side = shareAt(to.x - area.left, area.right - area.left);
  return splits;
}

Splits dragBottom(const RECT& area, Splits splits, POINT to) {
  splits.bottom = shareAt(to.y - area.top, area.bottom - area.top);
  return splits;
}

}  // namespace browse
