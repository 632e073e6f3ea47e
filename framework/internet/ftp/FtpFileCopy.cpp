// SPDX-License-Identifier: MIT
#include "framework/internet/ftp/FtpFileCopy.h"

#include <memory>
#include <string>
#include <string_view>
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

class SilentSession : public SessionLink {
 public:
  explicit SilentSession(const Timeouts& timeouts) noexcept : timeouts_(timeouts) {}
  void notify(std::uint32_t, void*, std::uint32_t) override {}
  [[nodiscard]] Timeouts timeouts() const noexcept override { return timeouts_; }

 private:
  Timeouts timeouts_;
};

// Asks over a fresh connection whether the remote file has `size` bytes.
bool hasSize(const FtpControl& control, std::string_view remote, std::uint64_t size) {
  const auto directory = control.directoryForReturn();
  const bool absolute = remote.starts_with('/');
  if (!absolute && !directory) return false;
  try {
    const auto probe = FtpControl::open(std::make_shared<SilentSession>(control.timeouts()), control.login());
    bool same = false;
    probe->request([&] {
      if (!absolute && !directory->empty()) probe->require("CWD", *directory);
      probe->useBinary();
      same = parseSizeReply(probe->command("SIZE", remote)) == size;
    });
    probe->close();
    return same;
  } catch (const Failure&) {
    return false;
  }
}

// The data has come to its end: takes the server's word for it. Where that is lost (a middlebox forgets the
// idle control connection of a long transfer), the size decides.
void confirm(FtpControl& control, FtpTransfer& transfer, std::string_view remote) {
  FtpReply reply;
  try {
    reply = transfer.finish();
  } catch (const Failure&) {
    if (hasSize(control, remote, transfer.bytesReceived())) return;
    throw;
  }
  if (reply.refused()) control.raise(reply);
}

void begin(FtpControl& control, FtpTransfer& transfer, std::string_view verb, std::string_view remote) {
  const FtpReply reply = transfer.begin(verb, remote);
  if (reply.refused()) control.raise(reply);
}

}  // namespace

void downloadFile(FtpControl& control, std::string_view remote, const char* local, bool failIfExists,
                  std::uint32_t attributes) {
  LocalTarget target(local, failIfExists, attributes);
  FtpTransfer transfer(control.shared_from_this(), FtpTransfer::Kind::download);
  begin(control, transfer, "RETR", remote);
  const auto block = std::make_unique_for_overwrite<char[]>(kTransferBuffer);
  while (const std::size_t count = transfer.receive(block.get(), kTransferBuffer)) {
    if (target.write(block.get(), count)) continue;
    const std::uint32_t error = platform::lastError();
    transfer.abandon();
    fail(error);
  }
  confirm(control, transfer, remote);
  target.keep();
}

void uploadFile(FtpControl& control, const char* local, std::string_view remote) {
  platform::File file;
  if (!file.open(local, platform::FileAccess::read, FileCreation::openExisting)) fail(platform::lastError());
  FtpTransfer transfer(control.shared_from_this(), FtpTransfer::Kind::upload);
  begin(control, transfer, "STOR", remote);
  transfer.sendFile(file);
  const FtpReply reply = transfer.finish();
  if (!reply.completed()) control.raise(reply);
}

}  // namespace internet
