// SPDX-License-Identifier: MIT
#include "framework/internet/net/Failure.h"

#include <new>
#include <utility>

#include "framework/platform/last_error.h"
#include "framework/platform/stop_token.h"
#include "framework/text/AsciiText.h"

namespace internet {

std::string shownText(std::string serverText) {
  for (char& c : serverText) {
    if (ascii::isControl(c) && c != '\r' && c != '\n' && c != '\t') c = '?';
  }
  return serverText;
}

void fail(std::uint32_t error, std::string serverText) {
  throw Failure{error, shownText(std::move(serverText))};
}

std::optional<Failure> attempt(const std::function<void()>& work) {
  // Sockets leave their own numbers behind (Windows: would block), which mean nothing to the caller.
  const platform::LastErrorKeeper keeper;
  std::optional<Failure> failure;
  try {
    platform::throwIfStopped();
    work();
  } catch (const Failure& thrown) {
    failure = thrown;
  } catch (const std::bad_alloc&) {
    failure = Failure{platform::kErrorNotEnoughMemory, {}};
  }
  // A stop that something on the way had to swallow (a Close) shows as a broken connection. One that came
  // with the last notification shows in nothing.
  platform::throwIfStopped();
  return failure;
}

bool answer(const std::function<void()>& work) {
  const std::optional<Failure> failure = attempt(work);
  if (failure) platform::setLastError(failure->error);
  return !failure;
}

}  // namespace internet
