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
  // The size that the caller has learned of a file to be read, from before the transfer. Once so many bytes
  // have been read, Close succeeds without the server's final reply as well.
  void Expect(std::uint64_t size) noexcept;
  // Sends all.
  virtual void Write(const void* data, std::uint32_t size);
  // Ends the transfer and takes the server's final reply; where that is lost the size decides (of a written
  // file, as it is asked over a fresh connection). Never throws an internet exception; a failure is told by
  // the last error (0 on success) and by the result. May be called twice.
  virtual bool Close() noexcept;

 private:
  std::unique_ptr<internet::FtpTransfer> m_transfer;
};
