// SPDX-License-Identifier: MIT
// Binds the fields of a dialog object to the controls of its window.
#pragma once

class CWnd;

class CDataExchange {
 public:
  CDataExchange(CWnd* dialog, bool saveAndValidate) noexcept
      : m_pDlgWnd(dialog), m_bSaveAndValidate(saveAndValidate) {}

  CWnd* m_pDlgWnd;
  bool m_bSaveAndValidate;  // from the controls into the fields
};

// Gives the dialog's control to `control` at the first exchange. Throws std::runtime_error when the dialog
// has no such control or another object has it.
void DDX_Control(CDataExchange* exchange, int id, CWnd& control);
