// SPDX-License-Identifier: MIT
// What the program says when it cannot begin: the real one, in a process of its own.
#include <gmock/gmock.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iterator>

#include "hosts/qxbrowse/Start.h"
#include "tests/dialogs/ChildProgram.h"
#include "tests/dialogs/Driver.h"
#include "tests/support/ScratchFolder.h"

namespace {

using dialog_test::ChildProgram;
using dialog_test::Driver;
using testing::AllOf;
using testing::HasSubstr;

namespace fs = std::filesystem;

class TheStart : public testing::Test {
 protected:
  TheStart() { fs::copy_file(std::getenv("QX_BROWSE_PROGRAM"), program); }

  // Starts the program, which has to say something, and answers that and the exit code.
  [[nodiscard]] std::pair<std::string, DWORD> refusal(const std::string& arguments = "") const {
    const ChildProgram started(program.string(), arguments, scratch.file("output"));
    const std::string text = Driver(started.mainThread()).answerBox(nullptr).text;
    return {text, started.wait()};
  }

  // With the number of its version changed, in a copy of the built library.
  void writeLibraryOfVersion(std::uint32_t major) const {
    std::ifstream in(std::getenv("QX_LIBRARY"), std::ios::binary);
    std::string bytes{std::istreambuf_iterator<char>(in), {}};
    constexpr std::string_view kFixedFileInfo("\xBD\x04\xEF\xFE", 4);
    constexpr std::size_t kMajor = 10;  // behind the signature, the structure's version and the minor number
    const std::size_t info = bytes.find(kFixedFileInfo);
    ASSERT_NE(info, std::string::npos);
    bytes.at(info + kMajor) = static_cast<char>(major);
    std::ofstream(library, std::ios::binary) << bytes;
  }

  const testing_support::ScratchFolder scratch;
  const fs::path program = scratch.path() / "qxbrowse.exe";
  const fs::path library = scratch.path() / "ZRM_QXKT32x64.dll";
};

TEST_F(TheStart, TellsThatTheLibraryIsNotThere) {
  const auto [text, code] = refusal();
  EXPECT_THAT(text, AllOf(HasSubstr("ZRM_QXKT32x64.dll"), HasSubstr("is not there")));
  EXPECT_EQ(code, static_cast<DWORD>(browse::kNoLibrary));
}

TEST_F(TheStart, TellsThatTheLibraryIsNone) {
  std::ofstream(library) << "a text";
  const auto [text, code] = refusal();
  EXPECT_THAT(text, AllOf(HasSubstr("ZRM_QXKT32x64.dll"), HasSubstr("cannot be used")));
  EXPECT_EQ(code, static_cast<DWORD>(browse::kNoLibrary));
}

TEST_F(TheStart, TellsThatTheLibraryIsAnother) {
  fs::copy_file(std::getenv("QX_OTHER_LIBRARY"), library);
  EXPECT_THAT(refusal().first, HasSubstr("cannot be used"));
}

TEST_F(TheStart, TellsThatTheLibraryIsOfAnotherVersion) {
  writeLibraryOfVersion(9);
  const auto [text, code] = refusal();
  EXPECT_THAT(text, HasSubstr("is of version 9."));
  EXPECT_EQ(code, static_cast<DWORD>(browse::kNoLibrary));
}

TEST_F(TheStart, TellsWhatItDoesNotUnderstand) {
  const auto [text, code] = refusal("--colour red");
  EXPECT_THAT(text, AllOf(HasSubstr("--sites FILE"), HasSubstr("not understood: --colour")));
  EXPECT_EQ(code, static_cast<DWORD>(browse::kWrongUsage));
}

TEST_F(TheStart, HasAnIconInTheSizesThatWindowsShows) {
  constexpr std::size_t kHeader = 6;
  constexpr std::size_t kEntry = 14;  // the first byte of which is the width; 0 stands for 256
  const HMODULE file = LoadLibraryExW(program.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
  ASSERT_NE(file, nullptr);
  const HRSRC icon = FindResourceW(file, MAKEINTRESOURCEW(1), MAKEINTRESOURCEW(14));  // RT_GROUP_ICON
  ASSERT_NE(icon, nullptr);
  const auto* const bytes = static_cast<const std::uint8_t*>(LockResource(LoadResource(file, icon)));
  std::vector<int> widths;
  for (std::size_t at = kHeader; at + kEntry <= SizeofResource(file, icon); at += kEntry) {
    widths.push_back(bytes[at]);
  }
  EXPECT_THAT(widths, testing::ElementsAre(16, 20, 24, 32, 40, 48, 64, 128, 0));
  for (const int size : {16, 32, 256}) {
    const HANDLE image = LoadImageW(file, MAKEINTRESOURCEW(1), IMAGE_ICON, size, size, 0);
    EXPECT_NE(image, nullptr) << size;
    DestroyIcon(static_cast<HICON>(image));
  }
  FreeLibrary(file);
}

TEST_F(TheStart, AsksForTheControlsTheDotsPerInchAndTheCodePageOfToday) {
  const HMODULE file = LoadLibraryExW(program.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
  ASSERT_NE(file, nullptr);
  const HRSRC manifest = FindResourceW(file, MAKEINTRESOURCEW(1), MAKEINTRESOURCEW(24));  // RT_MANIFEST
  ASSERT_NE(manifest, nullptr);
  const std::string text(static_cast<const char*>(LockResource(LoadResource(file, manifest))),
                         SizeofResource(file, manifest));
  for (const char* wanted : {R"("Microsoft.Windows.Common-Controls" version="6.0.0.0")", ">PerMonitorV2",
                             ">UTF-8</activeCodePage>"})
    EXPECT_THAT(text, testing::HasSubstr(wanted));
  FreeLibrary(file);
}

TEST(TheCommandLine, NamesTheFilesOfTheLibraryAndTheSites) {
  const std::vector<std::wstring> both = {L"--sites", L"C:\\s.ini", L"--library", L"C:\\l.dll"};
  const browse::StartOptions options = browse::readOptions(both);
  EXPECT_EQ(options.sites, L"C:\\s.ini");
  EXPECT_EQ(options.library, L"C:\\l.dll");
  EXPECT_TRUE(browse::readOptions({}).sites.empty());
  EXPECT_THROW(browse::readOptions({both.data(), 1}), std::invalid_argument);
}

}  // namespace
