// SPDX-License-Identifier: MIT
// A client of a host that has put functions of its own into the slots which the operations that change the
// server call. An empty function: the library's own.
#pragma once

#include <functional>

#include "Src/QXIP.h"

class HostClient final : public TQXIP {
 public:
  explicit HostClient(QXErrorInfo* pErrorInfo = nullptr) : TQXIP(pErrorInfo) {}
  ~HostClient() = default;

  std::function<QXBool(const char* path, std::uint32_t retries)> dirExist;
  std::function<QXBool(const char* path, std::uint32_t retries)> createDir;
  std::function<QXBool(const char* path, std::uint32_t method, std::uint32_t retries)> destroyContent;
  std::function<QXBool(const char* path, std::uint32_t pattern, std::uint32_t retries)> wipeWith;
  bool hostValuesWereGiven = false;  // to FTPDirExist, FTPCreateDir or FTPDestroyFileContent

  QXBool FTPDirExist(const char* pszPath, std::uint32_t nRetries, QXHostValue nPollArg1,
                     QXHostValue nPollArg2) override {
    noteHostValues(nPollArg1, nPollArg2);
    return dirExist ? dirExist(pszPath, nRetries)
                    : TQXIP::FTPDirExist(pszPath, nRetries, nPollArg1, nPollArg2);
  }
  QXBool FTPCreateDir(const char* pszPath, std::uint32_t nRetries, QXHostValue nPollArg1,
                      QXHostValue nPollArg2) override {
    noteHostValues(nPollArg1, nPollArg2);
    return createDir ? createDir(pszPath, nRetries)
                     : TQXIP::FTPCreateDir(pszPath, nRetries, nPollArg1, nPollArg2);
  }
  QXBool FTPDestroyFileContent(const char* pszPath, std::uint32_t nMethod, std::uint32_t nRetries,
                               QXHostValue nPollArg1, QXHostValue nPollArg2) override {
    noteHostValues(nPollArg1, nPollArg2);
    return destroyContent ? destroyContent(pszPath, nMethod, nRetries)
                          : TQXIP::FTPDestroyFileContent(pszPath, nMethod, nRetries, nPollArg1, nPollArg2);
  }
  QXBool WipeWith(const char* pszPath, std::uint32_t nPattern, std::uint32_t nRetries) override {
    return wipeWith ? wipeWith(pszPath, nPattern, nRetries) : TQXIP::WipeWith(pszPath, nPattern, nRetries);
  }

 private:
  void noteHostValues(QXHostValue first, QXHostValue second) {
    if (first != 0 || second != 0) hostValuesWereGiven = true;
  }
};
