// SPDX-License-Identifier: MIT
#include "framework/ModuleState.h"

namespace {

constinit AFX_MODULE_STATE g_moduleState;
constinit thread_local AFX_MODULE_STATE* t_installed = nullptr;

}  // namespace

AFX_MODULE_STATE* AfxGetAppModuleState() noexcept { return &g_moduleState; }

AFX_MODULE_STATE* AfxGetModuleState() noexcept {
  return t_installed != nullptr ? t_installed : &g_moduleState;
}

AFX_MAINTAIN_STATE2::AFX_MAINTAIN_STATE2(AFX_MODULE_STATE* state) noexcept : m_pPrevious(t_installed) {
  t_installed = state;
}

AFX_MAINTAIN_STATE2::~AFX_MAINTAIN_STATE2() { t_installed = m_pPrevious; }

constinit std::atomic<std::uint32_t> g_nModuleRefs{0};

std::uint32_t AddModuleRef() noexcept { return g_nModuleRefs.fetch_add(1) + 1; }

std::uint32_t ReleaseModuleRef() noexcept {
  std::uint32_t refs = g_nModuleRefs.load();
  while (refs != 0 && !g_nModuleRefs.compare_exchange_weak(refs, refs - 1)) {
  }
  return refs != 0 ? refs - 1 : 0;
}
