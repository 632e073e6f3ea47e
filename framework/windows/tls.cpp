// SPDX-License-Identifier: MIT
#include "framework/platform/tls.h"

#include <array>
#include <mutex>
#include <optional>
#include <shared_mutex>
#include <utility>

#include "framework/platform/tls_record.h"
#include "framework/windows/byte_window.h"
#include "framework/windows/system_tls.h"
#include "framework/windows/tls_context.h"

namespace platform {
namespace {

using Sharing = std::shared_lock<SystemTlsLock>;
using Alone = std::unique_lock<SystemTlsLock>;

// Names of cipher suites are ASCII.
std::string narrow(const wchar_t* text) {
  std::string result;
  for (; *text != L'\0'; ++text) result += static_cast<char>(*text);
  return result;
}

// What the system wants to have sent, in memory of its own.
class Answer {
 public:
  explicit Answer(const SystemTls& system) noexcept : system_(system) {}
  ~Answer() {
    for (const SecBuffer& buffer : buffers_) {
      if (buffer.pvBuffer) system_.security->FreeContextBuffer(buffer.pvBuffer);
    }
  }
  Answer(const Answer&) = delete;
  Answer& operator=(const Answer&) = delete;

  SecBufferDesc* description() noexcept { return &description_; }
  void appendTo(ByteWindow& window) {
    if (buffers_[0].pvBuffer) window.append(buffers_[0].pvBuffer, buffers_[0].cbBuffer);
  }

 private:
  const SystemTls& system_;
  std::array<SecBuffer, 2> buffers_{{{0, SECBUFFER_TOKEN, nullptr}, {0, SECBUFFER_ALERT, nullptr}}};
  SecBufferDesc description_{SECBUFFER_VERSION, 2, buffers_.data()};
};

// A call of the socket costs as much as many records: large blocks, where there is much.
constexpr std::size_t kFirstBlock = std::size_t{64} * 1024;
constexpr std::size_t kLargestBlock = std::size_t{1024} * 1024;
// What a server may send until the handshake has ended, without anything that could be worked on.
constexpr std::size_t kLargestFlight = std::size_t{256} * 1024;

class SystemStream final : public TlsStream {
 public:
  SystemStream(std::shared_ptr<SystemContext> context, Socket& socket) noexcept
      : context_(std::move(context)), security_(*context_->system().security), socket_(socket) {}
  ~SystemStream() override {
    const Alone lock(systemTlsLock());
    if (begun_) security_.DeleteSecurityContext(&handle_);
  }
  SystemStream(const SystemStream&) = delete;
  SystemStream& operator=(const SystemStream&) = delete;

  IoStatus handshake() noexcept override {
    for (;;) {
      const IoStatus flushed = flush();
      if (failed_) return IoStatus::failed;  // the peer may still be told why
      if (flushed != IoStatus::done) return flushed;
      if (open_) return IoStatus::done;
      const IoStatus fed = wantsInput_ ? feed() : IoStatus::done;
      if (fed != IoStatus::done) return fed;
      negotiate();
    }
  }

  IoResult receive(void* buffer, std::size_t size) noexcept override {
    // An answer to what the server said behind the handshake may be waiting.
    if (wantsWrite()) static_cast<void>(flush());
    std::size_t got = 0;
    // Records without content must not keep the caller from its own waits.
    for (int feeds = 0; feeds < kMostFeeds;) {
      got += takePlain(static_cast<char*>(buffer) + got, size - got);
      if (got == size) return {IoStatus::done, got};
      if (!ended_ && !failed_ && openRecord()) continue;
      if (got > 0) return {IoStatus::done, got};
      if (ended_) return {IoStatus::closed, 0};
      if (failed_) return {IoStatus::failed, 0};
      const IoStatus fed = feed();
      // Only the peer's word ends a stream in good order.
      if (fed != IoStatus::done) return {fed == IoStatus::closed ? IoStatus::reset : fed, 0};
      ++feeds;
    }
    return {IoStatus::wouldBlock, 0};
  }

  IoResult send(const void* data, std::size_t size) noexcept override {
    const IoStatus before = flush();
    if (before != IoStatus::done) return {before, 0};
    const auto* bytes = static_cast<const char*>(data);
    std::size_t taken = 0;
    while (taken < size && out_.size() < kLargestBlock) {
      const std::size_t count = std::min<std::size_t>(size - taken, sizes_.cbMaximumMessage);
      if (!seal(bytes + taken, count)) return {IoStatus::failed, 0};
      taken += count;
    }
    const IoStatus after = flush();
    if (after != IoStatus::done && after != IoStatus::wouldBlock) return {after, 0};
    return {IoStatus::done, taken};
  }

