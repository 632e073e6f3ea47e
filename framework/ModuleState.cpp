// SPDX-License-Identifier: MIT
#include "framework/ModuleState.h"

namespace {

thread_local AFX_MODULE_STATE* g_installed = nullptr;

}  // namespace

std::atomic<std::uint32_t> g_nModuleRefs{0};

AFX_MODULE_STATE* AfxGetAppModuleState() noexcept {
  static AFX_MODULE_STATE state;
  return &state;
}

AFX_MODULE_STATE* AfxGetModuleState() noexcept {
  return g_installed != nullptr ? g_installed : AfxGetAppModuleState();
}

AFX_MAINTAIN_STATE2::AFX_MAINTAIN_STATE2(AFX_MODULE_STATE* state) noexcept : m_pPrevious(g_installed) {
  g_installed = state;
}

AFX_MAINTAIN_STATE2::~AFX_MAINTAIN_STATE2() { g_installed = m_pPrevious; }

std::uint32_t AddModuleRef() noexcept { return ++g_nModuleRefs; }

std::uint32_t ReleaseModuleRef() noexcept {
  std::uint32_t count = g_nModuleRefs.load();
  while (count > 0 && !g_nModuleRefs.compare_exchange_weak(count, count - 1)) {
  }
  return count > 0 ? count - 1 : 0;
}
