// SPDX-License-Identifier: MIT
// One transfer over a data connection: a listing, a download or an upload. Failures are thrown as
// internet::Failure. While it moves data it watches the control connection, where the server tells a failure.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "framework/internet/ftp/FtpControl.h"
#include "framework/internet/net/Sock.h"
#include "framework/platform/file.h"

namespace internet {

class FtpTransfer {
 public:
  enum class Kind { listing, download, upload };

  FtpTransfer(std::shared_ptr<FtpControl> control, Kind kind) noexcept;
  // Gives up at once what has not ended: a half upload is broken off, the control connection closed.
  ~FtpTransfer();
  FtpTransfer(const FtpTransfer&) = delete;
  FtpTransfer& operator=(const FtpTransfer&) = delete;

  // Before the beginning of an upload: it goes behind what the file holds, and one without data leaves that
  // as it is. From the file's start where the server does not tell its size, or does not restart there.
  void startBehindContent() noexcept { behindContent_ = true; }
  // Before the beginning: at this byte of the file. From its start where the server does not restart there:
  // start() tells, once the transfer has begun.
  void startAt(std::uint64_t position) noexcept { position_ = position; }
  [[nodiscard]] std::uint64_t start() const noexcept { return start_; }
  // The command has gone out, or may have.
  [[nodiscard]] bool asked() const noexcept { return asked_; }
  // The size of the file that a download is of, as far as the server has told it.
  [[nodiscard]] std::optional<std::uint64_t> size() const noexcept { return announced_; }
  // Bytes that were received or sent from there on.
  [[nodiscard]] std::uint64_t moved() const noexcept { return moved_; }
  // Sets binary type, makes the data connection and sends the command. The reply is a refusal, which is the
  // caller's to judge, or the transfer has begun.
  FtpReply begin(std::string_view verb, std::string_view argument);
  // Begins to receive or to store a file; raises a refusal.
  void open(std::string_view path);

  // The size that the caller has learned of a download: with so many bytes it is whole where the server's
  // word on that is lost.
  void expect(std::uint64_t size) noexcept { expected_ = size; }

  // What has come, at least one byte; 0 at the end of the data. A download that ends short of the size that
  // the server has told, or that the server calls failed, ends with a failure instead.
  std::size_t receive(void* buffer, std::size_t size);
  // Fills `buffer`; less only at the end of the data.
  std::size_t read(void* buffer, std::size_t size);

  // Told each time that the connection has taken bytes: where the next one belongs in the file.
  using Told = std::function<void(std::uint64_t position)>;
  void send(const void* data, std::size_t size, const Told& told = nullptr);
  // Sends the file from its position to its end.
  void sendFile(platform::File& file, const Told& told = nullptr);

  // Ends the transfer in good order and waits for the final reply, whatever that is; before that it calls
  // `ended`.
  FtpReply finish(const std::function<void()>& ended);
  // Ends it so and fails unless all is there on the server's word. Where that is lost (a middlebox forgets
  // the idle control connection of a long transfer) the size decides.
  void confirm();
  // Breaks the transfer off and brings the control connection back in step: false when that is closed for it.
  bool abandon();
  // Ends an open file: confirms it, or abandons a download that was not read to its end.
  void close();

  [[nodiscard]] Kind kind() const noexcept { return kind_; }
  [[nodiscard]] FtpControl& control() const noexcept { return *control_; }

 private:
  enum class State { idle, running, ended, failed };  // of the data

  // Of a wait for the data connection.
  struct DataLimit {
    Deadline deadline;
    DeliveryWatch delivery;
  };

  void restartAt(std::uint64_t position);
  void endWithoutData();
  void requireRunning() const;
  [[nodiscard]] DataLimit dataLimit() const;
  void endOfData();
  void endData();
  void endUpload();
  void endStream();
  // An encrypted stream that ends without its last word has been cut. Old servers leave that word out, so
  // what is known to be whole is taken for whole.
  [[nodiscard]] bool endsWithoutWord(platform::IoStatus status) const noexcept {
    return control_->tls() && status == platform::IoStatus::reset && hasKnownSize();
  }
  FtpReply finalReply();
  [[nodiscard]] bool wordIsLost() const noexcept;
  [[nodiscard]] bool hasKnownSize() const noexcept;
  bool allIsThere();
  void awaitPeersEnd();
  void checkCut();
  platform::IoStatus awaitPeer(std::chrono::milliseconds limit);
  void waitForData(bool write, std::optional<DataLimit>& limit);
  void watchControl();
  void notifyFinal();
  void awaitFirstData();
  bool awaitAnyEnd();
  bool askForEnd(const Deadline& deadline, bool silent);
  bool awaitFinal(std::chrono::milliseconds limit);
  void takeReply(FtpReply reply);
  // The server has ended the transfer with a refusal.
  [[nodiscard]] bool refused() const noexcept { return final_ && final_->refused(); }
  [[nodiscard]] bool movedInFull() const noexcept;
  // Of what the server has announced.
  [[nodiscard]] bool tooShort() const noexcept { return announced_ && start_ + moved_ < *announced_; }
  // One that is to start behind a part starts elsewhere.
  [[nodiscard]] bool tooLong() const noexcept {
    return start_ > 0 && announced_ && start_ + moved_ > *announced_;
  }
  void closeData() noexcept {
    if (data_ && control_->tls()) endInOrder(*data_);
    data_.reset();
  }
  void breakData() noexcept;
  [[noreturn]] void dataFailed(platform::IoStatus status);

  const std::shared_ptr<FtpControl> control_;
  const Kind kind_;
  State state_ = State::idle;
  std::unique_ptr<Sock> data_;
  std::optional<FtpReply> final_;
  bool finalNotified_ = false;
  std::string path_;
  bool behindContent_ = false;
  bool asked_ = false;
  std::uint64_t position_ = 0;              // where the caller wants it to start
  std::uint64_t start_ = 0;                 // where it does, in the file
  std::optional<std::uint64_t> announced_;  // by the server: the size of the file of a download
  std::optional<std::uint64_t> expected_;   // by the caller
  std::uint64_t moved_ = 0;                 // bytes that were received, or sent
  // read()'s: received, not handed out yet.
  std::unique_ptr<char[]> buffer_;
  std::size_t bufferStart_ = 0;
  std::size_t bufferEnd_ = 0;
};

}  // namespace internet
