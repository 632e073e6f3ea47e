// SPDX-License-Identifier: MIT
#include "framework/platform/tls.h"

#include <arpa/inet.h>
#include <netinet/in.h>

#include <algorithm>
#include <climits>
#include <mutex>
#include <optional>
#include <string_view>
#include <utility>

#include "framework/posix/certificate_chain.h"
#include "framework/posix/openssl_api.h"

namespace platform {
namespace {

using namespace openssl;

// As few calls to the system as for plain bytes.
constexpr std::size_t kDataBlock = std::size_t{256} * 1024;
constexpr std::size_t kControlBlock = std::size_t{20} * 1024;  // one record
// A peer that reads nothing but makes us answer gets no further with it.
constexpr std::size_t kMostUnsent = std::size_t{2} * kDataBlock;

bool isAddress(const std::string& server) noexcept {
  in6_addr address{};
  return ::inet_pton(AF_INET, server.c_str(), &address) == 1 ||
         ::inet_pton(AF_INET6, server.substr(0, server.find('%')).c_str(), &address) == 1;
}

// DER of an object by OpenSSL's function for its kind.
template <class Object>
std::vector<unsigned char> derOf(int (*write)(const Object*, unsigned char**), const Object* object) {
  const int size = write(object, nullptr);
  if (size <= 0) return {};
  std::vector<unsigned char> der(static_cast<std::size_t>(size));
  unsigned char* end = der.data();
  write(object, &end);
  return der;
}

// What OpenSSL calls; defined below the stream that it is for.
int readSocket(Bio* bio, char* buffer, int size) noexcept;
int writeSocket(Bio* bio, const char* data, int size) noexcept;
long controlSocket(Bio* bio, int command, long number, void* pointer) noexcept;
int keepSession(Ssl* ssl, Session* session) noexcept;
int noteRequest(Ssl* ssl, void** certificate, void** key) noexcept;

// What all logins have in common: the system's authorities, and OpenSSL's way to a socket.
class Client {
 public:
  explicit Client(const Api& library) noexcept
      : api(library),
        context(api.SSL_CTX_new(api.TLS_client_method())),
        method(api.BIO_meth_new(kBioSourceSink, "socket")) {
    if (!usable()) return;
    api.SSL_CTX_ctrl(context, kControlLeastVersion, kTls12, nullptr);
    api.SSL_CTX_ctrl(context, kControlMode, kModes, nullptr);
    api.SSL_CTX_ctrl(context, kControlReadAhead, 1, nullptr);
    api.SSL_CTX_ctrl(context, kControlSessionCache, kCacheClientOutside, nullptr);
    api.SSL_CTX_set_options(context, kNoCompression | kNoRenegotiation);
    judgeChains(api, context);
    api.SSL_CTX_sess_set_new_cb(context, &keepSession);
    api.SSL_CTX_set_client_cert_cb(context, &noteRequest);
    api.BIO_meth_set_read(method, &readSocket);
    api.BIO_meth_set_write(method, &writeSocket);
    api.BIO_meth_set_ctrl(method, &controlSocket);
  }
  ~Client() {
    api.SSL_CTX_free(context);
    api.BIO_meth_free(method);
  }
  Client(const Client&) = delete;
  Client& operator=(const Client&) = delete;

  [[nodiscard]] bool usable() const noexcept { return context && method; }

  const Api& api;
  Context* const context;
  BioMethod* const method;
};

// Made once: the file that some systems keep their authorities in takes milliseconds to read.
std::shared_ptr<const Client> client() {
  static const std::shared_ptr<const Client> theClient = [] {
    const Api* const library = api();
    auto made = library ? std::make_shared<const Client>(*library) : nullptr;
    return made && made->usable() ? made : nullptr;
  }();
  return theClient;
}

class Login : public TlsContext {
 public:
  Login(std::shared_ptr<const Client> client, TlsSettings settings)
      : client_(std::move(client)), settings_(std::move(settings)) {
    if (settings_.server.ends_with('.')) settings_.server.pop_back();
    if (isAddress(settings_.server)) settings_.server.clear();
  }

  [[nodiscard]] const Client& client() const noexcept { return *client_; }
  [[nodiscard]] const Api& api() const noexcept { return client_->api; }
  [[nodiscard]] const TlsSettings& settings() const noexcept { return settings_; }

