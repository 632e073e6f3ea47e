// SPDX-License-Identifier: MIT
// How a host puts functions of its own into a client's table: OnPoll to cancel, OnStatus for the protocol,
// the other hooks of slots 6 to 22, or any operation. The client gets a copy of its table, in which the host
// replaces what it likes; other clients keep theirs. In C++ QXClientHooks at the end does the same.
//
//   static QXBool QX_CALL cancelAtOnce(TQXIPIFInt* pClient, QXHostValue, QXHostValue, QXHostValue, QXBool*);
//
//   QXHooks hooks;
//   QXInstallHooks(pClient, &hooks, pMyData);
//   hooks.Table.OnPoll = &cancelAtOnce;
//
// Rules:
//  1. The copy has to stay where it is until it is removed, or until the call that ends the client has come
//     back: what the client calls while it ends is found in it as well. It may be freed after that, though
//     never within a function that the client calls.
//  2. Install, change and remove between operations, on the thread that uses the client.
//  3. A function in the table is called on the thread that does the work: OnPoll on the caller's, the other
//     hooks and nested operations perhaps on a worker's. QXHooksOf finds the host's data there.
//  4. The library's own function is QXHooksOf(pClient)->pOriginal->Name(pClient, ...). OnIPError, OnConnect,
//     OnDisconnect and OnStatusCallback do work of the library: call the original, before your own part.
//  5. A client may be freed in a function of the host; then it is touched no more, QXHooksOf included.
//  6. No exception leaves such a function.
//  7. An operation whose slot the host has replaced is repeated by a call of the host's function.
//  8. One copy for each client at a time: QXHooksOf knows the latest alone.
#pragma once

#include <string.h>

#include "QXClientTable.h"

typedef struct QXHooks {
  const void* aInFront[2];         // what some compilers keep in front of a table
  QXClientTable Table;             // what the client calls
  struct QXHooks* pSelf;           // behind the table, for QXHooksOf
  const QXClientTable* pOriginal;  // what the client called before
  void* pContext;                  // the host's own
  QXBool bEnded;                   // the client has come to its end
} QXHooks;

QX_ASSERT_LAYOUT(offsetof(QXHooks, Table) == sizeof(void*) * 2 &&
                     offsetof(QXHooks, pSelf) == offsetof(QXHooks, Table) + sizeof(QXClientTable),
                 "what is found from the address of the table");

// By memcpy: to a C++ compiler the first field of a client is its own, and these have no casts of either
// language.
static inline const QXClientTable* QXTableOf(const TQXIPIFInt* pClient) {
  const void* const pField = pClient;
  const QXClientTable* pTable;
  memcpy(&pTable, pField, sizeof pTable);
  return pTable;
}

static inline void QXUseTable(TQXIPIFInt* pClient, const QXClientTable* pTable) {
  void* const pField = pClient;
  memcpy(pField, &pTable, sizeof pTable);
}

// The copy that `pClient` has got. REQUIRES: it has one.
static inline QXHooks* QXHooksOf(const TQXIPIFInt* pClient) {
  QXHooks* pHooks;
  memcpy(&pHooks, QXTableOf(pClient) + 1, sizeof pHooks);
  return pHooks;
}

// In the slot of the destructor, for QXRemoveHooks to know. A host's own function there sets bEnded itself.
static inline void* QX_CALL QXEndClient(TQXIPIFInt* pClient, uint32_t nFlags) {
  QXHooks* const pHooks = QXHooksOf(pClient);
  pHooks->bEnded = 1;
  return pHooks->pOriginal->DeletingDestructor(pClient, nFlags);
}

// Fills *pHooks and gives its table to the client, which does what it did before.
static inline void QXInstallHooks(TQXIPIFInt* pClient, QXHooks* pHooks, void* pContext) {
  const QXClientTable* const pOriginal = QXTableOf(pClient);
  const void* const* pEntries;
  memcpy(&pEntries, &pOriginal, sizeof pEntries);
  memcpy(pHooks->aInFront, pEntries - 2, sizeof pHooks->aInFront);
  pHooks->Table = *pOriginal;
  pHooks->Table.DeletingDestructor = &QXEndClient;
  pHooks->pSelf = pHooks;
  pHooks->pOriginal = pOriginal;
  pHooks->pContext = pContext;
  pHooks->bEnded = 0;
  QXUseTable(pClient, &pHooks->Table);
}

// Gives the client its former table back. Does nothing when the client has ended.
static inline void QXRemoveHooks(TQXIPIFInt* pClient, const QXHooks* pHooks) {
  if (!pHooks->bEnded) QXUseTable(pClient, pHooks->pOriginal);
}

#if defined(__cplusplus)

// Installed for as long as it lives; the rules are those above.
//
//   QXClientHooks hooks(pClient, &myData);
//   hooks->OnPoll = [](TQXIPIFInt*, QXHostValue, QXHostValue, QXHostValue, QXBool*) -> QXBool { return 1; };
class QXClientHooks {
 public:
  explicit QXClientHooks(TQXIPIFInt* pClient, void* pContext = nullptr) noexcept : m_pClient(pClient) {
    QXInstallHooks(pClient, &m_hooks, pContext);
  }
  // The client may have ended before, not be about to.
  ~QXClientHooks() { QXRemoveHooks(m_pClient, &m_hooks); }
  QXClientHooks(const QXClientHooks&) = delete;
  QXClientHooks& operator=(const QXClientHooks&) = delete;

  QXClientTable* operator->() noexcept { return &m_hooks.Table; }
  const QXClientTable& Original() const noexcept { return *m_hooks.pOriginal; }
  bool ClientEnded() const noexcept { return m_hooks.bEnded != 0; }

  // What the constructor of the copy that `pClient` has got was given. REQUIRES: there is one.
  template <typename Context>
  static Context& ContextOf(const TQXIPIFInt* pClient) noexcept {
    return *static_cast<Context*>(QXHooksOf(pClient)->pContext);
  }

 private:
  TQXIPIFInt* m_pClient;
  QXHooks m_hooks;
};

#endif
