// SPDX-License-Identifier: MIT
// history_file_host FOLDER: shows a CXFileDialog that starts in the folder and remembers it, its subfolder
// "letters" and the drive. No export shows this dialog, so tools/pictures has this program for it.
#include <filesystem>
#include <string>

#include "dialogs/XFileDialog.h"
#include "framework/WinApp.h"
#include "tests/dialogs/FileDialogStandIn.h"

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  const std::string folder = argv[1];
  const std::filesystem::path store = std::filesystem::temp_directory_path() / "history_file_host.ini";
  const std::string storeName = store.string();
  CWinApp app;
  app.m_pszProfileName = storeName.c_str();
  app.WriteProfileString("FolderHistory", "Folder0", folder.c_str());
  app.WriteProfileString("FolderHistory", "Folder1", (folder + "\\letters").c_str());
  app.WriteProfileString("FolderHistory", "Folder2", "C:\\");

  const FileDialogStandIn plainSize(&showWithPlainSize);
  CXFileDialog dialog(true, nullptr, nullptr, OFN_HIDEREADONLY | OFN_ENABLESIZING, "Texts (*.txt)|*.txt||",
                      nullptr);
  dialog.m_ofn.lpstrInitialDir = folder.c_str();
  dialog.m_strTitle = "Open a file from a folder used before";
  const int result = dialog.DoModal();
  std::filesystem::remove(store);
  return result == IDOK ? 0 : 1;
}
