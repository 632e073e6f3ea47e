// SPDX-License-Identifier: MIT
// Stands where the system's file dialogs are called, while it lives; one at a time.
#pragma once

#include <functional>
#include <string>
#include <utility>

#include "framework/ui/CommonDialogs.h"

class FileDialogStandIn {
 public:
  using Call = std::function<BOOL(OPENFILENAMEA&)>;

  explicit FileDialogStandIn(Call call) {
    s_call = std::move(call);
    g_commonDialogs.openFileName = [](OPENFILENAMEA* record) { return s_called = "open", s_call(*record); };
    g_commonDialogs.saveFileName = [](OPENFILENAMEA* record) { return s_called = "save", s_call(*record); };
  }
  ~FileDialogStandIn() {
    g_commonDialogs = {};
    s_call = nullptr;
    s_called.clear();
  }
  FileDialogStandIn(const FileDialogStandIn&) = delete;
  FileDialogStandIn& operator=(const FileDialogStandIn&) = delete;

  // "open", "save"; "" before the first call.
  [[nodiscard]] const std::string& called() const { return s_called; }

 private:
  static inline Call s_call;
  static inline std::string s_called;
};

// Shows the system's dialog with a record of the size that every system takes.
inline BOOL showWithPlainSize(OPENFILENAMEA& record) {
  const DWORD size = std::exchange(record.lStructSize, DWORD{sizeof record});
  const BOOL result = GetOpenFileNameA(&record);
  record.lStructSize = size;
  return result;
}
