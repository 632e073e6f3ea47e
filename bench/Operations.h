// SPDX-License-Identifier: MIT
// The operations that qxbench times, by the names that bench.py has for them.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "QXIPInt.h"

using Arguments = std::vector<std::string>;

// Carries it out once and answers the seconds of what counts in it. Throws NotDone on failure.
using Operation = std::function<double(TQXIPIFInt& client, const Arguments& arguments)>;

struct NotDone {};

[[nodiscard]] const std::map<std::string, Operation>& operations();
