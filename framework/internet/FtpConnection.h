// SPDX-License-Identifier: MIT
// One logged-in FTP control connection. Transfers are binary. Except where said otherwise a function answers
// false with the thread's last error set (set as the very last act) and never throws an internet exception:
// 12003 for the server's refusal (its text: LastServerText), 12002, 12030, 12031, 12110 while a file is open,
// 87 for a null, empty or over-long argument or one with a byte below 0x20 or 0x7f (refused before anything
// is sent). Every wait may leave by OperationStopped.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

#include "framework/internet/net/InternetErrors.h"
#include "framework/platform/file.h"

class CFileDownload;
class CFilePart;
class CFileUpload;
class CInternetFile;
class CInternetSession;

namespace internet {
class FtpControl;
}

class CFtpConnection {
 public:
  ~CFtpConnection();  // Close()
  CFtpConnection(const CFtpConnection&) = delete;
  CFtpConnection& operator=(const CFtpConnection&) = delete;

  bool Remove(const char* path);
  bool Rename(const char* from, const char* to);
  bool CreateDirectory(const char* path);
  // Tells that CreateDirectory() comes next, and for each of these: a server that is known to take several
  // lines in one packet gets them with the first.
  void WillCreate(std::span<const std::string> paths);
  // Of a link to a directory the link goes, and what it leads to stays.
  bool RemoveDirectory(const char* path);
  // The directory that relative names refer to, as the server told it.
  bool GetCurrentDirectory(std::string& directory);
  bool SetCurrentDirectory(const char* path);

  // Remote file to local file. With `failIfExists` an existing local file is refused (80) before anything is
  // sent. On failure a local file that this call created is deleted. A transfer that ended short of the size
  // that the server announced is a failure.
  bool GetFile(const char* remote, const char* local, bool failIfExists = true,
               std::uint32_t attributes = platform::kFileAttributeNormal,
               std::uint32_t flags = internet::kTransferTypeBinary, std::uintptr_t context = 1);
  // One attempt of a file that may need several.
  bool GetFile(const char* remote, CFileDownload& file);
  bool PutFile(CFileUpload& file, const char* remote);
  // Local file to remote file.
  bool PutFile(const char* local, const char* remote, std::uint32_t flags = internet::kTransferTypeBinary,
               std::uintptr_t context = 1);

  // Opens a remote file for reading (kGenericRead), for writing from its start (kGenericWrite) or for writing
  // behind its content (kFileAppendData; as kGenericWrite where the server does not tell the size, or does
  // not restart there). The server has accepted the transfer when this returns. The caller closes and deletes
  // the file; until it is closed the connection does nothing else. Throws CInternetException*.
  CInternetFile* OpenFile(const char* path, std::uint32_t access,
                          std::uint32_t flags = internet::kTransferTypeBinary, std::uintptr_t context = 1);
  // The same for reading, in one attempt of a file that may need several: from part.Done() on.
  CInternetFile* OpenFile(const char* path, CFilePart& part);

  // Waits for `duration` at the idle control connection. True when the connection was (or already is) closed
  // by the server: seen here for the first time it is reported as 50 and 51. False when the time has passed.
  bool WaitIdle(std::chrono::milliseconds duration);

  // Lets the finders on this connection log in again, or not any more, where the server has closed it: see
  // CFtpFileFind.
  void ReopenOnDemand(bool reopens) noexcept;

  // Sends QUIT without waiting for its answer and closes (50, 51, 70). May be called twice, and after the
  // session is gone. Never throws; keeps the last error.
  void Close() noexcept;

  // The text of the server's last refusal (code and text), "" if there was none.
  [[nodiscard]] std::string LastServerText() const;

  // For the finders made on this connection; they keep the control connection's state alive.
  [[nodiscard]] const std::shared_ptr<internet::FtpControl>& Control() const noexcept { return m_control; }

 private:
  friend class CInternetSession;
  explicit CFtpConnection(std::shared_ptr<internet::FtpControl> control) noexcept;
  std::shared_ptr<internet::FtpControl> m_control;
};
