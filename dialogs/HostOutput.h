// SPDX-License-Identifier: MIT
// What the functions that show a file dialog hand to the host.
#pragma once

#include <cstdint>
#include <memory>

#include "QXTypes.h"
#include "framework/ui/FileDialog.h"
#include "support/BoundedText.h"

struct HostOutput {
  char* pszPath;           // kHostPathCapacity bytes; null fails a confirmed dialog
  char** ppPathList;       // null fails a confirmed dialog
  std::uint32_t* pnCount;  // must be given, as the next two
  void** ppDialog;
  QXBool* pbCancelled;

  [[nodiscard]] bool given() const noexcept {
    return pnCount != nullptr && ppDialog != nullptr && pbCancelled != nullptr;
  }
  void clear() const noexcept;

  // Runs the dialog and then gives it to the host, whatever has come of it: one that is up is nobody's to
  // free. True when the user confirmed; a result other than OK sets *pbCancelled. A dialog that cannot run
  // says so in a message box.
  bool run(std::unique_ptr<CFileDialog> dialog) const;

  // Writes the result. `list` may be null: there is none. False, and nothing written, when something is
  // missing.
  bool deliver(const HostPathText& folder, std::size_t count, char* list) const noexcept;
};
