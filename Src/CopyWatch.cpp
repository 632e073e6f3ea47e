// SPDX-License-Identifier: MIT
#include "Src/CopyWatch.h"

#include <utility>

namespace {

constinit thread_local CopyWatch* t_innermost = nullptr;

}  // namespace

CopyWatch::CopyWatch() noexcept : m_outer(std::exchange(t_innermost, this)) {}

CopyWatch::~CopyWatch() { t_innermost = m_outer; }

void CopyWatch::TellDoubt() noexcept {
  if (t_innermost != nullptr) t_innermost->m_doubted = true;
}
