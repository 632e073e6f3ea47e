// SPDX-License-Identifier: MIT
// Local paths as the system gets them. One of 260 characters and more was refused by the system (3), which
// takes such a path in its plain form alone. Wine takes it in any form, so the form is looked at.
#include "framework/windows/local_path.h"

#include <gtest/gtest.h>

#include <string>

#include "framework/windows/windows_api.h"

namespace {

std::wstring text(const std::string& path) { return platform::LocalPath(path.c_str()).text(); }
std::wstring wide(const std::string& ascii) { return {ascii.begin(), ascii.end()}; }

const std::string kLongName(250, 'n');

TEST(LocalPath, StaysAsItIsWhereItIsOrdinary) {
  for (const char* path : {"", "a", "C:\\a\\..\\b", "C:/a/b", "NUL", "\\\\server\\share\\a"}) {
    EXPECT_EQ(text(path), wide(path));
  }
  EXPECT_EQ(std::wstring(platform::LocalPath(nullptr).text()), L"");
}

TEST(LocalPath, IsInPlainFormWhereItIsLong) {
  EXPECT_EQ(text("C:\\d\\" + kLongName), wide("\\\\?\\C:\\d\\" + kLongName));
  EXPECT_EQ(text("C:/d/./x/../" + kLongName), wide("\\\\?\\C:\\d\\" + kLongName))
      << "which nobody resolves there";
  EXPECT_EQ(text("\\\\server\\share\\" + kLongName), wide("\\\\?\\UNC\\server\\share\\" + kLongName));
}

TEST(LocalPath, IsWholeWhereItIsLong) {
  wchar_t folder[MAX_PATH];
  ASSERT_NE(GetCurrentDirectoryW(MAX_PATH, folder), 0u);
  EXPECT_EQ(text("d\\" + kLongName), std::wstring(L"\\\\?\\") + folder + wide("\\d\\" + kLongName));
}

TEST(LocalPath, KeepsThePlainFormThatAHostGives) {
  for (const char* start : {"\\\\?\\C:\\d\\", "\\\\.\\C:\\d\\", "\\\\?\\UNC\\server\\share\\"}) {
    EXPECT_EQ(text(start + kLongName), wide(start + kLongName));
  }
}

TEST(LocalPath, MayHave4095Bytes) {
  const std::string start = "C:\\";
  EXPECT_EQ(text(start + std::string(4092, 'n')), L"\\\\?\\C:\\" + std::wstring(4092, L'n'));
  EXPECT_EQ(text(start + std::string(4093, 'n')), L"");
}

}  // namespace
