// SPDX-License-Identifier: MIT
// A window under the framework's usual name. The object and the window live apart: a window is made by
// Create, or an existing one is taken over by SubclassWindow; when the window is destroyed the object stays,
// without one. All calls belong to the thread that made the window.
#pragma once

#include <string>

#include "framework/windows/windows_api.h"

class CDataExchange;

class CWnd {
 public:
  CWnd() noexcept = default;
  virtual ~CWnd();  // gives a window that it still has back to its own procedure
  CWnd(const CWnd&) = delete;
  CWnd& operator=(const CWnd&) = delete;

  // The object that has taken over `window`; null if none has.
  static CWnd* FromHandlePermanent(HWND window) noexcept;

  // `rect` in the parent's client co-ordinates. False with the last error set when the system refuses.
  bool CreateEx(DWORD exStyle, const char* className, const char* text, DWORD style, const RECT& rect,
                HWND parent, UINT id);
  // Messages of an existing window come here first. False when `window` is none or is taken over already.
  bool SubclassWindow(HWND window);
  HWND UnsubclassWindow() noexcept;
  // Puts a window into m_hWnd without taking its messages.
  void Attach(HWND window) noexcept { m_hWnd = window; }
  HWND Detach() noexcept;
  bool DestroyWindow() noexcept;

  LRESULT SendMessage(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const noexcept;
  [[nodiscard]] std::string GetWindowText() const;
  void SetWindowText(const char* text) const noexcept;
  [[nodiscard]] DWORD GetStyle() const noexcept;
  [[nodiscard]] HWND GetParent() const noexcept;
  // Null when there is no such child.
  [[nodiscard]] HWND GetDlgItem(int id) const noexcept;

  // Moves data between the fields and the controls by DoDataExchange; false when that threw.
  bool UpdateData(bool saveAndValidate);

  HWND m_hWnd = nullptr;

 protected:
  // May change what CreateEx asks for; false gives it up.
  virtual bool PreCreateWindow(CREATESTRUCTA& create);
  // The window is known and its messages do not come here yet.
  virtual void PreSubclassWindow() {}
  virtual void DoDataExchange(CDataExchange*) {}

  // Every message. The default hands WM_COMMAND and WM_NOTIFY to the two below and the rest, or what they
  // leave, to DefWindowProc.
  virtual LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam);
  // True: handled.
  virtual bool OnCommand(WPARAM, LPARAM) { return false; }
  virtual bool OnNotify(WPARAM, LPARAM, LRESULT*) { return false; }
  // The procedure that the window had before.
  LRESULT DefWindowProc(UINT message, WPARAM wParam, LPARAM lParam) noexcept;

 private:
  static LRESULT CALLBACK dispatch(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  void letGo() noexcept;

  WNDPROC m_pfnSuper = nullptr;
};
