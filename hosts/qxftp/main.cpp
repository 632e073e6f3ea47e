// SPDX-License-Identifier: MIT
// qxftp: an FTP client on the command line, made of the library's exports and its client interface only.
#include <cstdio>
#include <exception>

#include "hosts/qxftp/Program.h"

int main(int count, char** words) {
  try {
    return qxftp::runProgram(count, words);
  } catch (const std::exception& problem) {
    std::fprintf(stderr, "qxftp: %s\n", problem.what());
    return 1;
  }
}
