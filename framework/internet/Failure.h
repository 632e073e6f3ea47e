// SPDX-License-Identifier: MIT
// How a failure travels inside the internet layer: by value, never across a public function. The public
// classes turn it into the thread's last error or into a CInternetException*; both conversions stand here.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <utility>

namespace internet {

struct Failure {
  std::uint32_t error;     // an internet number (InternetErrors.h) or a platform number
  std::string serverText;  // for kExtendedError: the server's own words
};

[[noreturn]] inline void fail(std::uint32_t error, std::string serverText = {}) {
  throw Failure{error, std::move(serverText)};
}

// Runs `work`; every failure becomes false with the thread's last error set as the last act. std::bad_alloc
// counts as error 8. OperationStopped passes through.
bool answer(const std::function<void()>& work);

// Runs `work`; every failure becomes a thrown CInternetException*. OperationStopped passes through.
void raising(const std::function<void()>& work);

[[noreturn]] void throwAsException(const Failure& failure);

}  // namespace internet
