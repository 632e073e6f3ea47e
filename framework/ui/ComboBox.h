// SPDX-License-Identifier: MIT
// A combo box under the framework's usual name. Indices start at 0; what finds nothing answers CB_ERR (-1).
#pragma once

#include "framework/ui/Wnd.h"

class CComboBox : public CWnd {
 public:
  bool Create(DWORD style, const RECT& rect, HWND parent, UINT id) {
    return CreateEx(0, "COMBOBOX", "", style, rect, parent, id);
  }

  [[nodiscard]] int GetCount() const noexcept { return send(CB_GETCOUNT); }
  [[nodiscard]] int GetCurSel() const noexcept { return send(CB_GETCURSEL); }
  int SetCurSel(int index) const noexcept { return send(CB_SETCURSEL, index); }
  [[nodiscard]] std::string GetLBText(int index) const;
  int AddString(const char* text) const noexcept { return send(CB_ADDSTRING, 0, text); }
  int InsertString(int index, const char* text) const noexcept { return send(CB_INSERTSTRING, index, text); }
  int DeleteString(int index) const noexcept { return send(CB_DELETESTRING, index); }
  // Whole texts, whatever their case; starts after `after` and goes round.
  [[nodiscard]] int FindStringExact(int after, const char* text) const noexcept {
    return send(CB_FINDSTRINGEXACT, after, text);
  }
  void ResetContent() const noexcept { send(CB_RESETCONTENT); }
  void ClearEditSel() const noexcept;

 private:
  int send(UINT message, int number = 0, const char* text = nullptr) const noexcept {
    return static_cast<int>(
        SendMessage(message, static_cast<WPARAM>(number), reinterpret_cast<LPARAM>(text)));
  }
};
