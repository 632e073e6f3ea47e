// SPDX-License-Identifier: MIT
// The system's calls that show file and folder dialogs, in one place where tests can put their own.
#pragma once

#include "framework/windows/windows_api.h"
// Only now:
#include <commdlg.h>
#include <objbase.h>
#include <shlobj.h>

struct CommonDialogs {
  BOOL(WINAPI* openFileName)(OPENFILENAMEA*) = &GetOpenFileNameA;
  BOOL(WINAPI* saveFileName)(OPENFILENAMEA*) = &GetSaveFileNameA;
  LPITEMIDLIST(WINAPI* browseForFolder)(BROWSEINFOA*) = &SHBrowseForFolderA;
  // Makes the newer dialogs.
  HRESULT(WINAPI* createInstance)(REFCLSID, IUnknown*, DWORD, REFIID, void**) = &CoCreateInstance;
};

inline CommonDialogs g_commonDialogs;
