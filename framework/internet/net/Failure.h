// SPDX-License-Identifier: MIT
// How a failure travels inside the internet layer: by value, never across a public function. The public
// classes turn it into the thread's last error, which stands here, or into a CInternetException* (Raising.h).
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace internet {

struct Failure {
  std::uint32_t error;          // an internet number (InternetErrors.h) or a platform number
  std::string serverText;       // for kExtendedError: the server's own words
  bool connectionLost = false;  // the connection is closed, and logging in again has failed
  bool ownText = false;         // serverText says it better than what the number stands for
};

// Control bytes of a server's text, but for its line ends, come out as '?'.
std::string shownText(std::string serverText);

// Throws a Failure with the text as it is shown.
[[noreturn]] void fail(std::uint32_t error, std::string serverText = {});

// Runs `work` and hands back its failure; std::bad_alloc counts as error 8. Keeps the thread's last error.
// OperationStopped passes through, here and in what stands on it; on a thread that was asked to stop it takes
// the outcome's place.
std::optional<Failure> attempt(const std::function<void()>& work);

// Runs `work`; a failure becomes false with the thread's last error set as the last act.
bool answer(const std::function<void()>& work);

}  // namespace internet
