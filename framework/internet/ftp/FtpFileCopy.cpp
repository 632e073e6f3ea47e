// SPDX-License-Identifier: MIT
#include "framework/internet/ftp/FtpFileCopy.h"

#include <memory>
#include <string>
#include <utility>

#include "framework/internet/ftp/FtpTransfer.h"
#include "framework/internet/net/Failure.h"
#include "framework/internet/net/InternetErrors.h"
#include "framework/platform/file.h"
#include "framework/platform/last_error.h"

namespace internet {

namespace {

using platform::FileCreation;

// A local file being written, deleted again unless keep() was reached.
class LocalTarget {
 public:
  LocalTarget(const char* path, bool failIfExists, std::uint32_t attributes)
      : path_(path),
        created_(file_.open(path, platform::FileAccess::write, FileCreation::createNew, attributes)) {
    if (created_) return;
    const bool there = platform::lastError() == platform::kErrorFileExists;
    if (there && !failIfExists &&
        file_.open(path, platform::FileAccess::write, FileCreation::createAlways, attributes)) {
      return;
    }
    fail(platform::lastError());
  }
  ~LocalTarget() {
    if (!created_) return;
    file_.close();
    // Windows deletes no read-only file. There is nobody to tell if it fails.
    static_cast<void>(platform::setFileAttributes(path_.c_str(), platform::kFileAttributeNormal));
    static_cast<void>(platform::deleteFile(path_.c_str()));
  }
  LocalTarget(const LocalTarget&) = delete;
  LocalTarget& operator=(const LocalTarget&) = delete;

  [[nodiscard]] bool write(const void* data, std::size_t size) noexcept { return file_.write(data, size); }

  void keep() {
    if (!file_.close()) fail(platform::lastError());
    created_ = false;
  }

 private:
  std::string path_;
  platform::File file_;
  bool created_;  // by us, and to be deleted
};

}  // namespace

void downloadFile(FtpControl& control, std::string_view remote, const char* local, bool failIfExists,
                  std::uint32_t attributes) {
  LocalTarget target(local, failIfExists, attributes);
  FtpTransfer transfer(control.shared_from_this(), FtpTransfer::Kind::download);
  transfer.open(remote);
  const auto block = std::make_unique_for_overwrite<char[]>(kTransferBuffer);
  while (const std::size_t count = transfer.receive(block.get(), kTransferBuffer)) {
    if (target.write(block.get(), count)) continue;
    const std::uint32_t error = platform::lastError();
    transfer.abandon();
    fail(error);
  }
  transfer.confirm();
  target.keep();
}

void uploadFile(FtpControl& control, const char* local, std::string_view remote) {
  platform::File file;
  if (!file.open(local, platform::FileAccess::read, FileCreation::openExisting)) fail(platform::lastError());
  FtpTransfer transfer(control.shared_from_this(), FtpTransfer::Kind::upload);
  transfer.open(remote);
  transfer.sendFile(file);
  transfer.confirm();
}

}  // namespace internet
