// SPDX-License-Identifier: MIT
// The functions behind DoOpenDirFileDialog and DoFreeDirFileDialog.
#pragma once

#include <cstdint>

#include "dialogs/HostOutput.h"

struct DirFileRequest {
  const char* title;  // the first three must be given
  const char* okText;
  const void* reserved;
  bool files;
  bool open;
  std::uint32_t mode;
  std::uint32_t flags;
};

// Starts at the folder in output.pszPath. True when the user confirmed.
bool OpenDirFileDialog(const DirFileRequest& request, const HostOutput& output);

// Destroys a dialog that HostOutput gave to the host; false for null.
bool FreeFileDialog(void* dialog) noexcept;
