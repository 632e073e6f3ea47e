// SPDX-License-Identifier: MIT
// A failure of the internet layer as the exception that its public classes throw.
#pragma once

#include <functional>

#include "framework/internet/net/Failure.h"

namespace internet {

// Runs `work`; a failure becomes a thrown CInternetException*.
void raising(const std::function<void()>& work);

[[noreturn]] void throwAsException(const Failure& failure);

}  // namespace internet
