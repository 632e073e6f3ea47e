// SPDX-License-Identifier: MIT
#include "framework/internet/ftp/FtpControl.h"

#include <algorithm>
#include <utility>

#include "framework/internet/ftp/FtpTransfer.h"
#include "framework/internet/ftp/ServerWords.h"
#include "framework/internet/net/InternetErrors.h"
#include "framework/platform/last_error.h"
#include "framework/text/HostText.h"

namespace internet {

namespace {

bool isControlByte(char c) noexcept {
  const auto byte = static_cast<unsigned char>(c);
  return byte < 0x20 || byte == 0x7f;
}

bool mayBeSent(std::string_view argument) noexcept {
  return !argument.empty() && argument.size() <= kMaxArgument &&
         std::none_of(argument.begin(), argument.end(), isControlByte);
}

// What a server in plain text tells of itself can come from anybody on the way.
std::string traitsKeyOf(const FtpLogin& login) {
  const char* const protection = login.tls.encryption == Encryption::none ? "" : "tls:";
  return protection + login.server + ':' + std::to_string(login.port) + ':' + login.user;
}

std::string lineOf(std::string_view verb, std::string_view argument) {
  std::string line(verb);
  if (!argument.empty()) line.append(1, ' ').append(argument);
  return line;
}

void learnPackets(LineWindow::Packets known, FtpTraits& traits) {
  using Packets = LineWindow::Packets;
  if (known == Packets::refused) traits.singleLines = true;
  if (known == Packets::taken || known == Packets::takenAtLogin) traits.takesPackets = true;
  if (known == Packets::takenAtLogin) traits.takesLoginPackets = true;
}

}  // namespace

FtpControl::FtpControl(std::shared_ptr<SessionLink> session, FtpLogin login)
    : session_(std::move(session)),
      login_(std::move(login)),
      traitsKey_(traitsKeyOf(login_)),
      channel_(session_),
      traits_(cachedTraits(traitsKey_)) {
  channel_.log().hide(login_.password.view());
  channel_.onPackets([this](LineWindow::Packets known) {
    learn([known](FtpTraits& traits) { learnPackets(known, traits); });
  });
}

FtpControl::~FtpControl() = default;

// --- Frame of a public operation ---

void FtpControl::request(const std::function<void()>& work) {
  admit();
  runFramed([&] {
    // Dead since an earlier operation, whatever that one was told.
    if (!isOpen()) fail(kConnectionAborted);
    runOverTls(work);
  });
}

void FtpControl::query(const std::function<void()>& work) {
  if (!reopens_) return request(work);
  admit();
  runFramed([&] {
    if (isOpen() && !findsClosed([&] { runOverTls(work); })) return;
    logInAgain();
    runOverTls(work);
  });
}

// Once more over TLS 1.2 where the server has refused the data connection of `work` for want of that.
void FtpControl::runOverTls(const std::function<void()>& work) {
  wantsTls12_ = false;
  try {
    work();
  } catch (const Failure&) {
    if (!wantsTls12_) throw;
  }
  if (!std::exchange(wantsTls12_, false)) return;
  channel_.quit();
  logInAgain();
  work();
}

bool FtpControl::mayWantOlderTls() const noexcept { return newestTls_ && !traits_.takesFreshTls; }

void FtpControl::freshTlsRefused(const FtpReply& reply) {
  if (!mayWantOlderTls() || (reply.code != 425 && reply.code != 522)) return;
  learn([](FtpTraits& traits) { traits.onlyTls12 = true; });
  wantsTls12_ = true;
}

void FtpControl::admit() const {
  if (closed_) fail(kIncorrectHandleState);
  if (busy_ || heldByFile_) fail(kTransferInProgress);
}

// Whether `work` came upon a connection that had been closed before it: no command has had an answer.
bool FtpControl::findsClosed(const std::function<void()>& work) {
  try {
    work();
    return false;
  } catch (const Failure& failure) {
    const bool closed = failure.error == kConnectionAborted || failure.error == kConnectionReset;
    if (isOpen() || channel_.answered() || !closed) throw;
    return true;
  }
}

void FtpControl::requestOfFile(const std::function<void()>& work) { runFramed(work); }

void FtpControl::runFramed(const std::function<void()>& work) {
  const auto self = shared_from_this();
  static_cast<void>(channel_.takeAnswered());
  channel_.progressed();
  busy_ = true;
  std::optional<Failure> failure;
  try {
    work();
  } catch (const Failure& thrown) {
    failure = forHost(thrown);
    if (!failure->serverText.empty()) lastServerText_ = failure->serverText;
  } catch (...) {
    leaveFrame(false);
    throw;
  }
  leaveFrame(!failure);
  if (channel_.takeAnswered()) channel_.notify(kStatusRequestComplete);
  if (failure) throw Failure(std::move(*failure));
}

void FtpControl::leaveFrame(bool inStep) noexcept {
  busy_ = false;
  if (!inStep && channel_.awaiting()) channel_.drop();
}

// --- Exchanges ---

FtpReply FtpControl::command(std::string_view verb, std::string_view argument) {
  sendCommand(verb, argument);
  return finalReply();
}

void FtpControl::sendCommand(std::string_view verb, std::string_view argument) {
  if (!argument.empty()) checkArgument(argument);
  channel_.send(lineOf(verb, argument));
}

bool FtpControl::foresee(std::string_view verb, std::string_view argument) {
  return (argument.empty() || mayBeSent(argument)) && channel_.foresee(lineOf(verb, argument));
}

void FtpControl::follow(std::string_view verb, std::string_view argument) {
  if (mayBeSent(argument)) channel_.follow(lineOf(verb, argument));
}

FtpReply FtpControl::require(std::string_view verb, std::string_view argument) {
  FtpReply reply = command(verb, argument);
  if (reply.refused()) raise(reply);
  return reply;
}

FtpReply FtpControl::listing(std::string_view verb, std::string_view argument,
                             const std::function<void(std::string_view)>& take,
                             const std::function<void()>& ended) {
  FtpTransfer transfer(shared_from_this(), FtpTransfer::Kind::listing);
  FtpReply first = transfer.begin(verb, argument);
  if (first.refused()) return first;
  const auto block = std::make_unique_for_overwrite<char[]>(kListingBlock);
  while (const std::size_t count = transfer.receive(block.get(), kListingBlock)) {
    if (transfer.moved() > kMaxListingBytes) {
      transfer.abandon();
      fail(kInvalidServerResponse);
    }
    take({block.get(), count});
  }
  return transfer.finish(ended);
}

void FtpControl::useBinary() {
  if (std::exchange(binary_, true)) return;
  channel_.queue("TYPE I", [this](const FtpReply& reply) { return binary_ = reply.completed(); });
}

// What the reply fills is shared with it: the command that it comes with may never be sent.
std::shared_ptr<const std::optional<std::uint64_t>> FtpControl::askSizeAlong(std::string_view path) {
  checkArgument(path);
  auto size = std::make_shared<std::optional<std::uint64_t>>();
  if (traits_.noSize) return size;
  channel_.queue(lineOf("SIZE", path), [this, size](const FtpReply& reply) {
    *size = parseSizeReply(reply);
    if (reply.unsupported()) learn([](FtpTraits& traits) { traits.noSize = true; });
    return true;
  });
  return size;
}

std::shared_ptr<const std::optional<std::string>> FtpControl::askTimeAlong(std::string_view path) {
  checkArgument(path);
  auto time = std::make_shared<std::optional<std::string>>();
  channel_.queue(lineOf("MDTM", path), [time](const FtpReply& reply) {
    *time = parseTimeReply(reply);
    return true;
  });
  return time;
}

void FtpControl::askTogether(std::span<const Question> questions) {
  if (questions.empty()) return;
  // What is kept back now must not go out over a connection that comes up later.
  if (!isOpen()) fail(kConnectionAborted);
  for (const Question& question : questions) checkArgument(question.argument);
  const Question& last = questions.back();
  for (const Question& question : questions.first(questions.size() - 1)) {
    channel_.queue(lineOf(question.verb, question.argument), [take = question.take](const FtpReply& reply) {
      take(reply);
      return true;
    });
  }
  last.take(command(last.verb, last.argument));
}

void FtpControl::raise(const FtpReply& reply) {
  switch (reply.code) {
    case 425:
      fail(kCannotConnect, reply.text);
    case 421:
    case 426:
      fail(kConnectionAborted, reply.text);
    default:
      fail(kExtendedError, reply.text);
  }
}

void FtpControl::checkArgument(std::string_view argument) {
  if (!mayBeSent(argument)) fail(platform::kErrorInvalidParameter);
}

FtpReply FtpControl::exchange(std::string_view line) {
  channel_.send(line);
  return finalReply();
}

FtpReply FtpControl::finalReply() {
  for (;;) {
    FtpReply reply = channel_.reply(timeouts().reply);
    if (!reply.preliminary()) return reply;
  }
}

// --- What is known of the server ---

FtpTraits FtpControl::traits() {
  if (!traits_.featuresKnown) traits_ = cachedTraits(traitsKey_);
  if (!traits_.featuresKnown) {
    const FtpReply reply = command("FEAT");
    learn([&reply](FtpTraits& traits) {
      traits.featuresKnown = true;
      readFeatures(reply.completed() ? reply.text : std::string(), traits);
    });
  }
  enableUtf8();
  return traits_;
}

void FtpControl::enableUtf8() {
  if (!traits_.speaksUtf8() || std::exchange(utf8Asked_, true)) return;
  // Whatever the server answers, its names are UTF-8.
  channel_.queue("OPTS UTF8 ON", [](const FtpReply&) { return true; });
}

bool FtpControl::speaksUtf8() {
  const FtpTraits known = traits();
  if (known.speaksUtf8() || known.utf8ByOption) return known.speaksUtf8();
  utf8Asked_ = true;
  const bool taken = command("OPTS", "UTF8 ON").code == 200;
  learn([taken](FtpTraits& traits) { traits.utf8ByOption = taken; });
  return taken;
}

// By what is known of the server: a failure is not the time to ask.
Failure FtpControl::forHost(const Failure& failure) const {
  if (!cachedTraits(traitsKey_).speaksUtf8()) return failure;
  Failure told = failure;
  told.serverText = hosttext::textForHost(failure.serverText, platform::narrowCodePage());
  return told;
}

void FtpControl::withdraw(bool FtpTraits::*feature) {
  learn([feature](FtpTraits& traits) { traits.*feature = false; });
}

void FtpControl::learn(const std::function<void(FtpTraits&)>& change) {
  changeCachedTraits(traitsKey_, change);
  change(traits_);
}

// --- The logical current directory ---

std::string FtpControl::currentDirectory() { return directory_ ? *directory_ : askDirectory(); }

std::string FtpControl::askDirectory() {
  const FtpReply reply = require("PWD");
  const auto path = parseQuotedPath(reply.text);
  if (reply.code != 257 || !path) fail(kExtendedError, reply.text);
  directory_ = path;
  return *path;
}

void FtpControl::changeDirectory(std::string_view path) {
  require("CWD", path);
  moved_ = true;
  directory_.reset();
  // An absolute name leads there again, whatever the server calls the place.
  if (path.starts_with('/')) directory_ = path;
}

std::optional<std::string> FtpControl::directoryForReturn() const {
  return moved_ ? directory_ : std::optional<std::string>("");
}

FtpReply FtpControl::DirectoryVisit::enter(std::string_view path) {
  if (control_.visitsOnce() && path.starts_with('/')) return control_.command("CWD", path);
  std::string wayBack = wayBack_.empty() ? "CWD " + control_.currentDirectory() : wayBack_;
  FtpReply reply = control_.command("CWD", path);
  if (reply.completed()) wayBack_ = std::move(wayBack);
  return reply;
}

bool FtpControl::DirectoryVisit::leave() {
  if (!wayBack_.empty() || control_.visitsOnce()) return true;
  try {
    wayBack_ = "CWD " + control_.currentDirectory();
  } catch (const Failure&) {
    if (!control_.isOpen()) throw;
  }
  return !wayBack_.empty();
}

FtpControl::DirectoryVisit::~DirectoryVisit() {
  if (wayBack_.empty()) return;
  ControlChannel& channel = control_.channel_;
  channel.sendAhead(wayBack_, [&channel](const FtpReply& reply) {
    // Relative names would go wrong from now on.
    if (!reply.completed()) channel.drop();
    return true;
  });
}

// --- State ---

bool FtpControl::waitIdle(std::chrono::milliseconds duration) {
  const auto self = shared_from_this();
  const bool ended = channel_.closedWhileIdle(duration);
  if (ended) channel_.reportClosed();
  return ended;
}

void FtpControl::close() noexcept {
  if (std::exchange(closed_, true)) return;
  const platform::LastErrorKeeper keeper;
  const auto self = shared_from_this();
  channel_.quit();
  channel_.reportEnd();
}

}  // namespace internet
