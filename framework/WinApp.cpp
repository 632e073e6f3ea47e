// SPDX-License-Identifier: MIT
#include "framework/WinApp.h"

#include "framework/ModuleState.h"
#include "framework/platform/process.h"

CWinApp::CWinApp(const char* appName) noexcept : m_pszAppName(appName) {
  AfxGetAppModuleState()->m_pCurrentWinApp = this;
}

CWinApp::~CWinApp() {
  if (AfxGetAppModuleState()->m_pCurrentWinApp == this) AfxGetAppModuleState()->m_pCurrentWinApp = nullptr;
}

CWinApp* AfxGetApp() noexcept { return AfxGetModuleState()->m_pCurrentWinApp; }

bool AfxWinInit(void* instance, void* /*previousInstance*/, const char* /*commandLine*/,
                int /*showCommand*/) noexcept {
  // Clients are made from several threads: every one of them stores the same handle.
  AfxGetModuleState()->m_hCurrentInstanceHandle.store(instance, std::memory_order_relaxed);
  return true;
}

bool AfxSocketInit() noexcept { return platform::startSockets(); }
