// SPDX-License-Identifier: MIT
// c_host PORT USER PASSWORD, of Microsoft's ABI without its SDK: Windows itself has what a C library would
// do.
#include "listing.h"

__declspec(noreturn) void ExitProcess(uint32_t nCode);
char* GetCommandLineA(void);
void* GetStdHandle(uint32_t nWhich);
int WriteFile(void* hFile, const void* pData, uint32_t nSize, uint32_t* pnWritten, void* pOverlapped);

static void print(const char* pszText) {
  void* const output = GetStdHandle(0xFFFFFFF5);
  uint32_t length = 0;
  while (pszText[length] != '\0') ++length;
  WriteFile(output, pszText, length, &length, 0);
  WriteFile(output, "\n", 1, &length, 0);
}

// Cuts off the last of the words that single spaces part.
static const char* lastWord(char* pszLine) {
  char* end = pszLine;
  while (*end != '\0') ++end;
  while (end > pszLine && *end != ' ') --end;
  *end = '\0';
  return end + 1;
}

void start(void) {
  char* const line = GetCommandLineA();
  Server server;
  server.pszPassword = lastWord(line);
  server.pszUser = lastWord(line);
  server.pszPort = lastWord(line);
  ExitProcess((uint32_t)listFolder(&server, &print));
}
