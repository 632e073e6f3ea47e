// SPDX-License-Identifier: MIT
// loaded PORT USER PASSWORD LIBRARY
#include "Lister.h"

int main(int argc, char** argv) {
  if (argc != 5) return 3;
  const auto exports = qx::loadLibrary(argv[4]);
  if (exports) return listFolder(*exports, argv + 1);
  std::puts(exports.report().text.c_str());
  return 4;
}
