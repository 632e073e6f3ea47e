// SPDX-License-Identifier: MIT
// A remote file opened by CFtpConnection::OpenFile. Read and Write throw CInternetException*.
#pragma once

#include <cstdint>
#include <memory>

namespace internet {
class FtpTransfer;
}

class CInternetFile {
 public:
  explicit CInternetFile(std::unique_ptr<internet::FtpTransfer> transfer) noexcept;
  virtual ~CInternetFile();  // Close()
  CInternetFile(const CInternetFile&) = delete;
  CInternetFile& operator=(const CInternetFile&) = delete;

  // Fills `buffer` with `size` bytes; fewer only at the end of the data, 0 at its end. The end of data is
  // reported although the server's final reply is missing (Close waits for that).
  virtual std::uint32_t Read(void* buffer, std::uint32_t size);
  // Sends all.
  virtual void Write(const void* data, std::uint32_t size);
  // Ends the transfer and takes the server's final reply. Never throws an internet exception; a failure is
  // told by the last error (0 on success) and by the result. May be called twice.
  virtual bool Close() noexcept;

 private:
  std::unique_ptr<internet::FtpTransfer> m_transfer;
};
