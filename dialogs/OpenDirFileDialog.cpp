// SPDX-License-Identifier: MIT
#include "dialogs/OpenDirFileDialog.h"

#include <string>
#include <utility>
#include <vector>

#include "dialogs/DirFileOpen.h"
#include "dialogs/DirFileState.h"
#include "dialogs/PathList.h"
#include "framework/ui/NarrowText.h"

bool OpenDirFileDialog(const DirFileRequest& request, const HostOutput& output) {
  if (request.title == nullptr || request.okText == nullptr || request.reserved == nullptr || !output.given())
    return false;
  output.clear();
  std::string directory;
  if (output.pszPath != nullptr)
    directory =
        leadingCharacters({output.pszPath, strnlen(output.pszPath, kPathCapacity)}, kPathCapacity - 1);
  const DirFileScope scope;
  auto made = std::make_unique<CDirFileOpen>(request.title, request.okText, request.reserved, request.files,
                                             request.open, request.mode, directory.c_str(), request.flags, "",
                                             nullptr);
  CDirFileOpen& dialog = *made;
  if (!output.run(std::move(made))) return false;

  PathText folder;
  if (!NormaliseFolder(dialog.GetFolder(), folder)) return false;
  const bool folderAlone = request.mode == kListFolders;
  const auto names = folderAlone ? std::vector<std::string>{folder.c_str()} : CDirFileOpen::SelectedNames();
  delete[] dialog.m_pPathList;
  dialog.m_pPathList = MakePathList(folderAlone ? "" : folder.c_str(), names).release();
  return output.deliver(folder, names.size(), dialog.m_pPathList);
}

bool FreeFileDialog(void* dialog) noexcept {
  if (dialog == nullptr) return false;
  delete static_cast<CFileDialog*>(dialog);
  return true;
}
