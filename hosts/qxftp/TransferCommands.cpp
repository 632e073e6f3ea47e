// SPDX-License-Identifier: MIT
#include "hosts/qxftp/TransferCommands.h"

namespace qxftp {

void takeTransfer(CLI::App& command, TransferOptions& options, const std::string& paths) {
  takePaths(command, options.paths, paths);
  command.add_flag("-r,--recursive", options.isRecursive, "folders with all that is in them");
  command.add_flag("-n,--no-overwrite", options.keepsExisting, "leaves files alone that are there");
}

}  // namespace qxftp
