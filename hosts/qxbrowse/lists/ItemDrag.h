// SPDX-License-Identifier: MIT
// The picture of items that are dragged from one list to the other. The window that begins a drag has the
// mouse until the end of it.
#pragma once

#include "hosts/qxbrowse/ui/System.h"

namespace browse {

class ItemDrag {
 public:
  ItemDrag() = default;
  ~ItemDrag() { end(); }
  ItemDrag(const ItemDrag&) = delete;
  ItemDrag& operator=(const ItemDrag&) = delete;

  void begin(HWND window, HWND list, int row);
  void moveTo(POINT screen) const;
  // Also when there is none.
  void end();
  [[nodiscard]] bool isRunning() const { return m_isRunning; }

 private:
  HIMAGELIST m_image = nullptr;
  bool m_isRunning = false;
};

}  // namespace browse
