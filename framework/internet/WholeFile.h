// SPDX-License-Identifier: MIT
// A file on its way from or to a server. It may need several connections: where an attempt has broken off
// (12002, 12030, 12031), the next one goes on behind what has been moved, if the file is still the same.
#pragma once

#include <cstdint>
#include <memory>

#include "framework/internet/net/UploadWatch.h"
#include "framework/platform/file.h"

namespace internet {
class FileDownload;
class FileUpload;
class RemotePart;
}  // namespace internet

class CFileDownload {
 public:
  // With `failIfExists` an existing local file is refused (80) before anything is sent. `goesOn`: further
  // attempts may come. Copies the path; it must not be null.
  explicit CFileDownload(const char* local, bool failIfExists = true,
                         std::uint32_t attributes = platform::kFileAttributeNormal, bool goesOn = false);
  // A local file that an attempt created is deleted unless it has come whole.
  ~CFileDownload();
  CFileDownload(const CFileDownload&) = delete;
  CFileDownload& operator=(const CFileDownload&) = delete;

  // The local file is there and holds what the next attempt may go on behind.
  [[nodiscard]] bool HoldsPart() const noexcept;
  // Deletes it.
  void Drop() noexcept;

 private:
  friend class CFtpConnection;
  std::unique_ptr<internet::FileDownload> m_file;
};

class CFileUpload {
 public:
  // As above. `watch` is told where the login asks for that ("progress=uploads" behind the server's name).
  explicit CFileUpload(const char* local, bool goesOn = false, internet::UploadWatch watch = nullptr);
  ~CFileUpload();
  CFileUpload(const CFileUpload&) = delete;
  CFileUpload& operator=(const CFileUpload&) = delete;

 private:
  friend class CFtpConnection;
  std::unique_ptr<internet::FileUpload> m_file;
};

// A remote file that the caller reads (CFtpConnection::OpenFile) and puts where he likes.
class CFilePart {
 public:
  // As above.
  explicit CFilePart(bool goesOn);
  ~CFilePart();
  CFilePart(const CFilePart&) = delete;
  CFilePart& operator=(const CFilePart&) = delete;

  // So much of it the caller has; a file that has been opened begins there.
  [[nodiscard]] std::uint64_t Done() const noexcept;
  void Add(std::uint32_t count) noexcept;
  // An attempt has failed: what it has brought stays or is forgotten.
  void BrokenOff(std::uint32_t error) noexcept;
  // The next attempt begins at the start.
  void Forget() noexcept;

 private:
  friend class CFtpConnection;
  std::unique_ptr<internet::RemotePart> m_part;
};
