// SPDX-License-Identifier: MIT
// The commands that move files and whole trees.
#pragma once

#include "hosts/qxftp/Commands.h"

namespace qxftp {

// Of get and put.
struct TransferOptions {
  std::vector<std::string> paths;  // the last one is the target
  bool isRecursive = false;
  bool keepsExisting = false;
};

void takeTransfer(CLI::App& command, TransferOptions& options, const std::string& paths);

void addGet(Commands& commands);
void addPut(Commands& commands);
void addMirror(Commands& commands);

}  // namespace qxftp
