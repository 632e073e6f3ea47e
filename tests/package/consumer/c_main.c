// SPDX-License-Identifier: MIT
// c_host PORT USER PASSWORD
#include <stdio.h>

#include "listing.h"

static void print(const char* pszText) { puts(pszText); }

int main(int argc, char** argv) {
  if (argc != 4) return 3;
  const Server server = {argv[1], argv[2], argv[3]};
  return listFolder(&server, &print);
}
