// SPDX-License-Identifier: MIT
// A modal dialog with a template that is made by code.
#pragma once

#include <string>

#include "hosts/qxbrowse/ui/DialogTemplate.h"
#include "hosts/qxbrowse/ui/System.h"
#include "hosts/qxbrowse/ui/Texts.h"
#include "hosts/qxbrowse/ui/WindowText.h"

namespace browse {

class Dialog {
 public:
  Dialog(Text title, short width, short height) : m_template(text(title), width, height) {}
  Dialog(const Dialog&) = delete;
  Dialog& operator=(const Dialog&) = delete;
  virtual ~Dialog() = default;

  // What end() was given; 0 where there can be no dialog.
  INT_PTR show(HWND owner);

 protected:
  // In the order of the Tab key. The label in front of a field is its name to a screen reader.
  void addLabel(Text name, const DialogArea& area);
  // A text that setText() gives, of several lines.
  void addText(WORD id, const DialogArea& area);
  void addField(WORD id, const DialogArea& area, DWORD style = ES_AUTOHSCROLL);
  void addButton(WORD id, Text name, const DialogArea& area, DWORD style = BS_PUSHBUTTON);
  void addList(WORD id, const DialogArea& area);
  void addChoice(WORD id, const DialogArea& area);

  // The window is there, with all controls. Answers which one gets the focus.
  virtual WORD begin() = 0;
  // A button was pressed, or a control tells something (EN_..., LBN_..., CBN_...).
  virtual void command(WORD id, WORD notification) = 0;

  void end(INT_PTR result) const { EndDialog(m_window, result); }
  [[nodiscard]] HWND window() const { return m_window; }
  [[nodiscard]] HWND control(WORD id) const { return GetDlgItem(m_window, id); }
  [[nodiscard]] std::wstring textOf(WORD id) const { return windowText(control(id)); }
  void setText(WORD id, const std::wstring& text) const { setWindowText(control(id), text); }
  [[nodiscard]] bool isChecked(WORD id) const { return IsDlgButtonChecked(m_window, id) == BST_CHECKED; }
  void check(WORD id, bool checked) const {
    CheckDlgButton(m_window, id, checked ? BST_CHECKED : BST_UNCHECKED);
  }
  LRESULT send(WORD id, UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const {
    return SendDlgItemMessageW(m_window, id, message, wParam, lParam);
  }
  void addItem(WORD id, UINT message, const std::wstring& item) const {
    send(id, message, 0, reinterpret_cast<LPARAM>(item.c_str()));
  }
  void focus(WORD id) const;

 private:
  static INT_PTR CALLBACK handle(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

  DialogTemplate m_template;
  HWND m_window = nullptr;
};

}  // namespace browse
