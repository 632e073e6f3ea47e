// SPDX-License-Identifier: MIT
// What a local folder has, and what can be done with it. Any thread.
#pragma once

#include <string>
#include <vector>

#include "hosts/qxbrowse/lists/Items.h"
#include "hosts/qxbrowse/ui/System.h"

namespace browse {

// Of an empty path: the drives. Throws std::system_error.
std::vector<Item> readLocalFolder(const std::wstring& path);

// Both throw std::system_error. A name that is taken is an error, too.
void createLocalFolder(const std::wstring& path);
void renameLocal(const std::wstring& from, const std::wstring& to);

// Into the recycle bin, with the shell's own progress and questions over the owner, which has been asked
// already whether to. The shell tells the user what has failed.
void removeLocal(HWND owner, const std::vector<Place>& places);

// What stands at the path; one that does not is an empty file.
Place localPlace(const std::wstring& path);

// The user's own folder, where the program begins.
std::wstring homeFolder();

}  // namespace browse
