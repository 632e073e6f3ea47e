// SPDX-License-Identifier: MIT
// The application's profile strings.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "framework/WinApp.h"
#include "framework/windows/windows_api.h"
#include "tests/support/ScratchFolder.h"

namespace {

class Profile : public testing::Test {
 protected:
  Profile() { app.m_pszProfileName = path.c_str(); }

  // What a program of another maker reads.
  std::string foreignRead(const char* entry) const {
    char text[1024];
    GetPrivateProfileStringA("Texts", entry, "", text, sizeof text, path.c_str());
    return text;
  }
  std::string fileContent() const {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  const testing_support::ScratchFolder folder;
  const std::string path = folder.file("texts.ini");
  CWinApp app;
};

TEST_F(Profile, ReadsWhatWasWritten) {
  EXPECT_TRUE(app.WriteProfileString("Texts", "Folder0", "C:\\Data"));
  EXPECT_EQ(app.GetProfileString("Texts", "Folder0"), "C:\\Data");
  EXPECT_EQ(foreignRead("Folder0"), "C:\\Data");
  EXPECT_TRUE(app.WriteProfileString("Texts", "Folder0", "D:\\"));
  EXPECT_EQ(app.GetProfileString("Texts", "Folder0"), "D:\\");
}

TEST_F(Profile, IgnoresTheCaseOfNames) {
  EXPECT_TRUE(app.WriteProfileString("Texts", "Folder0", "C:\\Data"));
  EXPECT_EQ(app.GetProfileString("TEXTS", "folder0"), "C:\\Data");
}

TEST_F(Profile, AnswersTheDefaultForAMissingEntry) {
  EXPECT_EQ(app.GetProfileString("Texts", "Folder0"), "");
  EXPECT_EQ(app.GetProfileString("Texts", "Folder0", "none"), "none");
  EXPECT_EQ(app.GetProfileString(nullptr, "Folder0", "none"), "none");
  EXPECT_EQ(app.GetProfileString("Texts", nullptr, "none"), "none");
}

TEST_F(Profile, NullDeletesOneEntry) {
  EXPECT_TRUE(app.WriteProfileString("Texts", "Folder0", "a"));
  EXPECT_TRUE(app.WriteProfileString("Texts", "Folder1", "b"));
  EXPECT_TRUE(app.WriteProfileString("Texts", "Folder0", nullptr));
  EXPECT_EQ(app.GetProfileString("Texts", "Folder0", "none"), "none");
  EXPECT_EQ(app.GetProfileString("Texts", "Folder1"), "b");
  EXPECT_EQ(fileContent().find("Folder0"), std::string::npos);
  EXPECT_TRUE(app.WriteProfileString("Texts", "Folder0", nullptr)) << "a missing entry";
}

// A missing name would mean "all entries" to the system.
TEST_F(Profile, ANullNameDeletesNothing) {
  EXPECT_TRUE(app.WriteProfileString("Texts", "Folder0", "a"));
  EXPECT_FALSE(app.WriteProfileString("Texts", nullptr, nullptr));
  EXPECT_FALSE(app.WriteProfileString(nullptr, nullptr, nullptr));
  EXPECT_EQ(app.GetProfileString("Texts", "Folder0"), "a");
}

TEST_F(Profile, KeepsTextsExactly) {
  const std::string texts[] = {" blanks ",
                               "\ttabs\t",
                               "\"quoted\"",
                               "'quoted'",
                               "\"",
                               "\"\"",
                               "\"a\" and \"b\"",
                               " ",
                               "a\"b",
                               "it's",
                               "a=b",
                               ";c",
                               "[d]",
                               "#e",
                               "'mixed\"",
                               "C:\\a b\\c d ",
                               "D:\\\xE4\xF6\xFC",
                               "100% %s%n",
                               "",
                               "\"open",
                               "close'"};
  for (const std::string& text : texts) {
    EXPECT_TRUE(app.WriteProfileString("Texts", "Folder0", text.c_str()));
    EXPECT_EQ(app.GetProfileString("Texts", "Folder0"), text);
    EXPECT_EQ(foreignRead("Folder0"), text);
  }
}

TEST_F(Profile, AddsNoQuotesToAnOrdinaryPath) {
  EXPECT_TRUE(app.WriteProfileString("Texts", "Folder0", "C:\\it's a \"b\".c"));
  EXPECT_NE(fileContent().find("Folder0=C:\\it's a \"b\".c\r\n"), std::string::npos) << fileContent();
}

TEST_F(Profile, ReadsTextsOfAnyLength) {
  for (const std::size_t length : {510u, 511u, 512u, 513u, 2047u, 2048u, 5000u, 30000u}) {
    const std::string text(length, 'x');
    EXPECT_TRUE(app.WriteProfileString("Texts", "Folder0", text.c_str()));
    EXPECT_EQ(app.GetProfileString("Texts", "Folder0"), text) << length;
  }
}

TEST_F(Profile, RefusesALineEndAndKeepsWhatWasThere) {
  EXPECT_TRUE(app.WriteProfileString("Texts", "Folder0", "a"));
  const std::string before = fileContent();
  EXPECT_FALSE(app.WriteProfileString("Texts", "Folder0", "b\nFolder1=c"));
  EXPECT_FALSE(app.WriteProfileString("Texts", "Folder0", "b\r"));
  EXPECT_FALSE(app.WriteProfileString("Texts", "Folder1=b\r\nFolder2", "c"));
  EXPECT_FALSE(app.WriteProfileString("Other]\n[Texts", "Folder0", nullptr));
  EXPECT_EQ(fileContent(), before);
}

TEST_F(Profile, RefusesAFileThatCannotBeWritten) {
  const std::string missing = folder.file("missing\\texts.ini");
  app.m_pszProfileName = missing.c_str();
  EXPECT_FALSE(app.WriteProfileString("Texts", "Folder0", "a"));
  EXPECT_EQ(app.GetProfileString("Texts", "Folder0", "none"), "none");
}

std::filesystem::path applicationData() {
  char folder[MAX_PATH] = "";
  return std::string(folder, GetEnvironmentVariableA("APPDATA", folder, MAX_PATH));
}

// In the Windows folder a user may not write.
TEST_F(Profile, StandsAmongTheUsersApplicationDataUnderTheModulesName) {
  const std::filesystem::path file = applicationData() / "framework_platform.INI";
  std::filesystem::remove(file);  // of a run that was killed
  app.m_pszProfileName = nullptr;
  EXPECT_TRUE(app.WriteProfileString("Texts", "Folder0", "a"));
  EXPECT_EQ(app.GetProfileString("Texts", "Folder0"), "a");
  EXPECT_TRUE(std::filesystem::remove(file));
}

TEST_F(Profile, WithABareNameStandsThereToo) {
  const std::filesystem::path file = applicationData() / "bare_profile_test.ini";
  std::filesystem::remove(file);
  app.m_pszProfileName = "bare_profile_test.ini";
  EXPECT_TRUE(app.WriteProfileString("Texts", "Folder0", "a"));
  EXPECT_EQ(app.GetProfileString("Texts", "Folder0"), "a");
  EXPECT_TRUE(std::filesystem::remove(file));
}

}  // namespace
