// SPDX-License-Identifier: MIT
// The application object that every module of the framework has, and the framework's start-up calls.
#pragma once

class CWinApp {
 public:
  // Registers itself as the current application of this module's state. `appName` may be null.
  explicit CWinApp(const char* appName = nullptr) noexcept;
  virtual ~CWinApp();
  CWinApp(const CWinApp&) = delete;
  CWinApp& operator=(const CWinApp&) = delete;

  const char* m_pszAppName;
};

CWinApp* AfxGetApp() noexcept;

// Starts the framework for this module from a module handle and command line; once is enough, later calls
// only answer true.
bool AfxWinInit(void* instance, void* previousInstance, const char* commandLine, int showCommand) noexcept;

// Starts the sockets layer.
bool AfxSocketInit() noexcept;
