// SPDX-License-Identifier: MIT
// The framework's state of this module, the guard that installs it around every entry, and the module-wide
// reference count.
#pragma once

#include <atomic>
#include <cstdint>

class CWinApp;

class AFX_MODULE_STATE {
 public:
  CWinApp* m_pCurrentWinApp = nullptr;
  std::atomic<void*> m_hCurrentInstanceHandle{nullptr};
};

// The state of this module.
AFX_MODULE_STATE* AfxGetAppModuleState() noexcept;

// The state that the calling thread has installed; this module's own when it has installed none.
AFX_MODULE_STATE* AfxGetModuleState() noexcept;

// Installs a module state on the calling thread and puts the caller's back when the scope is left.
class AFX_MAINTAIN_STATE2 {
 public:
  explicit AFX_MAINTAIN_STATE2(AFX_MODULE_STATE* state) noexcept;
  ~AFX_MAINTAIN_STATE2();
  AFX_MAINTAIN_STATE2(const AFX_MAINTAIN_STATE2&) = delete;
  AFX_MAINTAIN_STATE2& operator=(const AFX_MAINTAIN_STATE2&) = delete;

 private:
  AFX_MODULE_STATE* m_pPrevious;
};

// Counts clients, host references and dialogs. Nothing in the module acts on it; the host is told its value.
extern std::atomic<std::uint32_t> g_nModuleRefs;

// Both return the value after the change; releasing at 0 stays at 0.
std::uint32_t AddModuleRef() noexcept;
std::uint32_t ReleaseModuleRef() noexcept;
