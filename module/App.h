// SPDX-License-Identifier: MIT
// The application object that every module of the framework has.
#pragma once

#include "framework/WinApp.h"

class CKT32DLLApp : public CWinApp {
 public:
  CKT32DLLApp() noexcept;
};

extern CKT32DLLApp theApp;

// Handle of the host's main program (not of this library), taken when the library is loaded.
extern void* g_hProcessModule;
