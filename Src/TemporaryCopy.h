// SPDX-License-Identifier: MIT
// A file in the folder "FTP" below the user's temporary folder, for transfers that go through a local copy.
// The file is deleted when the copy goes out of scope, whatever happened; the folder stays.
#pragma once

#include "support/BoundedText.h"

class TemporaryCopy {
 public:
  TemporaryCopy() noexcept = default;
  ~TemporaryCopy();
  TemporaryCopy(const TemporaryCopy&) = delete;
  TemporaryCopy& operator=(const TemporaryCopy&) = delete;

  // Names the file after the last component of `path` and makes the folder. False with the last error set
  // when the system has no temporary folder or the name does not fit.
  [[nodiscard]] bool NameAfter(const char* path) noexcept;
  [[nodiscard]] const char* Name() const noexcept { return m_name.c_str(); }

 private:
  PathText m_name;
};
