// SPDX-License-Identifier: MIT
// The host's error record. The host owns it, hands its address to CreateQXIPIFInstance, and zeroes it (or at
// least bSet) before use. It keeps the first failure: while bSet is not 0 nothing replaces it. Clear it by
// zeroing. An internet error (OnIPError) replaces an earlier record. Workers write it while an operation
// runs: read it when that is over, or in OnIPError behind the library's own.
#pragma once

#include "QXTypes.h"

// Internet errors: nError, and what OnIPError is told.
#define QX_ERROR_TIMEOUT 12002  // a server has kept silent too long
#define QX_ERROR_REFUSED 12003  // by the server, whose words are in the text
#define QX_ERROR_NAME_NOT_RESOLVED 12007
#define QX_ERROR_INCORRECT_PASSWORD 12014  // reply 530 at login
#define QX_ERROR_LOGIN_FAILURE 12015       // any other refusal at login
#define QX_ERROR_CANNOT_CONNECT 12029
#define QX_ERROR_CONNECTION_ABORTED 12030  // the server closed it, or the transfer ended early
#define QX_ERROR_CONNECTION_RESET 12031
#define QX_ERROR_CERTIFICATE_DATE 12037
#define QX_ERROR_CERTIFICATE_NAME 12038
#define QX_ERROR_CLIENT_CERTIFICATE 12044  // the server wants one of the client
#define QX_ERROR_CERTIFICATE_AUTHORITY 12045
#define QX_ERROR_BUSY 12110  // a listing within a listing
#define QX_ERROR_SECURE_CHANNEL 12157
#define QX_ERROR_CERTIFICATE_INVALID 12169  // unusable, or not the one of the fingerprint
#define QX_ERROR_CERTIFICATE_REVOKED 12170

typedef struct QXErrorInfo {
  uint32_t bSet;      // its first byte not 0: the record holds an error
  uint32_t nCode;     // 1000 for every failure that the client reports
  uint32_t nError;    // of the system, or 12000 and above; often 0 (QXIPInt.h)
  char szText[4100];  // title, a blank, detail "text [number source line]"; at most 4096 characters
} QXErrorInfo;

QX_ASSERT_LAYOUT(sizeof(QXErrorInfo) == 4112, "hosts allocate the record");
QX_ASSERT_LAYOUT(offsetof(QXErrorInfo, nCode) == 4 && offsetof(QXErrorInfo, nError) == 8 &&
                     offsetof(QXErrorInfo, szText) == 12,
                 "hosts read the record by offset");
