// SPDX-License-Identifier: MIT
// Every operation once, at any server: for what must hold for each of them (a login, a length of paths).
#pragma once

#include <string>

#include "Src/QXIP.h"

namespace operation_tour {

struct Place {
  std::string remote;  // a folder that is there, without a separator at its end; the tour leaves it as it was
  std::string local;   // the same of this machine; the tour leaves files behind
};

// Expects of each operation that it works.
void run(TQXIP& client, const Place& place);

}  // namespace operation_tour