  IoStatus flush() noexcept override { return out_.drainInto(socket_); }

  IoStatus sayClosed() noexcept override {
    if (open_ && !failed_ && !std::exchange(saidClosed_, true)) queueClosing();
    return flush();
  }

  [[nodiscard]] bool wantsWrite() const noexcept override { return !out_.empty(); }

  [[nodiscard]] TlsPeer peer() const override {
    TlsPeer peer;
    PCCERT_CONTEXT certificate = nullptr;
    if (!query(SECPKG_ATTR_REMOTE_CERT_CONTEXT, &certificate) || !certificate) return peer;
    peer.certificate.assign(certificate->pbCertEncoded,
                            certificate->pbCertEncoded + certificate->cbCertEncoded);
    peer.trust = context_->judge(certificate);
    context_->system().freeCertificate(certificate);
    return peer;
  }

  [[nodiscard]] std::string description() const override {
    SecPkgContext_CipherInfo cipher{};
    cipher.dwVersion = SECPKGCONTEXT_CIPHERINFO_V1;
    SecPkgContext_SessionInfo session{};
    std::string text = isTls13() ? "TLS 1.3" : "TLS 1.2";
    if (query(SECPKG_ATTR_CIPHER_INFO, &cipher)) text += ", " + narrow(cipher.szCipherSuite);
    const bool asked = query(SECPKG_ATTR_SESSION_INFO, &session);
    if (asked && (session.dwFlags & SSL_SESSION_RECONNECT) != 0) text += ", resumed";
    return text;
  }

  [[nodiscard]] Fault fault() const override { return fault_; }

 private:
  static constexpr int kMostFeeds = 16;
  static constexpr DWORD kWish = ISC_REQ_SEQUENCE_DETECT | ISC_REQ_REPLAY_DETECT | ISC_REQ_CONFIDENTIALITY |
                                 ISC_REQ_EXTENDED_ERROR | ISC_REQ_ALLOCATE_MEMORY | ISC_REQ_STREAM |
                                 ISC_REQ_MANUAL_CRED_VALIDATION;

  bool query(ULONG attribute, void* answer) const noexcept {
    const Sharing lock(systemTlsLock());
    return security_.QueryContextAttributesW(&handle_, attribute, answer) == SEC_E_OK;
  }

  [[nodiscard]] bool speaks(DWORD versions) const noexcept {
    SecPkgContext_ConnectionInfo connection{};
    return query(SECPKG_ATTR_CONNECTION_INFO, &connection) && (connection.dwProtocol & versions) != 0;
  }
  [[nodiscard]] bool isTls13() const noexcept { return speaks(SP_PROT_TLS1_3_CLIENT); }

  [[nodiscard]] TlsBytes received() noexcept {
    return {reinterpret_cast<const unsigned char*>(in_.data()), in_.size()};
  }

  // By what the system has made of what came last. A refusal behind the handshake is encrypted.
  void fail(SECURITY_STATUS status) {
    const std::string alert = open_ ? std::string() : alertText(received());
    const bool turnedAway = open_ || !alert.empty();
    failed_ = true;
    fault_.wantsClientCertificate = turnedAway && (asked_ || watch_.certificateAsked());
    fault_.text = alert.empty() ? systemTlsText(status) : "the server refuses: " + alert;
  }
  void failAs(const char* text) {
    failed_ = true;
    fault_.text = text;
  }

  // The blocks grow with a peer that fills them.
  IoStatus feed() noexcept {
    const std::size_t before = in_.size();
    const IoStatus fed = in_.fillFrom(socket_, block_);
    if (in_.size() - before == block_) block_ = kLargestBlock;
    return fed;
  }

  // Whether the system can be given something; without a record that is whole nothing of it is.
  bool recordReady(std::size_t& size) {
    const auto found = recordSize(received());
    if (!found) failAs("what the server has sent is no TLS");
    size = found.value_or(0);
    return size > 0;
  }

