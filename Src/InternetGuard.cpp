// SPDX-License-Identifier: MIT
#include "Src/InternetGuard.h"

#include <memory>

#include "Src/HostCall.h"
#include "framework/platform/last_error.h"

namespace {

constexpr std::uint32_t kExceptionTextCapacity = 1024;

struct Delete {
  void operator()(CInternetException* exception) const noexcept { exception->Delete(); }
};

}  // namespace

void RaiseIPError(TQXIP& client, CInternetException* exception, std::uint32_t* pRetries) {
  const std::unique_ptr<CInternetException, Delete> owner(exception);
  char text[kExceptionTextCapacity] = "";
  exception->GetErrorMessage(text, sizeof text);
  HostCall([&] { client.OnIPError(exception->m_dwError, text, pRetries); });
  // Reporting resets the last error; what follows still has to know why the work failed.
  platform::setLastError(exception->m_dwError);
}
