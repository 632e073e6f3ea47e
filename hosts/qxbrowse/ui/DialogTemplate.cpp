// SPDX-License-Identifier: MIT
#include "hosts/qxbrowse/ui/DialogTemplate.h"

#include <cstring>

namespace browse {
namespace {

constexpr std::size_t kAlignment = 4;
constexpr WORD kPointSize = 8;
constexpr const wchar_t* kDialogFont = L"MS Shell Dlg 2";  // stands for the system's own
constexpr DWORD kStyle = DS_MODALFRAME | DS_SHELLFONT | DS_CENTER | WS_POPUP | WS_CAPTION | WS_SYSMENU;

}  // namespace

DialogTemplate::DialogTemplate(const std::wstring& title, short width, short height) {
  const DLGTEMPLATE head{kStyle, 0, 0, 0, 0, width, height};
  append(&head, sizeof head);
  const WORD noMenuAndOwnClass[] = {0, 0};
  append(noMenuAndOwnClass, sizeof noMenuAndOwnClass);
  append(title);
  append(&kPointSize, sizeof kPointSize);
  append(kDialogFont);
}

void DialogTemplate::add(ControlClass kind, WORD id, DWORD style, const DialogArea& area,
                         const std::wstring& text) {
  align();
  const DLGITEMTEMPLATE item{style | WS_CHILD | WS_VISIBLE, 0, area.x, area.y, area.width, area.height, id};
  append(&item, sizeof item);
  const WORD controlClass[] = {0xFFFF, static_cast<WORD>(kind)};
  append(controlClass, sizeof controlClass);
  append(text);
  const WORD noData = 0;
  append(&noData, sizeof noData);
  auto* const head = reinterpret_cast<DLGTEMPLATE*>(m_bytes.data());
  ++head->cdit;
}

INT_PTR DialogTemplate::show(HWND owner, DLGPROC handle, LPARAM parameter) const {
  const auto* const head = reinterpret_cast<const DLGTEMPLATE*>(m_bytes.data());
  return DialogBoxIndirectParamW(GetModuleHandleW(nullptr), head, owner, handle, parameter);
}

void DialogTemplate::append(const void* data, std::size_t size) {
  const auto* const bytes = static_cast<const unsigned char*>(data);
  m_bytes.insert(m_bytes.end(), bytes, bytes + size);
}

void DialogTemplate::append(const std::wstring& text) {
  append(text.c_str(), (text.size() + 1) * sizeof(wchar_t));
}

void DialogTemplate::align() {
  while (m_bytes.size() % kAlignment != 0) m_bytes.push_back(0);
}

}  // namespace browse
