// SPDX-License-Identifier: MIT
// An application whose profile strings are kept in a file of a scratch folder.
#pragma once

#include <string>

#include "framework/WinApp.h"
#include "tests/support/ScratchFolder.h"

class ProfileStore {
 public:
  explicit ProfileStore(const char* section) : m_section(section) { m_app.m_pszProfileName = m_file.c_str(); }

  [[nodiscard]] std::string read(const std::string& entry) const {
    return m_app.GetProfileString(m_section, entry.c_str(), "(none)");
  }
  void write(const std::string& entry, const std::string& value) const {
    m_app.WriteProfileString(m_section, entry.c_str(), value.c_str());
  }

  // The native name of a new or existing file or folder besides the store.
  [[nodiscard]] std::string path(const std::string& name) const { return m_folder.file(name); }

 private:
  const testing_support::ScratchFolder m_folder;
  const std::string m_file = m_folder.file("profile.ini");
  const char* const m_section;
  CWinApp m_app;
};
