// SPDX-License-Identifier: MIT
#include "dialogs/OpenDirFileDialog.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "dialogs/DirFileOpen.h"
#include "dialogs/DirFileState.h"
#include "dialogs/PathList.h"
#include "framework/ui/NarrowText.h"
#include "framework/ui/WideText.h"

namespace {

// Nothing when the code page lacks a character of one.
std::optional<std::vector<std::string>> exactNames(const std::vector<std::wstring>& names) {
  std::vector<std::string> exact;
  for (const std::wstring& name : names) {
    std::optional<std::string> text = exactNarrowText(name);
    if (!text) return std::nullopt;
    exact.push_back(*std::move(text));
  }
  return exact;
}

}  // namespace

bool OpenDirFileDialog(const DirFileRequest& request, const HostOutput& output) {
  if (request.title == nullptr || request.okText == nullptr || request.reserved == nullptr || !output.given())
    return false;
  output.clear();
  std::string directory;
  if (output.pszPath != nullptr)
    directory = leadingCharacters({output.pszPath, strnlen(output.pszPath, kHostPathCapacity)},
                                  kHostPathCapacity - 1);
  const DirFileScope scope;
  auto made = std::make_unique<CDirFileOpen>(request.title, request.okText, request.reserved, request.files,
                                             request.open, request.mode, directory.c_str(), request.flags, "",
                                             nullptr);
  CDirFileOpen& dialog = *made;
  if (!output.run(std::move(made))) return false;

  HostPathText folder;
  if (dialog.GetFolder().empty() || !NormaliseFolder(dialog.GetFolder(), folder)) return false;
  const bool folderAlone = request.mode == kListFolders;
  const auto names =
      folderAlone ? std::vector<std::string>{folder.c_str()} : exactNames(CDirFileOpen::SelectedNames());
  if (!names) return false;
  delete[] dialog.m_pPathList;
  dialog.m_pPathList = MakePathList(folderAlone ? "" : folder.c_str(), *names).release();
  return output.deliver(folder, names->size(), dialog.m_pPathList);
}

bool FreeFileDialog(void* dialog) noexcept {
  if (dialog == nullptr) return false;
  delete static_cast<CFileDialog*>(dialog);
  return true;
}
