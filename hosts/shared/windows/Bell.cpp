// SPDX-License-Identifier: MIT
#include "hosts/shared/Bell.h"

#include <utility>

#include "hosts/shared/windows/System.h"

namespace hosts {

Bell::Bell() : m_handle(CreateEventW(nullptr, FALSE, FALSE, nullptr)) {}

Bell::~Bell() { CloseHandle(m_handle); }

void Bell::ring() noexcept { SetEvent(m_handle); }

void Bell::wait() noexcept { WaitForSingleObject(m_handle, INFINITE); }

std::thread threadWithoutSignals(std::function<void()> work) { return std::thread(std::move(work)); }

}  // namespace hosts
