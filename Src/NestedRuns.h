// SPDX-License-Identifier: MIT
// The runs of one call of an operation. They are made in a loop, but a host sees them as if each retry ran
// inside the run that it repeats: a run's last lines come after those of the runs behind it. Neither stack
// nor memory grow with the retry count.
#pragma once

#include <cstdint>
#include <optional>
#include <utility>

// `last` is the outcome of the first run; its member `ok` tells of success. `next(failed)` makes the run that
// follows a failed one, or answers none. `end(run, last)` writes the last lines of a run with the first
// outcome, given that of the last run. Of the runs before that the latest stands for all. Returns the outcome
// of the last run.
template <typename Outcome, typename Next, typename End>
Outcome RunNested(Outcome last, Next&& next, End&& end) {
  Outcome failed = last;
  std::uint64_t failedRuns = 0;
  while (!last.ok) {
    std::optional<Outcome> following = next(last);
    if (!following) break;
    failed = std::exchange(last, std::move(*following));
    ++failedRuns;
  }
  end(last, last);
  for (; failedRuns > 0; --failedRuns) end(failed, last);
  return last;
}
