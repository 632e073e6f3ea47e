// SPDX-License-Identifier: MIT
// The commands that move files and whole trees.
#pragma once

#include "hosts/qxftp/Commands.h"

namespace qxftp {

void addGet(Commands& commands);
void addPut(Commands& commands);
void addMirror(Commands& commands);

}  // namespace qxftp
