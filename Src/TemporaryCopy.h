// SPDX-License-Identifier: MIT
// A file in the folder "FTP" below the user's temporary folder, for transfers that go through a local copy. A
// name has one copy at a time, among all threads and processes of the user: who has taken it keeps it, from
// before the file is there until it has been deleted. The folder stays.
#pragma once

#include "framework/platform/lock_file.h"
#include "support/BoundedText.h"

class TemporaryCopy {
 public:
  TemporaryCopy() noexcept = default;
  // Deletes the file, if the name was taken.
  ~TemporaryCopy();
  TemporaryCopy(const TemporaryCopy&) = delete;
  TemporaryCopy& operator=(const TemporaryCopy&) = delete;

  // Takes the name that is the last component of `path`, in a folder that is the user's alone. False with the
  // last error set: 32 while another copy has it, 5 where the folder is not the user's own; or there is no
  // temporary folder, or the name does not fit.
  [[nodiscard]] bool Take(const char* path);
  // Deletes a file of that name that a program has left behind. False, with the last error set, when it is
  // still there.
  [[nodiscard]] bool DropLeftOver() noexcept;
  // The whole name of the file.
  [[nodiscard]] const char* Name() const noexcept { return m_name.c_str(); }

 private:
  using LockText = BoundedText<kPathCapacity + 1>;  // the folder's name is longer by one
  [[nodiscard]] bool MakeNames(const char* path, LockText& lock) noexcept;

  PathText m_name;
  platform::LockFile m_lock;  // of the same name in a folder beside that of the copies
};
