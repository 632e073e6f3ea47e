// SPDX-License-Identifier: MIT
// A host in C99 without any library of its own.
#pragma once

#include <stdint.h>

// What a program of this folder is told on its command line.
typedef struct Server {
  const char* pszPort;
  const char* pszUser;
  const char* pszPassword;
} Server;

// Lists /pub of the server on this machine, name by name. Otherwise prints what failed; answers the exit
// code.
int listFolder(const Server* pServer, void (*print)(const char* pszText));
