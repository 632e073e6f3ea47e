// SPDX-License-Identifier: MIT
// The one place where a failure of the internet classes becomes an event of the client.
#pragma once

#include "Src/QXIP.h"
#include "framework/internet/InternetException.h"

// What a guard has caught.
struct Raised {
  bool any = false;
  bool connectionLost = false;  // the object's: it is closed, and logging in again has failed
};

// Hands number and text of `exception` to OnIPError and deletes it. The thread's last error is then its
// number.
void RaiseIPError(TQXIP& client, CInternetException* exception, std::uint32_t* pRetries);

// Runs `work`, which returns bool or a pointer. An internet exception goes to OnIPError with `pRetries` (may
// be null) and makes the result false or null; *pRaised (may be null) tells of it.
template <typename Work, typename Result = decltype(std::declval<Work>()())>
Result GuardInternet(TQXIP& client, std::uint32_t* pRetries, Raised* pRaised, Work&& work) {
  try {
    return work();
  } catch (CInternetException* exception) {
    if (pRaised != nullptr) *pRaised = {.any = true, .connectionLost = exception->m_bConnectionLost};
    RaiseIPError(client, exception, pRetries);
    return Result{};
  }
}
