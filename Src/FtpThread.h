// SPDX-License-Identifier: MIT
// The record that carries an operation between the calling thread and its worker. It lives on the operation's
// stack; operations with arguments or answers of their own derive from it.
#pragma once

#include "QXIPInt.h"

class TQXIP;

struct QXFtpThread {
  QXBool bDone = 0;    // set by the worker as its last act; never by a stopped worker
  QXBool bResult = 0;  // the worker's outcome
  TQXIP* pQXIP = nullptr;
  QXBool bUpdating = 0;  // the worker is writing *pTransfer
  QXTransfer* pTransfer = nullptr;
  std::uint32_t* pRetries = nullptr;  // the operation's own retry count, used up by the worker
  const char* pszName = nullptr;      // the first path argument
};