  // A step of the handshake, or of what the server has to say about it later.
  void negotiate() {
    std::size_t record = 0;
    wantsInput_ = begun_ && !recordReady(record);
    if (wantsInput_) return;
    Answer answer(context_->system());
    std::array<SecBuffer, 2> given{
        {{static_cast<ULONG>(in_.size()), SECBUFFER_TOKEN, in_.data()}, {0, SECBUFFER_EMPTY, nullptr}}};
    const SECURITY_STATUS status = begun_ ? proceed(given, answer) : begin(answer);
    answer.appendTo(out_);
    const std::size_t left = given[1].BufferType == SECBUFFER_EXTRA ? given[1].cbBuffer : 0;
    judge(status, in_.size() - left);
  }

  SECURITY_STATUS begin(Answer& answer) noexcept {
    const Alone lock(systemTlsLock());
    const SECURITY_STATUS status = initialize(nullptr, nullptr, answer.description());
    begun_ = status >= 0;
    return status;
  }
  SECURITY_STATUS proceed(std::array<SecBuffer, 2>& given, Answer& answer) noexcept {
    SecBufferDesc input{SECBUFFER_VERSION, 2, given.data()};
    const Sharing lock(systemTlsLock());
    return initialize(&handle_, &input, answer.description());
  }
  SECURITY_STATUS initialize(CtxtHandle* handle, SecBufferDesc* input, SecBufferDesc* output) noexcept {
    const ULONG wish = kWish | (asked_ ? ISC_REQ_USE_SUPPLIED_CREDS : 0);
    ULONG granted = 0;
    TimeStamp expiry{};
    return security_.InitializeSecurityContextW(context_->credential(), handle, context_->server(), wish, 0,
                                                0, input, 0, &handle_, output, &granted, &expiry);
  }

  void judge(SECURITY_STATUS status, std::size_t used) {
    switch (status) {
      case SEC_E_OK:
      case SEC_I_CONTINUE_NEEDED:
        watch_.look(received().first(used));
        in_.drop(used);
        negotiating_ = status != SEC_E_OK;
        wantsInput_ = in_.empty();
        if (!negotiating_ && !open_) finish();
        break;
      case SEC_E_INCOMPLETE_MESSAGE:
        wantsInput_ = true;
        if (in_.size() > kLargestFlight) fail(status);
        break;
      case SEC_I_INCOMPLETE_CREDENTIALS:
        // The server asks for a certificate; some do with none. The same bytes once more say so.
        if (std::exchange(asked_, true)) fail(status);
        break;
      default:
        fail(status);
    }
  }

  void finish() {
    open_ = query(SECPKG_ATTR_STREAM_SIZES, &sizes_);
    if (!open_) fail(SEC_E_INTERNAL_ERROR);
    // Where TLS 1.3 is wanted, too, Wine takes whatever the server has.
    if (open_ && !speaks(SP_PROT_TLS1_2_CLIENT | SP_PROT_TLS1_3_CLIENT)) {
      failAs("the server speaks neither TLS 1.2 nor 1.3");
    }
  }

  std::size_t takePlain(char* buffer, std::size_t size) noexcept {
    const std::size_t count = std::min(size, plainSize_);
    if (count == 0) return 0;
    std::memcpy(buffer, plain_, count);
    plain_ += count;
    plainSize_ -= count;
    return count;
  }

  // Decrypts the next record in its place. False when there is none, and at the end of the stream.
  bool openRecord() {
    if (negotiating_) {
      negotiate();
      return !failed_ && !wantsInput_;
    }
    std::size_t size = 0;
    if (!recordReady(size)) return false;
    const auto kind = static_cast<RecordKind>(*in_.data());
    std::array<SecBuffer, 4> buffers{{{static_cast<ULONG>(size), SECBUFFER_DATA, in_.data()}, {}, {}, {}}};
    const SECURITY_STATUS status = decrypt(buffers);
    for (const SecBuffer& buffer : buffers) {
      if (buffer.BufferType == SECBUFFER_EXTRA) size -= buffer.cbBuffer;
      if (buffer.BufferType == SECBUFFER_DATA) plain_ = static_cast<char*>(buffer.pvBuffer);
      if (buffer.BufferType == SECBUFFER_DATA) plainSize_ = buffer.cbBuffer;
    }
    if (status != SEC_E_OK) plainSize_ = 0;
    in_.drop(size);
    takeNote(status, kind);
    return !ended_ && !failed_;
  }
  SECURITY_STATUS decrypt(std::array<SecBuffer, 4>& buffers) noexcept {
    SecBufferDesc description{SECBUFFER_VERSION, 4, buffers.data()};
    const Sharing lock(systemTlsLock());
    return security_.DecryptMessage(&handle_, &description, 0, nullptr);
  }

