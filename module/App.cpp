// SPDX-License-Identifier: MIT
#include "module/App.h"

#include "framework/ModuleState.h"
#include "framework/platform/process.h"

void* g_hProcessModule = nullptr;

// After the handle: it has a constant initialiser, so the constructor below never loses what it stored.
CKT32DLLApp theApp;

CKT32DLLApp::CKT32DLLApp() noexcept {
  const AFX_MAINTAIN_STATE2 state(AfxGetAppModuleState());
  g_hProcessModule = platform::processModule();
}
