// SPDX-License-Identifier: MIT
// The functions that the library exports, undecorated, in C99 and in C++; QXDialogs.h has those of the
// dialogs. A client belongs to one thread at a time. FreeQXIPIFInstance, DllAddRef and DllRelease may be
// called from any.
#pragma once

#include "QXClientTable.h"
#include "QXErrorInfo.h"
#include "QXVersion.h"
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

// A new client with reference count 1, or null when there is no memory. It knows no server yet and touches no
// network. pErrorInfo may be null (no error reports); it is the host's, is not written here, and must live as
// long as the client. Free the client with FreeQXIPIFInstance or Release.
QX_EXPORT TQXIPIFInt* QX_CALL CreateQXIPIFInstance(QXErrorInfo* pErrorInfo);

// Drops one reference (slot 5), the last of which ends the client: from any thread, in any hook, while its
// operations run; they have stopped then. 0 for null, else 1, also when references are left.
QX_EXPORT QXBool QX_CALL FreeQXIPIFInstance(TQXIPIFInt* pInstance);

// Calls pInstance->FTPConnect (slot 26) with the remaining arguments and answers what that does; 0 for a null
// instance.
QX_EXPORT QXBool QX_CALL DoFTPConnect(TQXIPIFInt* pInstance, const char* pszHost, const char* pszUser,
                                      const char* pszPassword, uint32_t nPort, QXBool bPassive,
                                      uint32_t nValue, TInternetSession* pSession);

// The module-wide count of clients, directory-or-file dialogs and references of the host: raise it by one,
// lower it by one (never below 0). The new value. Nothing depends on it.
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
