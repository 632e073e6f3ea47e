// SPDX-License-Identifier: MIT
// An open remote file of one attempt, whose failures go to OnIPError with the operation's retry counter.
#pragma once

#include <memory>

#include "Src/HostCall.h"
#include "Src/InternetGuard.h"
#include "framework/internet/FtpConnection.h"
#include "framework/internet/InternetFile.h"
#include "framework/platform/last_error.h"

class RemoteFile {
 public:
  RemoteFile(TQXIP& client, std::uint32_t* pRetries) noexcept : m_client(client), m_pRetries(pRetries) {}
  // Gives up what is still open; why the attempt failed stays the last error.
  ~RemoteFile() {
    const platform::LastErrorKeeper reason;
    m_file.reset();
  }
  RemoteFile(const RemoteFile&) = delete;
  RemoteFile& operator=(const RemoteFile&) = delete;

  // `how`: the access, or the CFilePart that the file is read for.
  template <typename How>
  [[nodiscard]] bool Open(CFtpConnection& connection, const char* path, How&& how) {
    m_file.reset(
        GuardInternet(m_client, m_pRetries, nullptr, [&] { return connection.OpenFile(path, how); }));
    return m_file != nullptr;
  }

  // REQUIRES: an open file. Its size, where that was found out before.
  void Expect(std::uint32_t size) noexcept { m_file->Expect(size); }

  // Fills `buffer`; *pRead is less than `size` only at the end of the file.
  [[nodiscard]] bool Read(void* buffer, std::uint32_t size, std::uint32_t* pRead) {
    return GuardInternet(m_client, m_pRetries, nullptr, [&] {
      *pRead = m_file->Read(buffer, size);
      return true;
    });
  }

  [[nodiscard]] bool Write(const void* data, std::uint32_t size) {
    return GuardInternet(m_client, m_pRetries, nullptr, [&] {
      m_file->Write(data, size);
      return true;
    });
  }

  // True when the transfer is known to be whole, or nothing is open.
  [[nodiscard]] bool Close() {
    const std::unique_ptr<CInternetFile> file = std::move(m_file);
    return file == nullptr || HostCall([&] { return file->Close(); });
  }

 private:
  TQXIP& m_client;
  std::uint32_t* m_pRetries;
  std::unique_ptr<CInternetFile> m_file;
};
