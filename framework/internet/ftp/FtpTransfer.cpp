// SPDX-License-Identifier: MIT
#include "framework/internet/ftp/FtpTransfer.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

#include "framework/internet/ftp/FtpDataChannel.h"
#include "framework/internet/net/Failure.h"
#include "framework/internet/net/InternetErrors.h"
#include "framework/platform/last_error.h"
#include "framework/platform/stop_token.h"

namespace internet {

using platform::IoStatus;
using std::chrono::milliseconds;

FtpTransfer::FtpTransfer(std::shared_ptr<FtpControl> control, Kind kind) noexcept
    : control_(std::move(control)), kind_(kind) {}

FtpTransfer::~FtpTransfer() {
  if (state_ != State::idle) {
    if (data_) breakData();
    if (!final_ && control_->channel().awaiting()) control_->channel().drop();
  }
  control_->holdForFile(false);
}

FtpReply FtpTransfer::begin(std::string_view verb, std::string_view argument) {
  path_ = argument;
  control_->useBinary();
  const auto size = kind_ == Kind::download || behindContent_ ? control_->askSizeAlong(argument) : nullptr;
  FtpDataChannel data(*control_);
  const bool plain = kind_ != Kind::upload && position_ == 0;
  data.prepare(plain ? verb : "", argument);
  if (behindContent_) position_ = size->value_or(0);
  if (position_ > 0) restartAt(position_);
  asked_ = true;
  control_->sendCommand(verb, argument);
  const FtpDataChannel::Opening opening = data.establish();
  final_ = opening.final;
  finalNotified_ = !opening.first.preliminary();
  data_ = data.take();
  // Behind the beginning of a listing a refusal is judged with the rows that came before it.
  const bool begun = kind_ == Kind::listing && data_ && opening.first.preliminary();
  if (refused() && !begun) {
    breakData();
    notifyFinal();
    return *final_;
  }
  state_ = State::running;
  // What the reply tells is newer; but servers differ in whether it is the file or the rest of it.
  if (kind_ == Kind::download) announced_ = opening.announced && start_ == 0 ? opening.announced : *size;
  if (!data_) endWithoutData();
  return opening.first;
}

// Waited for, since it spares the content: what comes behind it must not pass it by. It is the last command
// before the transfer's own, as RFC 3659 wants it.
void FtpTransfer::restartAt(std::uint64_t position) {
  const FtpReply reply = control_->command("REST", std::to_string(position));
  if (reply.code == 350) start_ = position;
}

void FtpTransfer::open(std::string_view path) {
  const FtpReply reply = begin(kind_ == Kind::upload ? "STOR" : "RETR", path);
  if (reply.refused()) control_->raise(reply);
}

// The server calls the transfer complete and has made no data connection for it.
void FtpTransfer::endWithoutData() {
  notifyFinal();
  if (kind_ == Kind::upload) {
    state_ = State::failed;
    fail(kConnectionAborted);
  }
  endOfData();
}

// --- Receiving ---

std::size_t FtpTransfer::receive(void* buffer, std::size_t size) {
  if (state_ == State::ended) return 0;
  requireRunning();
  std::optional<DataLimit> limit;
  for (;;) {
    platform::throwIfStopped();
    const platform::IoResult result = data_->receive(buffer, size);
    switch (result.status) {
      case IoStatus::done:
        moved_ += result.bytes;
        control_->channel().progressed();
        if (tooLong()) fail(kInvalidServerResponse);
        return result.bytes;
      case IoStatus::wouldBlock:
        if (refused()) {
          closeData();
          state_ = State::ended;
          return 0;
        }
        waitForData(false, limit);
        break;
      default:
        if (!endsWithoutWord(result.status)) dataFailed(result.status);
        [[fallthrough]];
      case IoStatus::closed:
        endOfData();
        return 0;
    }
  }
}

std::size_t FtpTransfer::read(void* buffer, std::size_t size) {
  char* const out = static_cast<char*>(buffer);
  std::size_t filled = 0;
  while (filled < size) {
    if (bufferStart_ < bufferEnd_) {
      const std::size_t count = std::min(size - filled, bufferEnd_ - bufferStart_);
      std::memcpy(out + filled, buffer_.get() + bufferStart_, count);
      bufferStart_ += count;
      filled += count;
    } else if (size - filled >= kTransferBuffer) {
      const std::size_t count = receive(out + filled, size - filled);
      if (count == 0) break;
      filled += count;
    } else {
      if (!buffer_) buffer_ = std::make_unique_for_overwrite<char[]>(kTransferBuffer);
      bufferStart_ = bufferEnd_ = 0;
      bufferEnd_ = receive(buffer_.get(), kTransferBuffer);
      if (bufferEnd_ == 0) break;
    }
  }
  return filled;
}

// An orderly end of the stream proves nothing: servers close it for their own failures too.
void FtpTransfer::endOfData() {
  closeData();
  if (kind_ == Kind::download && (tooShort() || !announced_)) {
    state_ = State::failed;
    const Timeouts timeouts = control_->timeouts();
    awaitFinal(announced_ ? timeouts.dataError : timeouts.endOfData);
    if (final_ && final_->refused()) control_->raise(*final_);
    // The size may have come only now.
    if (tooShort()) fail(kConnectionAborted);
  }
  state_ = State::ended;
}

// --- Sending ---

void FtpTransfer::send(const void* data, std::size_t size, const Told& told) {
  requireRunning();
  const char* rest = static_cast<const char*>(data);
  std::optional<DataLimit> limit;
  while (size > 0) {
    platform::throwIfStopped();
    const platform::IoResult result = data_->send(rest, size);
    if (result.status == IoStatus::done) {
      rest += result.bytes;
      size -= result.bytes;
      control_->channel().progressed();
      moved_ += result.bytes;
      if (told) told(start_ + moved_);
      limit.reset();
    } else if (result.status == IoStatus::wouldBlock) {
      waitForData(true, limit);
    } else {
      dataFailed(result.status);
    }
  }
}

void FtpTransfer::sendFile(platform::File& file, const Told& told) {
  requireRunning();
  const auto block = std::make_unique_for_overwrite<char[]>(platform::kSendBlock);
  for (;;) {
    const std::int64_t count = file.read(block.get(), platform::kSendBlock);
    if (count == 0) return;
    if (count < 0) {
      const std::uint32_t error = platform::lastError();
      abandon();
      fail(error);
    }
    send(block.get(), static_cast<std::size_t>(count), told);
  }
}

// --- Waiting ---

void FtpTransfer::requireRunning() const {
  if (state_ != State::running) fail(kConnectionAborted);
}

void FtpTransfer::waitForData(bool write, std::optional<DataLimit>& limit) {
  ControlChannel& channel = control_->channel();
  if (channel.replyReady()) watchControl();
  if (refused()) return;
  if (!limit) limit = dataLimit();
  std::array watched{data_->interest(!write, write),
                     final_ ? platform::SocketInterest{} : channel.readInterest()};
  if (!wait(watched, limit->deadline)) {
    // A large buffer of the system may have room only after a while, though the peer takes data all the time.
    if (write && limit->delivery.moved()) return limit.reset();
    breakData();
    channel.drop();
    fail(kTimeout);
  }
  if (watched[1].ready) watchControl();
}

FtpTransfer::DataLimit FtpTransfer::dataLimit() const {
  return {Deadline(control_->timeouts().data), DeliveryWatch(data_->socket())};
}

void FtpTransfer::watchControl() {
  if (final_ || !awaitFinal(milliseconds(0)) || !final_->refused()) return;
  // The caller judges a listing, with the rows that came before the refusal: some servers refuse what they
  // have nothing to list for only now.
  if (kind_ == Kind::listing) return;
  breakData();
  control_->raise(*final_);
}

bool FtpTransfer::awaitFinal(milliseconds limit) {
  const Deadline deadline(limit);
  while (!final_) {
    auto reply = control_->channel().tryReply(deadline.left());
    if (!reply) return false;
    takeReply(std::move(*reply));
  }
  return true;
}

void FtpTransfer::takeReply(FtpReply reply) {
  if (!reply.preliminary()) {
    final_ = std::move(reply);
  } else if (const auto size = parseAnnouncedSize(reply.text);
             size && kind_ == Kind::download && start_ == 0) {
    announced_ = size;
  }
}

// A final reply that came while data moved is reported by the call that ends the transfer, as any other is:
// from within Read and Write the host hears nothing.
void FtpTransfer::notifyFinal() {
  if (!std::exchange(finalNotified_, true)) control_->channel().notifyReply(*final_);
}

// Breaks the data connection off, never by an orderly end: a half upload must not look like a whole one, and
// a server that goes on sending into an end (inetutils-ftpd) is ended by the signal of a broken pipe.
void FtpTransfer::breakData() noexcept {
  state_ = State::failed;
  if (data_) data_->socket().abort();
  data_.reset();
}

void FtpTransfer::dataFailed(IoStatus status) {
  Failure failure = data_->failureOf(status);
  breakData();
  // The reply is taken here where there is one, so that the control connection stays in step.
  if (awaitFinal(control_->timeouts().dataError)) {
    if (final_->refused()) control_->raise(*final_);
  } else {
    control_->channel().drop();
  }
  throw failure;
}

}  // namespace internet
