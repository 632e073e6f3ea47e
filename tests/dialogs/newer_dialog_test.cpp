// SPDX-License-Identifier: MIT
// When the framework's file dialog is the shell's newer one, and what that one is told.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <thread>

#include "framework/ui/Com.h"
#include "framework/ui/CommonDialogs.h"
#include "framework/ui/FileDialog.h"
#include "tests/dialogs/FileDialogRun.h"
#include "tests/dialogs/FolderTest.h"
// Only now:
#include <shobjidl.h>

namespace {

using dialog_test::Driver;
using dialog_test::show;
using dialog_test::walk;
using testing::ElementsAre;

using NewerDialog = dialog_test::FolderTest;

struct Choice {
  const char* name;
  bool newerStyle;
  DWORD size;
  DWORD sizeAfterwards;
  DWORD flags;
  bool newer;
};

class FileDialogKind : public testing::TestWithParam<Choice> {};

BOOL WINAPI refuse(OPENFILENAMEA*) { return FALSE; }
HRESULT WINAPI makeNothing(REFCLSID, IUnknown*, DWORD, REFIID, void**) { return REGDB_E_CLASSNOTREG; }

TEST_P(FileDialogKind, FollowsFromTheStyleTheRecordsSizeAndItsTemplate) {
  g_commonDialogs.openFileName = g_commonDialogs.saveFileName = &refuse;
  g_commonDialogs.createInstance = &makeNothing;
  const Choice& choice = GetParam();
  CFileDialog dialog(true, nullptr, nullptr, choice.flags, nullptr, nullptr, choice.size, choice.newerStyle);
  if (choice.sizeAfterwards != 0) dialog.m_ofn.lStructSize = choice.sizeAfterwards;
  if (choice.newer) {
    EXPECT_THROW(dialog.DoModal(), std::runtime_error);
  } else {
    EXPECT_EQ(dialog.DoModal(), IDCANCEL);
  }
  g_commonDialogs = {};
}

INSTANTIATE_TEST_SUITE_P(Kinds, FileDialogKind,
                         testing::Values(Choice{"Newer", true, 0, 0, 0, true},
                                         Choice{"OldStyle", false, 0, 0, 0, false},
                                         Choice{"OlderRecord", true, 136, 0, 0, false},
                                         Choice{"SizeChanged", true, 0, 136, 0, false},
                                         Choice{"Template", true, 0, 0, OFN_ENABLETEMPLATE, false}),
                         [](const auto& each) { return std::string(each.param.name); });

TEST_F(NewerDialog, SavesUnderANameInTheFolderOfTheNewerDialog) {
  CFileDialog dialog(false, "txt", (folder() + "\\new").c_str(), 0, "Texts|*.txt||", nullptr);
  EXPECT_EQ(show(dialog, [](Driver& user, HWND window) { user.press(window, IDOK); }), IDOK);
  EXPECT_THAT(walk(dialog), ElementsAre(folder() + "\\new.txt"));
  EXPECT_EQ(dialog.GetFolderPath(), folder());
}

TEST_F(NewerDialog, ListsWhatTheFilterOfTheNewerDialogLetsThrough) {
  for (const char* name : {"a.txt", "b.doc"}) addFile(name);
  CFileDialog dialog(true, nullptr, "", 0, "Texts|*.txt|All|*.*||", nullptr);
  const std::string start = folder();
  dialog.m_ofn.lpstrInitialDir = start.c_str();
  show(dialog, [](Driver& user, HWND window) {
    (void)user.waitForList(window, {"a.txt"});
    user.press(window, IDCANCEL);
  });
}

IFileDialog* g_made = nullptr;

HRESULT WINAPI makeAndKeep(REFCLSID classId, IUnknown* outer, DWORD context, REFIID id, void** made) {
  const HRESULT result = CoCreateInstance(classId, outer, context, id, made);
  g_made = static_cast<IFileDialog*>(*made);
  g_made->AddRef();
  return result;
}

// The caller's flags, without those that are the classic dialog's alone.
TEST_F(NewerDialog, GivesTheNewerDialogTheOptionsThatBothHave) {
  const Apartment apartment;  // the kept dialog lives in it
  g_commonDialogs.createInstance = &makeAndKeep;
  constexpr DWORD kBoth = OFN_ALLOWMULTISELECT | OFN_FILEMUSTEXIST | OFN_PATHMUSTEXIST | OFN_CREATEPROMPT |
                          OFN_NOCHANGEDIR | OFN_FORCESHOWHIDDEN;
  CFileDialog dialog(true, nullptr, "", kBoth | OFN_HIDEREADONLY | OFN_ENABLESIZING, "A|*.a|B|*.b||",
                     nullptr);
  dialog.m_ofn.nFilterIndex = 2;
  dialog.m_ofn.lpstrTitle = "The title";
  std::string title;
  show(dialog, [&title](Driver& user, HWND window) {
    title = user.textOf(window);
    user.press(window, IDCANCEL);
  });
  g_commonDialogs = {};
  const ComPtr<IFileDialog> made(g_made);
  DWORD options = 0;
  EXPECT_EQ(made->GetOptions(&options), S_OK);
  EXPECT_EQ(options, kBoth | FOS_FORCEFILESYSTEM);
  UINT type = 0;
  EXPECT_EQ(made->GetFileTypeIndex(&type), S_OK);
  EXPECT_EQ(type, 2U);
  EXPECT_EQ(title, "The title");
}

TEST_F(NewerDialog, HasRoomForManyNamesOnlyWhereManyMayBeChosen) {
  const CFileDialog one(true, nullptr, "", 0, "", nullptr);
  EXPECT_EQ(one.m_ofn.nMaxFile, DWORD{MAX_PATH});
  const CFileDialog many(true, nullptr, "", OFN_ALLOWMULTISELECT, "", nullptr);
  EXPECT_EQ(many.m_ofn.nMaxFile, 512U * 1024);
  const std::string longName(1000, 'x');
  const CFileDialog given(true, nullptr, longName.c_str(), 0, "", nullptr);
  EXPECT_EQ(given.m_ofn.lpstrFile, longName);
  EXPECT_EQ(given.m_ofn.nMaxFile, 1001U);
}

HRESULT g_apartment = E_FAIL;

HRESULT WINAPI askForTheApartment(REFCLSID, IUnknown*, DWORD, REFIID, void**) {
  g_apartment = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  CoUninitialize();
  return REGDB_E_CLASSNOTREG;
}

// The system's own dialog leaves the thread's apartment behind, so that a stand-in has to show ours.
TEST_F(NewerDialog, EntersAnApartmentForTheTimeOfTheNewerDialog) {
  g_commonDialogs.createInstance = &askForTheApartment;
  HRESULT afterwards = E_FAIL;
  std::thread([&afterwards] {
    CFileDialog dialog(true, nullptr, "", 0, "", nullptr);
    EXPECT_THROW(dialog.DoModal(), std::runtime_error);
    afterwards = CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    CoUninitialize();
  }).join();
  g_commonDialogs = {};
  EXPECT_EQ(g_apartment, S_FALSE) << "the second one of its thread";
  EXPECT_EQ(afterwards, S_OK) << "the first one of its thread";
}

}  // namespace
