// SPDX-License-Identifier: MIT
#include "tests/dll/c_host.h"

const CMember* cLayout(void) {
  static const CMember members[] = {
#define QX_RECORD(record) {#record, 0, sizeof(record)},
#define QX_FIELD(record, field) {#field, offsetof(record, field), sizeof(((record*)0)->field)},
#define QX_OBJECT_FIELD(field) {#field, offsetof(TQXIPIFInt, field), sizeof(((TQXIPIFInt*)0)->field)},
#include "tests/dll/layout.inc"
      {0, 0, 0}};
  return members;
}

const size_t* cSlotOffsets(void) {
  static const size_t offsets[] = {
#define QX_SLOT(number, operation, arguments) [number] = offsetof(QXClientTable, operation),
#include "tests/dll/slots.inc"
      [QX_SLOT_DESTRUCTOR] = offsetof(QXClientTable, DeletingDestructor)};
  return offsets;
}

int cSetsLogin(TQXIPIFInt* pClient) {
  const QXBool set = pClient->pTable->FTPSetLogin(pClient, "ftp://h", "u", "p", 2121, 1);
  return set == 1 && pClient->m_RemoteSystem[0] == 'h' && pClient->m_UserName[0] == 'u' &&
         pClient->m_Password[0] == 'p' && pClient->m_nPort == 2121 && pClient->m_bPassive == 1;
}

static QXBool QX_CALL countEnd(TQXIPIFInt* pClient) {
  const QXHooks* const pHooks = QXHooksOf(pClient);
  ++*(int*)pHooks->pContext;
  return pHooks->pOriginal->OnBeforeDisconnect(pClient);
}

void cInstallHooks(TQXIPIFInt* pClient, QXHooks* pHooks, int* pnEnds) {
  QXInstallHooks(pClient, pHooks, pnEnds);
  pHooks->Table.OnBeforeDisconnect = &countEnd;
}
