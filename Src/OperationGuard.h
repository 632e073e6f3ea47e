// SPDX-License-Identifier: MIT
// What every virtual operation does around its work: the module's framework state is installed, the client
// knows of it (RunningOperations.h), and no exception of the library leaves it.
#pragma once

#include <new>
#include <type_traits>

#include "Src/RunningOperations.h"
#include "framework/ModuleState.h"
#include "framework/platform/last_error.h"
#include "framework/platform/stop_token.h"

// Runs `work` and returns its result; `Result{}` when memory ran out, when the client has gone meanwhile, or
// when the calling thread is a worker that has been asked to stop (its own frame notices that at its next
// step).
template <typename Work, typename Result = std::invoke_result_t<Work>>
Result GuardOperation(TQXIP& client, Work&& work) {
  const AFX_MAINTAIN_STATE2 moduleState(AfxGetAppModuleState());
  const RunningOperation running(client);
  try {
    return work();
  } catch (const platform::OperationStopped&) {
    return Result();
  } catch (const std::bad_alloc&) {
    platform::setLastError(platform::kErrorNotEnoughMemory);
    return Result();
  }
}
