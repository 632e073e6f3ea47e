// SPDX-License-Identifier: MIT
#include "dialogs/DirFileLayout.h"

#include <algorithm>
#include <cstdlib>
#include <stdexcept>

#include "dialogs/DirFileState.h"
#include "dialogs/Rectangles.h"
#include "framework/windows/windows_api.h"

namespace {

constexpr int kButtonGap = 4;

RECT rectOf(HWND dialog, int id) noexcept { return ::rectOf(dialog, GetDlgItem(dialog, id)); }

void place(HWND control, const RECT& rect) noexcept {
  MoveWindow(control, rect.left, rect.top, width(rect), height(rect), TRUE);
}

void place(HWND dialog, int id, const RECT& rect) noexcept { place(GetDlgItem(dialog, id), rect); }

void moveTo(HWND dialog, int id, int left, int top) noexcept {
  RECT rect = rectOf(dialog, id);
  OffsetRect(&rect, left - rect.left, top - rect.top);
  place(dialog, id, rect);
}

void hide(HWND dialog, int id) noexcept { ShowWindow(GetDlgItem(dialog, id), SW_HIDE); }

void placeOkBesideCancel(HWND dialog) noexcept {
  const RECT cancel = rectOf(dialog, IDCANCEL);
  moveTo(dialog, IDOK, cancel.left - width(rectOf(dialog, IDOK)) - kButtonGap, cancel.top);
}

}  // namespace

void PlaceButtonsAndList(HWND dialog) noexcept {
  hide(dialog, kFileNameEdit);
  placeOkBesideCancel(dialog);

  RECT list = rectOf(dialog, kListArea);
  list.bottom += std::abs(list.bottom - (rectOf(dialog, IDCANCEL).top - 45)) + 25;
  place(dialog, kListArea, list);
}

void PlaceFileNameLabel(HWND dialog) noexcept {
  SetDlgItemTextA(dialog, kFileNameLabel, "");
  RECT label = rectOf(dialog, kFileNameLabel);
  OffsetRect(&label, 0, 14);
  label.right += 20;
  place(dialog, kFileNameLabel, label);
}

void MakeFolderEdit(HWND dialog, CEdit& edit, const char* folder) {
  RECT rect = rectOf(dialog, kFileNameEdit);
  rect.left = rectOf(dialog, kFileNameLabel).left;
  rect.right -= 70;
  OffsetRect(&rect, 0, 30);
  if (!edit.Create(WS_VISIBLE | WS_CHILD | WS_TABSTOP, rect, dialog, kFolderEdit))
    throw std::runtime_error("the dialog gets no folder edit");

  edit.SetWindowText(folder);
  const auto font = SendDlgItemMessageA(dialog, kFileNameEdit, WM_GETFONT, 0, 0);
  edit.SendMessage(WM_SETFONT, static_cast<WPARAM>(font), TRUE);
  SetWindowLongPtrA(edit.m_hWnd, GWL_EXSTYLE, GetWindowLongPtrA(edit.m_hWnd, GWL_EXSTYLE) | WS_EX_CLIENTEDGE);
  SetWindowPos(edit.m_hWnd, GetDlgItem(dialog, kListArea), 0, 0, 0, 0,
               SWP_NOMOVE | SWP_NOSIZE | SWP_FRAMECHANGED);
  ShowWindow(edit.m_hWnd, SW_HIDE);
}

void HideFileTypes(HWND dialog) noexcept {
  for (const int id : {kFileNameLabel, kFileTypeLabel, kFileTypeBox}) hide(dialog, id);
}

void PlaceFileTypes(HWND dialog, const CEdit& folderEdit) noexcept {
  RECT frame{};
  GetWindowRect(dialog, &frame);
  SetWindowPos(dialog, nullptr, 0, 0, width(frame), height(frame) + 35, SWP_NOMOVE | SWP_NOZORDER);

  RECT label = rectOf(dialog, kFileTypeLabel);
  OffsetRect(&label, 0, 25);
  place(dialog, kFileTypeLabel, label);
  moveTo(dialog, kFileTypeBox, label.left, label.bottom);
  moveTo(dialog, IDCANCEL, rectOf(dialog, IDCANCEL).left, label.bottom - 2);
  placeOkBesideCancel(dialog);

  RECT edit = rectOf(dialog, folderEdit.m_hWnd);
  edit.right = rectOf(dialog, IDCANCEL).right;
  place(folderEdit.m_hWnd, edit);
}

void CentreOnOwner(HWND dialog) noexcept {
  MONITORINFO screen{};
  screen.cbSize = sizeof screen;
  GetMonitorInfoA(MonitorFromWindow(dialog, MONITOR_DEFAULTTONEAREST), &screen);
  const RECT& work = screen.rcWork;
  RECT around = work;
  const HWND owner = GetWindow(dialog, GW_OWNER);
  if (owner != nullptr && IsWindowVisible(owner) && !IsIconic(owner)) GetWindowRect(owner, &around);

  RECT frame{};
  GetWindowRect(dialog, &frame);
  // A dialog larger than the work area keeps its upper left corner in sight.
  const int left = std::min<int>((around.left + around.right - width(frame)) / 2, work.right - width(frame));
  const int top =
      std::min<int>((around.top + around.bottom - height(frame)) / 2, work.bottom - height(frame));
  SetWindowPos(dialog, nullptr, std::max<int>(left, work.left), std::max<int>(top, work.top), 0, 0,
               SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}
