// SPDX-License-Identifier: MIT
#include "hosts/shared/Library.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "hosts/shared/LibraryFile.h"
#include "tests/support/ScratchFolder.h"

namespace {

std::filesystem::path builtLibrary() { return std::getenv("QX_LIBRARY"); }

std::string refusalOfLibrary(const std::filesystem::path& file) {
  try {
    static_cast<void>(hosts::openLibrary(file));
    return "none";
  } catch (const std::runtime_error& problem) {
    return problem.what();
  }
}

}  // namespace

TEST(Library, IsLoadedFromItsFile) {
  const qx::Exports exports = hosts::openLibrary(builtLibrary());
  EXPECT_NE(exports.create, nullptr);
  EXPECT_NE(exports.library, nullptr);
}

TEST(Library, TellsItsVersion) {
  const auto version = hosts::versionOf(hosts::openLibrary(builtLibrary()).library.get());
  ASSERT_TRUE(version.has_value());
  EXPECT_EQ(version->major, 1);
}

TEST(Library, IsLookedForBesideTheProgram) {
  const auto places = hosts::libraryPlaces();
  ASSERT_FALSE(places.empty());
  EXPECT_TRUE(std::filesystem::equivalent(places.front().parent_path(), hosts::programFolder()));
  EXPECT_THAT(refusalOfLibrary({}), testing::HasSubstr("is not there"));
}

TEST(Library, IsRefusedWhenItIsOfAnotherVersion) {
  EXPECT_THAT(refusalOfLibrary(std::getenv("QX_OTHER_VERSION")), testing::HasSubstr("is of version 9"));
}

TEST(Library, IsRefusedWhenItIsNone) {
  const testing_support::ScratchFolder scratch;
  const std::filesystem::path file = scratch.path() / "no library";
  std::ofstream(file) << "a text";
  EXPECT_THAT(refusalOfLibrary(file), testing::HasSubstr("cannot be used"));
}
