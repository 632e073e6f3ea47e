// SPDX-License-Identifier: MIT
// A host that has put functions of its own into the slots of the operations that others are made of. Each
// notes its arguments, then does what the test says or, without that, what the library does.
#pragma once

#include <functional>
#include <mutex>
#include <sstream>
#include <string>
#include <vector>

#include "Src/QXIP.h"

class SlotHost final : public TQXIP {
 public:
  explicit SlotHost(QXErrorInfo* pErrorInfo = nullptr) : TQXIP(pErrorInfo) {}
  ~SlotHost() = default;

  // The calls in their order: "FTPUploadFile /a local 2".
  [[nodiscard]] std::vector<std::string> calls() const {
    const std::lock_guard lock(m_mutex);
    return m_calls;
  }
  // The message buffer as each of those calls found it.
  std::vector<std::string> messagesBefore;
  // The message buffer after each of them that answers yes or no, in the order of their ends.
  std::vector<std::string> messagesAfter;
  // Whether a report is taken out of the error record as soon as a call has ended: the record keeps the first
  // one else. And the texts of those taken.
  bool takesReports = false;
  std::vector<std::string> reports;
  // Whether a call that has no use for the host's values got some.
  bool hostValuesWereGiven = false;

  // What the functions answer. None: the library's own function runs.
  std::function<QXBool(const std::string&remote, const std::string&local)> download, upload;
  std::function<QXBool()> copy, move, remove, rename, write, read;
  std::function<std::uint32_t()> size;
  std::function<QXBool(const char*path, std::uint32_t retries)> dirExist, createDir;
  std::function<QXBool(const char*path, std::uint32_t value, std::uint32_t retries)> destroyContent, wipeWith;
  std::function<QXBool(QXBool*)> poll;
  // Called by OnDisconnect, on the thread whose connection it is.
  std::function<void()> disconnected;

  QXBool OnPoll(QXHostValue, QXHostValue, QXHostValue, QXBool* reconnect) override {
    return poll ? poll(reconnect) : QXBool{0};
  }
  void OnDisconnect() override {
    if (disconnected) disconnected();
    TQXIP::OnDisconnect();
  }
  QXBool FTPDownloadFile(const char* remote, const char* local, std::uint32_t retries) override {
    note("FTPDownloadFile", remote, local, retries);
    return ended(download ? download(remote, local) : TQXIP::FTPDownloadFile(remote, local, retries));
  }
  QXBool FTPUploadFile(const char* remote, const char* local, std::uint32_t retries) override {
    note("FTPUploadFile", remote, local, retries);
    return ended(upload ? upload(remote, local) : TQXIP::FTPUploadFile(remote, local, retries));
  }
  QXBool FTPCpyFile(const char* source, const char* destination, QXProgress progress, std::uint32_t retries,
                    QXHostValue first, QXHostValue second) override {
    note("FTPCpyFile", source, destination, progress != nullptr, retries, first, second);
    return ended(copy ? copy() : TQXIP::FTPCpyFile(source, destination, progress, retries, first, second));
  }
  QXBool FTPMovFile(const char* source, const char* destination, QXProgress progress, std::uint32_t retries,
                    QXHostValue first, QXHostValue second) override {
    note("FTPMovFile", source, destination, progress != nullptr, retries, first, second);
    return ended(move ? move() : TQXIP::FTPMovFile(source, destination, progress, retries, first, second));
  }
  QXBool FTPRmvFile(const char* path, std::uint32_t passes, std::uint32_t retries, QXHostValue first,
                    QXHostValue second) override {
    note("FTPRmvFile", path, passes, retries, first, second);
    return ended(remove ? remove() : TQXIP::FTPRmvFile(path, passes, retries, first, second));
  }
  std::uint32_t FTPFileSize(const char* path, std::uint32_t retries, QXHostValue first,
                            QXHostValue second) override {
    note("FTPFileSize", path, retries, first, second);
    return size ? size() : TQXIP::FTPFileSize(path, retries, first, second);
  }
  QXBool FTPWriteFile(const char* path, const void* data, std::uint32_t bytes, QXBool append,
                      std::uint32_t reserved, std::uint32_t retries, QXHostValue first,
                      QXHostValue second) override {
    note("FTPWriteFile", path, bytes, int{append}, reserved, retries, first, second);
    return ended(write ? write()
                       : TQXIP::FTPWriteFile(path, data, bytes, append, reserved, retries, first, second));
  }
  QXBool FTPReadFile(const char* path, void** data, std::uint32_t* bytes, std::uint32_t reserved,
                     std::uint32_t retries, QXHostValue first, QXHostValue second) override {
    note("FTPReadFile", path, reserved, retries, first, second);
    return ended(read ? read() : TQXIP::FTPReadFile(path, data, bytes, reserved, retries, first, second));
  }
  QXBool FTPDirExist(const char* path, std::uint32_t retries, QXHostValue first,
                     QXHostValue second) override {
    note("FTPDirExist", path, retries);
    noteHostValues(first, second);
    return ended(dirExist ? dirExist(path, retries) : TQXIP::FTPDirExist(path, retries, first, second));
  }
  QXBool FTPCreateDir(const char* path, std::uint32_t retries, QXHostValue first,
                      QXHostValue second) override {
    note("FTPCreateDir", path, retries);
    noteHostValues(first, second);
    return ended(createDir ? createDir(path, retries) : TQXIP::FTPCreateDir(path, retries, first, second));
  }
  QXBool FTPDestroyFileContent(const char* path, std::uint32_t method, std::uint32_t retries,
                               QXHostValue first, QXHostValue second) override {
    note("FTPDestroyFileContent", path, method, retries);
    noteHostValues(first, second);
    return ended(destroyContent ? destroyContent(path, method, retries)
                                : TQXIP::FTPDestroyFileContent(path, method, retries, first, second));
  }
  QXBool WipeWith(const char* path, std::uint32_t pattern, std::uint32_t retries) override {
    note("WipeWith", path, pattern, retries);
    return ended(wipeWith ? wipeWith(path, pattern, retries) : TQXIP::WipeWith(path, pattern, retries));
  }
  QXBool FTPRenameFile(const char* from, const char* to, std::uint32_t retries) override {
    note("FTPRenameFile", from, to, retries);
    return ended(rename ? rename() : TQXIP::FTPRenameFile(from, to, retries));
  }

 private:
  static const char* shown(const char* text) { return text != nullptr ? text : "(null)"; }
  template <typename Number>
  static Number shown(Number number) {
    return number;
  }
  template <typename... Arguments>
  void note(const char* name, Arguments... arguments) {
    std::ostringstream call;
    call << name;
    ((call << ' ' << shown(arguments)), ...);
    const std::lock_guard lock(m_mutex);
    m_calls.push_back(call.str());
    messagesBefore.emplace_back(m_szMessage);
  }
  void noteHostValues(QXHostValue first, QXHostValue second) {
    if (first != 0 || second != 0) hostValuesWereGiven = true;
  }
  QXBool ended(QXBool result) {
    messagesAfter.emplace_back(m_szMessage);
    if (takesReports && m_pErrorInfo->bSet != 0) {
      reports.emplace_back(m_pErrorInfo->szText);
      *m_pErrorInfo = {};
    }
    return result;
  }

  // Workers call the slots, too.
  mutable std::mutex m_mutex;
  std::vector<std::string> m_calls;
};
