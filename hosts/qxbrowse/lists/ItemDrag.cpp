// SPDX-License-Identifier: MIT
#include "hosts/qxbrowse/lists/ItemDrag.h"

#include <utility>

namespace browse {

void ItemDrag::begin(HWND window, HWND list, int row) {
  end();
  POINT corner{};
  const LRESULT image =
      SendMessageW(list, LVM_CREATEDRAGIMAGE, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&corner));
  m_image = reinterpret_cast<HIMAGELIST>(image);
  m_isRunning = true;
  SetCapture(window);
  POINT at{};
  GetCursorPos(&at);
  if (m_image == nullptr) return;
  ImageList_BeginDrag(m_image, 0, 0, 0);
  ImageList_DragEnter(GetDesktopWindow(), at.x, at.y);
}

void ItemDrag::moveTo(POINT screen) const {
  if (m_image != nullptr) ImageList_DragMove(screen.x, screen.y);
}

void ItemDrag::end() {
  if (!std::exchange(m_isRunning, false)) return;
  if (m_image != nullptr) {
    ImageList_DragLeave(GetDesktopWindow());
    ImageList_EndDrag();
    ImageList_Destroy(std::exchange(m_image, nullptr));
  }
  ReleaseCapture();
}

}  // namespace browse
