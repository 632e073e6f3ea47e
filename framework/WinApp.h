// SPDX-License-Identifier: MIT
// The application object that every module of the framework has, and the framework's start-up calls.
#pragma once

#include <string>

class CWinApp {
 public:
  // Registers itself as the current application of this module's state. `appName` may be null.
  explicit CWinApp(const char* appName = nullptr) noexcept;
  virtual ~CWinApp();
  CWinApp(const CWinApp&) = delete;
  CWinApp& operator=(const CWinApp&) = delete;

  // The profile: texts that the application keeps by section and entry, case of both ignored, in the file
  // m_pszProfileName. Windows only (framework/ui/Profile.cpp); safe on any thread.
  // `defaultText` (not null) when there is no such entry or a name is null.
  [[nodiscard]] std::string GetProfileString(const char* section, const char* entry,
                                             const char* defaultText = "") const;
  // Null for `value` deletes the entry, whether there is one or not. False when the file cannot be written or
  // a text has a line end, which no line of the file can hold; what the entry had stays then.
  bool WriteProfileString(const char* section, const char* entry, const char* value) const;

  const char* m_pszAppName;
  // A bare name stands for a file in the user's folder for application data (%APPDATA%). Null: the module's
  // own name with ".INI", there.
  const char* m_pszProfileName = nullptr;
};

CWinApp* AfxGetApp() noexcept;

// Starts the framework for this module from a module handle and command line; once is enough, later calls
// only answer true.
bool AfxWinInit(void* instance, void* previousInstance, const char* commandLine, int showCommand) noexcept;

// Starts the sockets layer.
bool AfxSocketInit() noexcept;