  void keep(const Session* session) {
    auto der = derOf(api().i2d_SSL_SESSION, session);
    const std::lock_guard lock(mutex_);
    session_ = std::move(der);
  }

  // A copy for each connection: of a session object that was used for one OpenSSL makes no further use, and
  // servers refuse what descends from another session than the control connection's.
  void resumeOn(Ssl* ssl) const {
    const std::lock_guard lock(mutex_);
    const unsigned char* der = session_.data();
    Session* const copy =
        der ? api().d2i_SSL_SESSION(nullptr, &der, static_cast<long>(session_.size())) : nullptr;
    if (!copy) return;
    api().SSL_set_session(ssl, copy);
    api().SSL_SESSION_free(copy);
  }

 private:
  const std::shared_ptr<const Client> client_;
  TlsSettings settings_;
  mutable std::mutex mutex_;
  std::vector<unsigned char> session_;  // DER of the control connection's newest; guarded by mutex_
};

class Stream : public TlsStream {
 public:
  Stream(std::shared_ptr<Login> login, Socket& socket, TlsUse use)
      : login_(std::move(login)), api_(login_->api()), socket_(socket), use_(use) {
    const Client& client = login_->client();
    ssl_ = api_.SSL_new(client.context);
    Bio* const bio = ssl_ ? api_.BIO_new(client.method) : nullptr;
    if (!bio) {
      api_.SSL_free(ssl_);
      throw std::bad_alloc();
    }
    api_.BIO_set_data(bio, this);
    api_.SSL_set_bio(ssl_, bio, bio);
    api_.SSL_set_ex_data(ssl_, 0, this);
    api_.SSL_set_connect_state(ssl_);
    api_.SSL_set_default_read_buffer_len(ssl_, use == TlsUse::data ? kDataBlock : kControlBlock);
    std::string server = login_->settings().server;
    if (!server.empty()) api_.SSL_ctrl(ssl_, kControlServerName, kHostName, server.data());
    if (login_->settings().onlyTls12) api_.SSL_ctrl(ssl_, kControlNewestVersion, kTls12, nullptr);
    if (use == TlsUse::data) login_->resumeOn(ssl_);
  }
  ~Stream() override { api_.SSL_free(ssl_); }
  Stream(const Stream&) = delete;
  Stream& operator=(const Stream&) = delete;

  IoStatus handshake() noexcept override {
    IoStatus status = shakeHands();
    const IoStatus sent = flush();
    if (status == IoStatus::done) return sent;
    if (status != IoStatus::wouldBlock || sent == IoStatus::done || sent == IoStatus::wouldBlock)
      return status;
    // A peer that refuses us has gone; why may just have come.
    status = shakeHands();
    return status == IoStatus::wouldBlock ? sent : status;
  }

  IoResult receive(void* buffer, std::size_t size) noexcept override {
    std::size_t got = 0;
    if (!ended_) static_cast<void>(flush());  // what the peer waits for, perhaps
    while (got < size && !ended_) {
      const int count = run(api_.SSL_read, static_cast<char*>(buffer) + got, chunk(size - got));
      if (count <= 0) {
        const IoStatus status = statusOf(count);
        if (status == IoStatus::wouldBlock) break;
        // An end that the peer did not announce may be anybody's.
        ended_ = status == IoStatus::closed && !announced_ ? IoStatus::reset : status;
        static_cast<void>(flush());  // our alert
        break;
      }
      got += static_cast<std::size_t>(count);
    }
    if (got > 0 || size == 0) return {IoStatus::done, got};
    return {ended_.value_or(IoStatus::wouldBlock), 0};
  }

  IoResult send(const void* data, std::size_t size) noexcept override {
    const IoStatus before = flush();
    if (before != IoStatus::done) return {before, 0};
    std::size_t taken = 0;
    while (taken < size && unsent() < kDataBlock) {
      const int count = run(api_.SSL_write, static_cast<const char*>(data) + taken, chunk(size - taken));
      if (count <= 0) {
        if (taken == 0) return {statusOf(count), 0};
        break;
      }
      taken += static_cast<std::size_t>(count);
    }
    const IoStatus after = flush();
    if (after != IoStatus::done && after != IoStatus::wouldBlock) return {after, 0};
    return {IoStatus::done, taken};
  }

