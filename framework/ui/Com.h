// SPDX-License-Identifier: MIT
// Owners for what the shell's interfaces hand out.
#pragma once

#include <memory>

#include "framework/windows/windows_api.h"
// Only now:
#include <objbase.h>

struct ReleaseInterface {
  void operator()(IUnknown* object) const noexcept { object->Release(); }
};
template <typename Interface>
using ComPtr = std::unique_ptr<Interface, ReleaseInterface>;

struct FreeTaskMemory {
  void operator()(void* memory) const noexcept { CoTaskMemFree(memory); }
};
using ShellText = std::unique_ptr<wchar_t, FreeTaskMemory>;

// A single-threaded apartment for the calling thread, as long as the object lives. A thread that is in
// another kind of apartment stays there.
class Apartment {
 public:
  Apartment() noexcept
      : m_entered(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE))) {}
  ~Apartment() {
    if (m_entered) CoUninitialize();
  }
  Apartment(const Apartment&) = delete;
  Apartment& operator=(const Apartment&) = delete;

  [[nodiscard]] bool Entered() const noexcept { return m_entered; }

 private:
  const bool m_entered;
};
