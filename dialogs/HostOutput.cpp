// SPDX-License-Identifier: MIT
#include "dialogs/HostOutput.h"

#include <cstring>

void HostOutput::clear() const noexcept {
  *pbCancelled = 0;
  *ppDialog = nullptr;
  *pnCount = 0;
}

bool HostOutput::run(std::unique_ptr<CFileDialog> dialog) const {
  bool confirmed = false;
  try {
    confirmed = dialog->DoModal() == IDOK;
    *pbCancelled = confirmed ? 0 : 1;
  } catch (...) {
    MessageBoxA(nullptr, "Could not open FileDialog!", "ERROR", MB_ICONERROR);
  }
  *ppDialog = dialog.release();
  return confirmed;
}

bool HostOutput::deliver(const HostPathText& folder, std::size_t count, char* list) const noexcept {
  if (pszPath == nullptr || ppPathList == nullptr || list == nullptr) return false;
  std::memcpy(pszPath, folder.c_str(), folder.size() + 1);
  *pnCount = static_cast<std::uint32_t>(count);
  *ppPathList = list;
  return true;
}
