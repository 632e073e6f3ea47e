// SPDX-License-Identifier: MIT
#include "dialogs/OpenFileDialog.h"

#include <string>
#include <utility>
#include <vector>

#include "dialogs/PathList.h"

bool OpenFileDialog(const void* const (&reserved)[3], std::uint32_t flags, const HostOutput& output) {
  for (const void* const each : reserved)
    if (each == nullptr) return false;
  if (!output.given()) return false;
  output.clear();
  auto made = std::make_unique<CFileDialog>(true, "", output.pszPath, flags, "", nullptr);
  const CFileDialog& dialog = *made;
  if (!output.run(std::move(made)) || !dialog.NamesAreExact()) return false;

  HostPathText folder;
  if (!NormaliseFolder(dialog.GetFolderPath(), folder)) return false;
  std::vector<std::string> names;
  for (POSITION position = dialog.GetStartPosition(); position != nullptr;)
    names.push_back(dialog.GetNextPathName(position));
  PathList list = MakePathList(folder.c_str(), names);
  if (!output.deliver(folder, names.size(), list.get())) return false;
  list.release();
  return true;
}