  IoStatus flush() noexcept override {
    while (begin_ < out_.size()) {
      const IoResult sent = socket_.send(out_.data() + begin_, out_.size() - begin_);
      if (sent.status != IoStatus::done) return sent.status;
      begin_ += sent.bytes;
    }
    out_.clear();
    begin_ = 0;
    return IoStatus::done;
  }

  IoStatus sayClosed() noexcept override {
    if (!std::exchange(saidClosed_, true) && ended_.value_or(IoStatus::closed) == IoStatus::closed) {
      static_cast<void>(run(api_.SSL_shutdown));
    }
    return flush();
  }

  bool wantsWrite() const noexcept override { return unsent() > 0; }

  TlsPeer peer() const override {
    TlsPeer peer;
    const std::unique_ptr<Certificate, void (*)(Certificate*)> shown(api_.SSL_get1_peer_certificate(ssl_),
                                                                     api_.X509_free);
    if (!shown) return peer;
    const long verdict = api_.SSL_get_verify_result(ssl_);
    peer.certificate = derOf(api_.i2d_X509, shown.get());
    peer.trust = trustOf(verdict);
    if (peer.trust != TlsTrust::trusted) peer.text = api_.X509_verify_cert_error_string(verdict);
    return peer;
  }

  std::string description() const override {
    std::string_view version = api_.SSL_get_version(ssl_);  // "TLSv1.3"
    version.remove_prefix(std::min(version.size(), std::string_view("TLSv").size()));
    std::string text = "TLS " + std::string(version);
    const Cipher* const cipher = api_.SSL_get_current_cipher(ssl_);
    if (const char* const name = cipher ? api_.SSL_CIPHER_standard_name(cipher) : nullptr) {
      text += std::string(", ") + name;
    }
    if (api_.SSL_session_reused(ssl_) == 1) text += ", resumed";
    return text;
  }

  Fault fault() const override { return fault_; }

  // For OpenSSL.
  IoResult fill(char* buffer, std::size_t size) noexcept {
    const IoResult came = socket_.receive(buffer, size);
    incoming_ = came.status;
    return came;
  }
  IoStatus queue(const char* data, std::size_t size) noexcept {
    if (unsent() >= kMostUnsent) return IoStatus::wouldBlock;
    try {
      if (begin_ >= kDataBlock) {
        out_.erase(out_.begin(), out_.begin() + static_cast<std::ptrdiff_t>(std::exchange(begin_, 0)));
      }
      out_.insert(out_.end(), data, data + size);
      return IoStatus::done;
    } catch (const std::bad_alloc&) {
      return IoStatus::failed;
    }
  }
  void keep(const Session* session) noexcept {
    if (use_ == TlsUse::control) login_->keep(session);
  }
  void noteRequest() noexcept { certificateWanted_ = true; }

 private:
  static int chunk(std::size_t size) noexcept {
    return static_cast<int>(std::min<std::size_t>(size, INT_MAX));
  }

  [[nodiscard]] std::size_t unsent() const noexcept { return out_.size() - begin_; }

  // What an earlier call has left in the thread's list of errors would be taken for this one's.
  template <class... Parameters, class... Arguments>
  int run(int (*function)(Ssl*, Parameters...), Arguments... arguments) noexcept {
    api_.ERR_clear_error();
    return function(ssl_, arguments...);
  }

  IoStatus shakeHands() noexcept {
    const int result = run(api_.SSL_do_handshake);
    return result == 1 ? IoStatus::done : statusOf(result);
  }

  // Why a call of OpenSSL has not done its work.
  IoStatus statusOf(int result) noexcept {
    switch (api_.SSL_get_error(ssl_, result)) {
      case kErrorWantRead:
      case kErrorWantWrite:
        return IoStatus::wouldBlock;
      case kErrorZeroReturn:
        announced_ = true;
        return IoStatus::closed;
      default:
        break;
    }
    const unsigned long code = api_.ERR_get_error();
    api_.ERR_clear_error();  // the host may use OpenSSL, too, and look for faults of its own on this thread
    if (incoming_ != IoStatus::done && incoming_ != IoStatus::wouldBlock) return incoming_;
    noteFault(code);
    return IoStatus::failed;
  }

