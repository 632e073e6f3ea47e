// SPDX-License-Identifier: MIT
#include "framework/WinApp.h"

#include "framework/ModuleState.h"
#include "framework/platform/process.h"

CWinApp::CWinApp(const char* appName) noexcept : m_pszAppName(appName) {
  AfxGetAppModuleState()->m_pCurrentWinApp = this;
}

CWinApp::~CWinApp() {
  CWinApp*& current = AfxGetAppModuleState()->m_pCurrentWinApp;
  if (current == this) current = nullptr;
}

CWinApp* AfxGetApp() noexcept { return AfxGetModuleState()->m_pCurrentWinApp; }

bool AfxWinInit(void* instance, void* /*previousInstance*/, const char* /*commandLine*/,
                int /*showCommand*/) noexcept {
  // Clients are made on any thread; the first one's handle stays.
  void* none = nullptr;
  AfxGetAppModuleState()->m_hCurrentInstanceHandle.compare_exchange_strong(none, instance);
  return true;
}

bool AfxSocketInit() noexcept { return platform::startSockets(); }
