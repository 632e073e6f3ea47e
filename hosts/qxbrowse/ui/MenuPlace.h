// SPDX-License-Identifier: MIT
#pragma once

#include "hosts/qxbrowse/ui/System.h"

namespace browse {

// Where the context menu of a list opens, on the screen: where WM_CONTEXTMENU says, or, when that came from
// the keyboard (-1, -1), below the name of the focused row, or in the list's corner where that row is out of
// view.
POINT menuPlace(HWND list, POINT asked);

}  // namespace browse
