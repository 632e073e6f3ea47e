// SPDX-License-Identifier: MIT
#include "framework/ui/ComboBox.h"

std::string CComboBox::GetLBText(int index) const {
  const int length = send(CB_GETLBTEXTLEN, index);
  if (length == CB_ERR) return {};
  std::string text(static_cast<std::size_t>(length), '\0');
  send(CB_GETLBTEXT, index, text.data());
  return text;
}

void CComboBox::ClearEditSel() const noexcept { SendMessage(CB_SETEDITSEL, 0, MAKELPARAM(-1, 0)); }
