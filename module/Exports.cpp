// SPDX-License-Identifier: MIT
// The exported functions. They only forward: the operations install the module's state themselves.
#include "QXExports.h"
#include "Src/QXIP.h"
#include "framework/ModuleState.h"

TQXIPIFInt* CreateQXIPIFInstance(QXErrorInfo* pErrorInfo) {
  // A host of another language could not handle an exception: it gets null instead.
  try {
    return new TQXIP(pErrorInfo, 0);
  } catch (...) {
    return nullptr;
  }
}

QXBool FreeQXIPIFInstance(TQXIPIFInt* pInstance) {
  if (pInstance == nullptr) return 0;
  pInstance->Release();
  return 1;
}

QXBool DoFTPConnect(TQXIPIFInt* pInstance, const char* pszHost, const char* pszUser, const char* pszPassword,
                    std::uint32_t nPort, QXBool bPassive, std::uint32_t nValue, TInternetSession* pSession) {
  if (pInstance == nullptr) return 0;
  return pInstance->FTPConnect(pszHost, pszUser, pszPassword, nPort, bPassive, nValue, pSession);
}

std::uint32_t DllAddRef() { return AddModuleRef(); }

std::uint32_t DllRelease() { return ReleaseModuleRef(); }