  void takeNote(SECURITY_STATUS status, RecordKind kind) {
    switch (status) {
      case SEC_E_OK:
        // The peer's last word, in Wine's way.
        ended_ = kind == RecordKind::alert && plainSize_ == 0;
        break;
      case SEC_I_CONTEXT_EXPIRED:
        ended_ = true;
        break;
      case SEC_I_RENEGOTIATE:
        // The system's name, too, for what TLS 1.3 servers send behind the handshake: tickets and new keys.
        negotiating_ = isTls13();
        if (!negotiating_) refuseToNegotiate();
        break;
      default:
        fail(status);
    }
  }

  // A second handshake could lead to somebody else. The server waits for an answer.
  void refuseToNegotiate() {
    static_cast<void>(sayClosed());
    failAs("the server wants to negotiate anew");
  }

  bool seal(const char* bytes, std::size_t count) {
    char* header = out_.room(sizes_.cbHeader + count + sizes_.cbTrailer);
    char* content = header + sizes_.cbHeader;
    std::memcpy(content, bytes, count);
    std::array<SecBuffer, 4> buffers{{{sizes_.cbHeader, SECBUFFER_STREAM_HEADER, header},
                                      {static_cast<ULONG>(count), SECBUFFER_DATA, content},
                                      {sizes_.cbTrailer, SECBUFFER_STREAM_TRAILER, content + count},
                                      {0, SECBUFFER_EMPTY, nullptr}}};
    SecBufferDesc description{SECBUFFER_VERSION, 4, buffers.data()};
    const Sharing lock(systemTlsLock());
    const SECURITY_STATUS status = security_.EncryptMessage(&handle_, 0, &description, 0);
    if (status != SEC_E_OK) fail(status);
    if (failed_) return false;
    out_.grown(std::size_t{buffers[0].cbBuffer} + buffers[1].cbBuffer + buffers[2].cbBuffer);
    return true;
  }

  void queueClosing() {
    DWORD token = SCHANNEL_SHUTDOWN;
    SecBuffer buffer{sizeof token, SECBUFFER_TOKEN, &token};
    SecBufferDesc order{SECBUFFER_VERSION, 1, &buffer};
    Answer answer(context_->system());
    {
      const Sharing lock(systemTlsLock());
      security_.ApplyControlToken(&handle_, &order);
      initialize(&handle_, nullptr, answer.description());
    }
    answer.appendTo(out_);
  }

  std::shared_ptr<SystemContext> context_;
  const SecurityFunctionTableW& security_;
  Socket& socket_;
  mutable CtxtHandle handle_{};
  bool begun_ = false;
  bool open_ = false;         // the handshake has ended
  bool negotiating_ = false;  // once more, behind the handshake
  bool wantsInput_ = false;   // for that, or for the handshake
  bool asked_ = false;        // for a certificate of ours
  bool saidClosed_ = false;
  bool ended_ = false;  // by the peer's word
  bool failed_ = false;
  HandshakeWatch watch_;
  Fault fault_;
  SecPkgContext_StreamSizes sizes_{};
  ByteWindow in_;
  ByteWindow out_;
  std::size_t block_ = kFirstBlock;
  const char* plain_ = nullptr;  // decrypted, in a place of in_ that was dropped
  std::size_t plainSize_ = 0;
};

}  // namespace

std::unique_ptr<TlsStream> makeTlsStream(std::shared_ptr<TlsContext> context, Socket& socket, TlsUse) {
  return std::make_unique<SystemStream>(std::static_pointer_cast<SystemContext>(std::move(context)), socket);
}

std::vector<unsigned char> sha256(const void* data, std::size_t size) {
  std::vector<unsigned char> digest(32);
  auto length = static_cast<DWORD>(digest.size());
  const SystemTls* system = systemTls();
  const bool hashed = system && system->hash(L"SHA256", 0, nullptr, static_cast<const BYTE*>(data),
                                             static_cast<DWORD>(size), digest.data(), &length) != FALSE;
  if (!hashed) digest.clear();
  return digest;
}

}  // namespace platform
