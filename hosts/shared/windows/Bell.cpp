// SPDX-License-Identifier: MIT
#include "hosts/shared/Bell.h"

#if !defined(WIN32_LEAN_AND_MEAN)
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>

#include <utility>

namespace hosts {

Bell::Bell() : m_handle(CreateEventW(nullptr, FALSE, FALSE, nullptr)) {}

Bell::~Bell() { CloseHandle(m_handle); }

void Bell::ring() noexcept { SetEvent(m_handle); }

void Bell::wait() noexcept { WaitForSingleObject(m_handle, INFINITE); }

std::thread threadWithoutSignals(std::function<void()> work) { return std::thread(std::move(work)); }

}  // namespace hosts
