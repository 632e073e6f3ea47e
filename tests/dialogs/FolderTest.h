// SPDX-License-Identifier: MIT
// A scratch folder to show in file dialogs, which move the process's current directory about.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "framework/ModuleState.h"
#include "tests/support/ScratchFolder.h"

namespace dialog_test {

class FolderTest : public testing::Test {
 protected:
  FolderTest() { EXPECT_EQ(g_nModuleRefs, 0U); }
  ~FolderTest() override {
    std::filesystem::current_path(m_previous);
    EXPECT_EQ(g_nModuleRefs, 0U) << "a dialog object was left behind";
  }

  void addFile(const std::string& name) const { std::ofstream(scratch.path() / name) << name; }
  void addFolder(const std::string& name) const {
    std::filesystem::create_directories(scratch.path() / name);
  }
  [[nodiscard]] std::string folder() const { return scratch.path().string(); }

  const testing_support::ScratchFolder scratch;

 private:
  const std::filesystem::path m_previous = std::filesystem::current_path();
};

}  // namespace dialog_test
