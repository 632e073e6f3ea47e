// SPDX-License-Identifier: MIT
#include "framework/ui/Wnd.h"

#include <utility>

#include "framework/ui/DataExchange.h"
#include "framework/ui/ThreadState.h"

namespace {

// Where a window keeps the object that has taken it over.
constexpr const char* kObject = "ZRM_QXKT32x64.CWnd";

}  // namespace

CWnd::~CWnd() {
  if (m_pfnSuper != nullptr) UnsubclassWindow();
}

CWnd* CWnd::FromHandlePermanent(HWND window) noexcept {
  return static_cast<CWnd*>(GetPropA(window, kObject));
}

bool CWnd::CreateEx(DWORD exStyle, const char* className, const char* text, DWORD style, const RECT& rect,
                    HWND parent, UINT id) {
  CREATESTRUCTA create{};
  create.dwExStyle = exStyle;
  create.lpszClass = className;
  create.lpszName = text;
  create.style = static_cast<LONG>(style);
  create.x = rect.left;
  create.y = rect.top;
  create.cx = rect.right - rect.left;
  create.cy = rect.bottom - rect.top;
  create.hwndParent = parent;
  create.hMenu = reinterpret_cast<HMENU>(static_cast<UINT_PTR>(id));
  create.hInstance = GetModuleHandleA(nullptr);
  if (!PreCreateWindow(create)) return false;
  AfxHookWindowCreate(this);
  const HWND window = CreateWindowExA(create.dwExStyle, create.lpszClass, create.lpszName,
                                      static_cast<DWORD>(create.style), create.x, create.y, create.cx,
                                      create.cy, create.hwndParent, create.hMenu, create.hInstance, nullptr);
  AfxUnhookWindowCreate();
  return window != nullptr && m_hWnd == window;
}

bool CWnd::SubclassWindow(HWND window) {
  if (window == nullptr || m_hWnd != nullptr || FromHandlePermanent(window) != nullptr) return false;
  if (!SetPropA(window, kObject, this)) return false;
  m_hWnd = window;
  try {
    PreSubclassWindow();
  } catch (...) {
    letGo();
    throw;
  }
  m_pfnSuper = reinterpret_cast<WNDPROC>(
      SetWindowLongPtrA(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(dispatch)));
  if (m_pfnSuper == nullptr) letGo();
  return m_pfnSuper != nullptr;
}

HWND CWnd::UnsubclassWindow() noexcept {
  const HWND window = m_hWnd;
  if (m_pfnSuper != nullptr)
    SetWindowLongPtrA(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(std::exchange(m_pfnSuper, nullptr)));
  letGo();
  return window;
}

HWND CWnd::Detach() noexcept { return std::exchange(m_hWnd, nullptr); }

bool CWnd::DestroyWindow() noexcept { return m_hWnd != nullptr && ::DestroyWindow(m_hWnd); }

LRESULT CWnd::SendMessage(UINT message, WPARAM wParam, LPARAM lParam) const noexcept {
  return SendMessageA(m_hWnd, message, wParam, lParam);
}

std::string CWnd::GetWindowText() const {
  std::string text(static_cast<std::size_t>(GetWindowTextLengthA(m_hWnd)), '\0');
  const int length = GetWindowTextA(m_hWnd, text.data(), static_cast<int>(text.size()) + 1);
  text.resize(static_cast<std::size_t>(length));
  return text;
}

void CWnd::SetWindowText(const char* text) const noexcept { SetWindowTextA(m_hWnd, text); }

DWORD CWnd::GetStyle() const noexcept { return static_cast<DWORD>(GetWindowLongPtrA(m_hWnd, GWL_STYLE)); }

HWND CWnd::GetParent() const noexcept { return ::GetParent(m_hWnd); }

HWND CWnd::GetDlgItem(int id) const noexcept { return ::GetDlgItem(m_hWnd, id); }

bool CWnd::UpdateData(bool saveAndValidate) {
  CDataExchange exchange(this, saveAndValidate);
  try {
    DoDataExchange(&exchange);
    return true;
  } catch (...) {
    AfxKeepException();
    return false;
  }
}

bool CWnd::PreCreateWindow(CREATESTRUCTA&) { return true; }

LRESULT CWnd::WindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
  LRESULT result = 0;
  if (message == WM_COMMAND && OnCommand(wParam, lParam)) return 0;
  if (message == WM_NOTIFY && OnNotify(wParam, lParam, &result)) return result;
  return DefWindowProc(message, wParam, lParam);
}

LRESULT CWnd::DefWindowProc(UINT message, WPARAM wParam, LPARAM lParam) noexcept {
  return m_pfnSuper != nullptr ? CallWindowProcA(m_pfnSuper, m_hWnd, message, wParam, lParam)
                               : DefWindowProcA(m_hWnd, message, wParam, lParam);
}

LRESULT CALLBACK CWnd::dispatch(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  CWnd* const object = FromHandlePermanent(window);
  if (object == nullptr) return DefWindowProcA(window, message, wParam, lParam);
  LRESULT result = 0;
  try {
    result = object->WindowProc(message, wParam, lParam);
  } catch (...) {
    AfxKeepException();
  }
  if (message == WM_NCDESTROY && FromHandlePermanent(window) == object) object->UnsubclassWindow();
  return result;
}

void CWnd::letGo() noexcept {
  if (FromHandlePermanent(m_hWnd) == this) RemovePropA(m_hWnd, kObject);
  m_hWnd = nullptr;
}
