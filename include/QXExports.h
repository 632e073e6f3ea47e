// SPDX-License-Identifier: MIT
// The functions that the library exports, undecorated. Call them from one thread.
#pragma once

#include "QXClientTable.h"
#include "QXErrorInfo.h"
#if defined(__cplusplus)
#include "QXIPInt.h"
#endif

#if defined(QX_BUILDING_LIBRARY) && !defined(_WIN32)
#define QX_EXPORT __attribute__((visibility("default")))
#else
#define QX_EXPORT
#endif

#if defined(__cplusplus)
extern "C" {
#endif

// A new client with reference count 1, or null when it cannot be made. pErrorInfo may be null (no error
// reports) and must live as long as the client. Free it with FreeQXIPIFInstance or Release.
QX_EXPORT TQXIPIFInt* QX_CALL CreateQXIPIFInstance(QXErrorInfo* pErrorInfo);

// Drops one reference. 0 for null, else 1.
QX_EXPORT QXBool QX_CALL FreeQXIPIFInstance(TQXIPIFInt* pInstance);

// Calls pInstance->FTPConnect with the remaining arguments; 0 for a null instance.
QX_EXPORT QXBool QX_CALL DoFTPConnect(TQXIPIFInt* pInstance, const char* pszHost, const char* pszUser,
                                      const char* pszPassword, uint32_t nPort, QXBool bPassive,
                                      uint32_t nValue, TInternetSession* pSession);

// The module-wide count of clients and host references: raise it, lower it (never below 0). The new value.
QX_EXPORT uint32_t QX_CALL DllAddRef(void);
QX_EXPORT uint32_t QX_CALL DllRelease(void);

#if defined(__cplusplus)
}
#endif

// For hosts that load the library at run time.
typedef TQXIPIFInt*(QX_CALL* PfnCreateQXIPIFInstance)(QXErrorInfo*);
typedef QXBool(QX_CALL* PfnFreeQXIPIFInstance)(TQXIPIFInt*);
typedef QXBool(QX_CALL* PfnDoFTPConnect)(TQXIPIFInt*, const char*, const char*, const char*, uint32_t, QXBool,
                                         uint32_t, TInternetSession*);
typedef uint32_t(QX_CALL* PfnDllAddRef)(void);
typedef uint32_t(QX_CALL* PfnDllRelease)(void);
