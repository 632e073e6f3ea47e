// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "framework/windows/windows_api.h"
// Only now:
#include <winternl.h>

namespace dialog_test {

// Fills a folder with empty folders and files. By the letters of their names: Wine would look for each name
// in another spelling among all those that are there, seconds for thousands.
class ManyEntries {
 public:
  ManyEntries(const std::filesystem::path& folder, int folders, int files)
      : m_folder(CreateFileW(folder.c_str(), FILE_TRAVERSE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                             OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr)) {
    for (int i = 0; i < folders; ++i) add(L"folder_" + std::to_wstring(10000 + i), FILE_DIRECTORY_FILE);
    for (int i = 0; i < files; ++i) add(L"file_" + std::to_wstring(10000 + i) + L".txt", 0);
  }
  ~ManyEntries() { CloseHandle(m_folder); }
  ManyEntries(const ManyEntries&) = delete;
  ManyEntries& operator=(const ManyEntries&) = delete;

 private:
  void add(std::wstring name, ULONG options) const {
    UNICODE_STRING text{};
    RtlInitUnicodeString(&text, name.c_str());
    OBJECT_ATTRIBUTES exactName{};
    InitializeObjectAttributes(&exactName, &text, 0, m_folder, nullptr);
    HANDLE made = nullptr;
    IO_STATUS_BLOCK status{};
    EXPECT_EQ(NtCreateFile(&made, SYNCHRONIZE, &exactName, &status, nullptr, 0, FILE_SHARE_READ, FILE_CREATE,
                           options | FILE_SYNCHRONOUS_IO_NONALERT, nullptr, 0),
              0);
    NtClose(made);
  }

  const HANDLE m_folder;
};

}  // namespace dialog_test
