// SPDX-License-Identifier: MIT
// linked PORT USER PASSWORD
#include "Lister.h"

int main(int argc, char** argv) { return argc == 4 ? listFolder(qx::linkedExports(), argv + 1) : 3; }
