// SPDX-License-Identifier: MIT
#include "framework/internet/InternetFile.h"

#include <optional>
#include <utility>

#include "framework/internet/Raising.h"
#include "framework/internet/ftp/FtpTransfer.h"
#include "framework/internet/net/Failure.h"
#include "framework/internet/net/InternetErrors.h"
#include "framework/platform/last_error.h"

using internet::FtpTransfer;

namespace {

// The transfer that `kind` of call is for.
FtpTransfer& required(const std::unique_ptr<FtpTransfer>& transfer, FtpTransfer::Kind kind) {
  if (!transfer || transfer->kind() != kind) internet::fail(internet::kIncorrectHandleState);
  return *transfer;
}

}  // namespace

CInternetFile::CInternetFile(std::unique_ptr<FtpTransfer> transfer) noexcept
    : m_transfer(std::move(transfer)) {}

CInternetFile::~CInternetFile() { CInternetFile::Close(); }

std::uint32_t CInternetFile::Read(void* buffer, std::uint32_t size) {
  std::uint32_t count = 0;
  internet::raising([&] {
    FtpTransfer& transfer = required(m_transfer, FtpTransfer::Kind::download);
    if (!buffer && size > 0) internet::fail(platform::kErrorInvalidParameter);
    count = static_cast<std::uint32_t>(transfer.read(buffer, size));
  });
  return count;
}

void CInternetFile::Expect(std::uint64_t size) noexcept {
  if (m_transfer) m_transfer->expect(size);
}

void CInternetFile::Write(const void* data, std::uint32_t size) {
  internet::raising([&] {
    FtpTransfer& transfer = required(m_transfer, FtpTransfer::Kind::upload);
    if (!data && size > 0) internet::fail(platform::kErrorInvalidParameter);
    transfer.send(data, size);
  });
}

bool CInternetFile::Close() noexcept {
  // Taken out of the object first: a notification may close or delete it again.
  std::unique_ptr<FtpTransfer> transfer = std::move(m_transfer);
  if (!transfer) return true;
  std::uint32_t error = platform::kErrorSuccess;
  try {
    const auto failure =
        internet::attempt([&] { transfer->control().requestOfFile([&] { transfer->close(); }); });
    if (failure) error = failure->error;
  } catch (...) {
    // A stop, or a callback's exception, must not leave here; a stop is noticed at the next wait.
    error = internet::kConnectionAborted;
  }
  transfer.reset();
  platform::setLastError(error);
  return error == platform::kErrorSuccess;
}
