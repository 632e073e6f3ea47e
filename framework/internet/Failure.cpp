// SPDX-License-Identifier: MIT
#include "framework/internet/Failure.h"

#include <new>
#include <utility>

#include "framework/internet/InternetErrors.h"
#include "framework/internet/InternetException.h"
#include "framework/platform/last_error.h"
#include "framework/platform/stop_token.h"

namespace internet {

void fail(std::uint32_t error, std::string serverText) {
  for (char& c : serverText) {
    const auto byte = static_cast<unsigned char>(c);
    if ((byte < 0x20 && c != '\r' && c != '\n' && c != '\t') || byte == 0x7f) c = '?';
  }
  throw Failure{error, std::move(serverText)};
}

std::optional<Failure> attempt(const std::function<void()>& work) {
  // Sockets leave their own numbers behind (Windows: would block), which mean nothing to the caller.
  const platform::LastErrorKeeper keeper;
  std::optional<Failure> failure;
  try {
    platform::throwIfStopped();
    work();
    return std::nullopt;
  } catch (const Failure& thrown) {
    failure = thrown;
  } catch (const std::bad_alloc&) {
    failure = Failure{platform::kErrorNotEnoughMemory, {}};
  }
  // A stop that something on the way had to swallow (a Close) shows as a broken connection.
  platform::throwIfStopped();
  return failure;
}

bool answer(const std::function<void()>& work) {
  const std::optional<Failure> failure = attempt(work);
  if (failure) platform::setLastError(failure->error);
  return !failure;
}

void raising(const std::function<void()>& work) {
  if (const std::optional<Failure> failure = attempt(work)) throwAsException(*failure);
}

void throwAsException(const Failure& failure) {
  // Any other number has a text of its own.
  AfxThrowInternetException(failure.error,
                            failure.error == kExtendedError ? failure.serverText : std::string());
}

}  // namespace internet
