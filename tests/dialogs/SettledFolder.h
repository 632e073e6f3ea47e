// SPDX-License-Identifier: MIT
// A new folder that the folder browser finds, removed with all its content. On its way down to a path the
// browser of Wine compares its items with those of the path byte by byte, the time of the last access
// included, and looking into a new folder changes that: here it lies ahead already, so that it stays as it
// is.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "framework/windows/windows_api.h"
#include "tests/support/ScratchFolder.h"

class SettledFolder {
 public:
  SettledFolder() : m_path(std::filesystem::path("C:\\") / m_scratch.path().filename()) {
    std::filesystem::create_directory(m_path);
    settle(m_path.string());
  }
  ~SettledFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
  }
  SettledFolder(const SettledFolder&) = delete;
  SettledFolder& operator=(const SettledFolder&) = delete;

  [[nodiscard]] std::string path() const { return m_path.string(); }
  // The path of a new folder in it. `name` may lead through folders that are there.
  [[nodiscard]] std::string folder(const std::string& name) const {
    const std::string path = (m_path / name).string();
    EXPECT_TRUE(CreateDirectoryA(path.c_str(), nullptr));
    settle(path);
    return path;
  }

 private:
  static void settle(const std::string& path) {
    const HANDLE folder = CreateFileA(path.c_str(), FILE_WRITE_ATTRIBUTES, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                      nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    FILETIME access{};
    GetSystemTimeAsFileTime(&access);
    access.dwHighDateTime += 9;  // each is seven minutes
    EXPECT_TRUE(SetFileTime(folder, nullptr, &access, nullptr));
    CloseHandle(folder);
  }

  // Its name is new; the folder itself stands directly below the drive, where all folders above it are quiet.
  testing_support::ScratchFolder m_scratch;
  std::filesystem::path m_path;
};
