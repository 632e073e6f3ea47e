// SPDX-License-Identifier: MIT
// What files add on Windows: attributes.
#include <gtest/gtest.h>

#include <string>

#include "framework/platform/file.h"
#include "framework/platform/last_error.h"
#include "framework/windows/windows_api.h"
#include "tests/support/ScratchFolder.h"

namespace {

using platform::File;
using platform::FileAccess;
using platform::FileCreation;

DWORD readOnlyBit(const std::string& path) {
  return ::GetFileAttributesA(path.c_str()) & FILE_ATTRIBUTE_READONLY;
}

TEST(WindowsFiles, HaveTheReadOnlyAttribute) {
  const testing_support::ScratchFolder folder;
  const std::string path = folder.file("file.bin");
  File file;
  ASSERT_TRUE(
      file.open(path.c_str(), FileAccess::write, FileCreation::createNew, platform::kFileAttributeReadOnly));
  file.close();
  EXPECT_NE(readOnlyBit(path), 0u);
  EXPECT_TRUE(platform::setFileAttributes(path.c_str(), platform::kFileAttributeArchive));
  EXPECT_EQ(readOnlyBit(path), 0u);
  EXPECT_TRUE(platform::setFileAttributes(path.c_str(), platform::kFileAttributeReadOnly));
  EXPECT_NE(readOnlyBit(path), 0u);
  EXPECT_TRUE(platform::setFileAttributes(path.c_str(), platform::kFileAttributeNormal));
  EXPECT_TRUE(platform::deleteFile(path.c_str()));
}

}  // namespace
