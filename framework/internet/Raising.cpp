// SPDX-License-Identifier: MIT
#include "framework/internet/Raising.h"

#include "framework/internet/InternetException.h"
#include "framework/internet/net/InternetErrors.h"

namespace internet {

void raising(const std::function<void()>& work) {
  if (const std::optional<Failure> failure = attempt(work)) throwAsException(*failure);
}

void throwAsException(const Failure& failure) {
  // Any other number has a text of its own.
  AfxThrowInternetException(failure.error,
                            failure.error == kExtendedError ? failure.serverText : std::string(),
                            failure.connectionLost);
}

}  // namespace internet
