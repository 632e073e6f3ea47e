// SPDX-License-Identifier: MIT
// A CHistoryCombo on a real combo box in a real window, with a store of its own.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "dialogs/HistoryCombo.h"
#include "tests/dialogs/ProfileStore.h"

inline constexpr char kSection[] = "FolderHistory";

class HistoryBox : public testing::Test {
 protected:
  HistoryBox() {
    EXPECT_TRUE(window.CreateEx(0, "STATIC", "", WS_OVERLAPPEDWINDOW, {0, 0, 300, 200}, nullptr, 0));
    create(CBS_DROPDOWN);
  }
  ~HistoryBox() override { window.DestroyWindow(); }

  void create(DWORD style) {
    box.DestroyWindow();
    ASSERT_TRUE(box.Create(WS_CHILD | CBS_AUTOHSCROLL | style, {0, 0, 200, 150}, window.m_hWnd, 1002));
  }

  // `texts` are in the store as Folder0, Folder1, ...
  void store(const std::vector<std::string>& texts) const {
    for (std::size_t i = 0; i < texts.size(); ++i) profile.write("Folder" + std::to_string(i), texts[i]);
  }
  [[nodiscard]] std::vector<std::string> stored() const {
    std::vector<std::string> texts;
    for (int i = 0; profile.read("Folder" + std::to_string(i)) != "(none)"; ++i)
      texts.push_back(profile.read("Folder" + std::to_string(i)));
    return texts;
  }
  [[nodiscard]] std::vector<std::string> items() const {
    std::vector<std::string> texts;
    for (int i = 0; i < box.GetCount(); ++i) texts.push_back(box.GetLBText(i));
    return texts;
  }
  std::string load() { return box.LoadHistoryList(kSection, "Folder"); }

  ProfileStore profile{kSection};
  CWnd window;
  CHistoryCombo box{false};
};
