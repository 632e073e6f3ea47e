// SPDX-License-Identifier: MIT
#include "listing.h"

#include "QXExports.h"

#define MOST_ENTRIES 16

static uint32_t numberOf(const char* pszDigits) {
  uint32_t number = 0;
  for (; *pszDigits != '\0'; ++pszDigits) number = number * 10 + (uint32_t)(*pszDigits - '0');
  return number;
}

static int listOf(TQXIPIFInt* pClient, void (*print)(const char* pszText)) {
  static QXDirEntry entries[MOST_ENTRIES];
  uint32_t count = 0;
  if (!pClient->pTable->FTPGetDirectory(pClient, "/pub", 0, &count, "*", 0) || count > MOST_ENTRIES) return 0;
  if (!pClient->pTable->FTPGetDirectory(pClient, "/pub", entries, &count, "*", 0)) return 0;
  for (uint32_t i = 0; i < count; ++i) print(entries[i].szName);
  return 1;
}

int listFolder(const Server* pServer, void (*print)(const char* pszText)) {
  static QXErrorInfo error;
  TQXIPIFInt* const pClient = CreateQXIPIFInstance(&error);
  if (!pClient) return 2;
  const int listed = DoFTPConnect(pClient, "127.0.0.1", pServer->pszUser, pServer->pszPassword,
                                  numberOf(pServer->pszPort), 1, 0, 0) &&
                     listOf(pClient, print);
  if (!listed) print(error.szText);
  FreeQXIPIFInstance(pClient);
  return listed ? 0 : 1;
}
