// SPDX-License-Identifier: MIT
#include "framework/ui/ComboBox.h"

#include <algorithm>

std::string CComboBox::GetLBText(int index) const {
  const int length = send(CB_GETLBTEXTLEN, index);
  if (length == CB_ERR) return {};
  std::string text(static_cast<std::size_t>(length), '\0');
  // The length that was told may be that of a longer form.
  const int copied = send(CB_GETLBTEXT, index, text.data());
  text.resize(static_cast<std::size_t>(std::clamp(copied, 0, length)));
  return text;
}

void CComboBox::ClearEditSel() const noexcept { SendMessage(CB_SETEDITSEL, 0, MAKELPARAM(-1, 0)); }
