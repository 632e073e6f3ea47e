// SPDX-License-Identifier: MIT
// Where the parts of the main window stand. Pure.
#pragma once

#include "hosts/qxbrowse/ui/System.h"

namespace browse {

// How much of the room the first side, and the part above the bottom, have.
struct Splits {
  double side = 0.5;
  double bottom = 0.72;
};

struct Layout {
  RECT local, server, bottom;
  RECT sideSplitter, bottomSplitter;
};

// `area` is the room between the toolbar and the status bar. No part gets smaller than can be used, unless
// there is no room for all.
Layout arrange(const RECT& area, const Splits& splits, UINT dpi);

// The splits with a splitter dragged to this point.
Splits dragSide(const RECT& area, Splits splits, POINT to);
Splits dragBottom(const RECT& area, Splits splits, POINT to);

}  // namespace browse
