// SPDX-License-Identifier: MIT
// The functions that the library exports, undecorated. Call them from one thread.
#pragma once

#include "QXIPInt.h"

#if defined(QX_BUILDING_LIBRARY) && !defined(_WIN32)
#define QX_EXPORT __attribute__((visibility("default")))
#else
#define QX_EXPORT
#endif

extern "C" {

// A new client with reference count 1, or null when it cannot be made. pErrorInfo may be null (no error
// reports) and must live as long as the client. Free it with FreeQXIPIFInstance or Release.
QX_EXPORT TQXIPIFInt* CreateQXIPIFInstance(QXErrorInfo* pErrorInfo);

// Drops one reference. 0 for null, else 1.
QX_EXPORT QXBool FreeQXIPIFInstance(TQXIPIFInt* pInstance);

// Calls pInstance->FTPConnect with the remaining arguments; 0 for a null instance.
QX_EXPORT QXBool DoFTPConnect(TQXIPIFInt* pInstance, const char* pszHost, const char* pszUser,
                              const char* pszPassword, std::uint32_t nPort, QXBool bPassive,
                              std::uint32_t nValue, TInternetSession* pSession);

// The module-wide count of clients and host references: raise it, lower it (never below 0). The new value.
QX_EXPORT std::uint32_t DllAddRef();
QX_EXPORT std::uint32_t DllRelease();
}

// For hosts that load the library at run time.
typedef TQXIPIFInt* (*PfnCreateQXIPIFInstance)(QXErrorInfo*);
typedef QXBool (*PfnFreeQXIPIFInstance)(TQXIPIFInt*);
typedef QXBool (*PfnDoFTPConnect)(TQXIPIFInt*, const char*, const char*, const char*, std::uint32_t, QXBool,
                                  std::uint32_t, TInternetSession*);
typedef std::uint32_t (*PfnDllAddRef)();
typedef std::uint32_t (*PfnDllRelease)();
