// SPDX-License-Identifier: MIT
#include "hosts/qxbrowse/ui/Dialog.h"

#include <algorithm>

namespace browse {
namespace {

constexpr WORD kLabelId = 0xFFFF;

}  // namespace

void Dialog::addLabel(Text name, const DialogArea& area) {
  m_template.add(ControlClass::label, kLabelId, SS_LEFT, area, text(name));
}

void Dialog::addText(WORD id, const DialogArea& area) {
  m_template.add(ControlClass::label, id, SS_LEFT | SS_NOPREFIX, area, {});
}

void Dialog::addField(WORD id, const DialogArea& area, DWORD style) {
  m_template.add(ControlClass::edit, id, WS_TABSTOP | WS_BORDER | style, area, {});
}

void Dialog::addButton(WORD id, Text name, const DialogArea& area, DWORD style) {
  m_template.add(ControlClass::button, id, WS_TABSTOP | style, area, text(name));
}

void Dialog::addList(WORD id, const DialogArea& area) {
  const DWORD style = WS_TABSTOP | WS_BORDER | WS_VSCROLL | LBS_NOTIFY | LBS_NOINTEGRALHEIGHT;
  m_template.add(ControlClass::list, id, style, area, {});
}

void Dialog::addChoice(WORD id, const DialogArea& area) {
  m_template.add(ControlClass::comboBox, id, WS_TABSTOP | WS_VSCROLL | CBS_DROPDOWNLIST, area, {});
}

INT_PTR Dialog::show(HWND owner) {
  const INT_PTR result = m_template.show(owner, &Dialog::handle, reinterpret_cast<LPARAM>(this));
  m_window = nullptr;
  return std::max<INT_PTR>(result, 0);
}

INT_PTR CALLBACK Dialog::handle(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_INITDIALOG) {
    SetWindowLongPtrW(window, DWLP_USER, lParam);
    auto* const dialog = reinterpret_cast<Dialog*>(lParam);
    dialog->m_window = window;
    dialog->focus(dialog->begin());
    return FALSE;  // the focus is set
  }
  auto* const dialog = reinterpret_cast<Dialog*>(GetWindowLongPtrW(window, DWLP_USER));
  if (dialog == nullptr || message != WM_COMMAND) return FALSE;
  dialog->command(LOWORD(wParam), HIWORD(wParam));
  return TRUE;
}

void Dialog::focus(WORD id) const {
  // Not SetFocus(), which leaves the default button as it was.
  SendMessageW(m_window, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(control(id)), TRUE);
}

}  // namespace browse
