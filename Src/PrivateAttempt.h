// SPDX-License-Identifier: MIT
// One attempt of a worker that always works over a connection of its own.
#pragma once

#include <utility>

#include "Src/PrivateConnection.h"
#include "Src/WorkerFrame.h"
#include "framework/platform/last_error.h"

// Connects, lets `work(connection)` answer whether it succeeded, and disconnects. `mayStart` is the outcome
// of the checks that come before anything is sent. The outcome carries the last error that the failure left.
// `errand`: what `work` begins with.
template <typename Work>
AttemptOutcome AttemptOverPrivateConnection(QXFtpThread& record, bool mayStart, Work&& work,
                                            const internet::FtpErrand& errand = {}) {
  AttemptOutcome outcome;
  if (mayStart) {
    PrivateConnection connection(*record.pQXIP);
    outcome.ok = connection.Open(errand) && work(*connection.Connection());
  }
  if (!outcome.ok) outcome.error = platform::lastError();
  return outcome;
}