  void noteFault(unsigned long code) noexcept {
    if (!fault_.text.empty()) return;
    const char* const words = api_.ERR_reason_error_string(code);
    fault_.text = words ? words : "";
    fault_.wantsClientCertificate = certificateWanted_ && refusesUs((code & kReason) - kAlert);
  }

  // Alerts of servers that found no certificate, or none that they like.
  static bool refusesUs(unsigned long alert) noexcept {
    constexpr unsigned long kHandshakeFailure = 40, kBadCertificate = 42, kCertificateUnknown = 46,
                            kAccessDenied = 49, kCertificateRequired = 116;
    return alert == kHandshakeFailure || alert == kBadCertificate || alert == kCertificateUnknown ||
           alert == kAccessDenied || alert == kCertificateRequired;
  }

  const std::shared_ptr<Login> login_;
  const Api& api_;
  Socket& socket_;
  const TlsUse use_;
  Ssl* ssl_ = nullptr;
  // Records of ours that the socket has not taken yet, from begin_ on.
  std::vector<char> out_;
  std::size_t begin_ = 0;
  IoStatus incoming_ = IoStatus::done;  // of the socket, when it was last read
  std::optional<IoStatus> ended_;       // how the peer's stream has ended
  bool announced_ = false;              // by the peer
  bool saidClosed_ = false;
  bool certificateWanted_ = false;
  Fault fault_;
};

Stream& streamOf(const Api& library, Bio* bio) noexcept {
  return *static_cast<Stream*>(library.BIO_get_data(bio));
}

// The result of a call for `bio` that may have to be made again: OpenSSL's count, or -1.
int answered(const Api& library, Bio* bio, IoStatus status, std::size_t bytes, int direction) noexcept {
  library.BIO_clear_flags(bio, kBioRead | kBioWrite | kBioShouldRetry);
  if (status == IoStatus::done) return static_cast<int>(bytes);
  if (status == IoStatus::wouldBlock) library.BIO_set_flags(bio, direction | kBioShouldRetry);
  return status == IoStatus::closed ? 0 : -1;
}

int readSocket(Bio* bio, char* buffer, int size) noexcept {
  const Api& library = *api();
  const IoResult came = streamOf(library, bio).fill(buffer, static_cast<std::size_t>(size));
  return answered(library, bio, came.status, came.bytes, kBioRead);
}

int writeSocket(Bio* bio, const char* data, int size) noexcept {
  const Api& library = *api();
  const auto bytes = static_cast<std::size_t>(size);
  return answered(library, bio, streamOf(library, bio).queue(data, bytes), bytes, kBioWrite);
}

long controlSocket(Bio*, int command, long, void*) noexcept { return command == kBioFlush ? 1 : 0; }

Stream& streamOf(const Ssl* ssl) noexcept { return *static_cast<Stream*>(api()->SSL_get_ex_data(ssl, 0)); }

int keepSession(Ssl* ssl, Session* session) noexcept {
  streamOf(ssl).keep(session);
  return 0;  // the session object stays OpenSSL's
}

int noteRequest(Ssl* ssl, void**, void**) noexcept {
  streamOf(ssl).noteRequest();
  return 0;  // there is none
}

}  // namespace

std::shared_ptr<TlsContext> makeTlsContext(const TlsSettings& settings, std::string& reason) {
  if (auto shared = client()) return std::make_shared<Login>(std::move(shared), settings);
  reason = "no TLS library on this system";
  return nullptr;
}

std::unique_ptr<TlsStream> makeTlsStream(std::shared_ptr<TlsContext> context, Socket& socket, TlsUse use) {
  return std::make_unique<Stream>(std::static_pointer_cast<Login>(std::move(context)), socket, use);
}

std::vector<unsigned char> sha256(const void* data, std::size_t size) {
  constexpr std::size_t kSize = 32;
  const Api* const library = api();
  std::vector<unsigned char> digest(kSize);
  if (!library ||
      library->EVP_Digest(data, size, digest.data(), nullptr, library->EVP_sha256(), nullptr) != 1) {
    digest.clear();
  }
  return digest;
}

}  // namespace platform
