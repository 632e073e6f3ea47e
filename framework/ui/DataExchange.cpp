// SPDX-License-Identifier: MIT
#include "framework/ui/DataExchange.h"

#include <stdexcept>

#include "framework/ui/Wnd.h"

void DDX_Control(CDataExchange* exchange, int id, CWnd& control) {
  if (control.m_hWnd != nullptr) return;
  if (!control.SubclassWindow(exchange->m_pDlgWnd->GetDlgItem(id)))
    throw std::runtime_error("the dialog lacks a control");
}
