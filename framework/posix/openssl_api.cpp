// SPDX-License-Identifier: MIT
#include "framework/posix/openssl_api.h"

#include <dlfcn.h>

#include <optional>

namespace platform::openssl {
namespace {

class Library {
 public:
  explicit Library(void* handle) noexcept : handle_(handle) {}

  // Notes it where a function is missing. Those of libcrypto are found behind libssl, which needs it.
  template <class Function>
  Library& find(const char* name, Function& function) noexcept {
    function = reinterpret_cast<Function>(::dlsym(handle_, name));
    whole_ = whole_ && function != nullptr;
    return *this;
  }

  template <class Function>
  Library& find(const char* name, const char* oldName, Function& function) noexcept {
    const char* const known = ::dlsym(handle_, name) ? name : oldName;
    return find(known, function);
  }

  [[nodiscard]] bool whole() const noexcept { return whole_; }

 private:
  void* handle_;
  bool whole_ = true;
};

void findStreams(Library& library, Api& api) noexcept {
  library.find("OPENSSL_init_ssl", api.OPENSSL_init_ssl)
      .find("TLS_client_method", api.TLS_client_method)
      .find("SSL_CTX_new", api.SSL_CTX_new)
      .find("SSL_CTX_free", api.SSL_CTX_free)
      .find("SSL_CTX_ctrl", api.SSL_CTX_ctrl)
      .find("SSL_CTX_set_options", api.SSL_CTX_set_options)
      .find("SSL_CTX_set_verify", api.SSL_CTX_set_verify)
      .find("SSL_CTX_set_default_verify_paths", api.SSL_CTX_set_default_verify_paths)
      .find("SSL_CTX_get_cert_store", api.SSL_CTX_get_cert_store)
      .find("SSL_CTX_sess_set_new_cb", api.SSL_CTX_sess_set_new_cb)
      .find("SSL_CTX_set_client_cert_cb", api.SSL_CTX_set_client_cert_cb)
      .find("SSL_new", api.SSL_new)
      .find("SSL_free", api.SSL_free)
      .find("SSL_ctrl", api.SSL_ctrl)
      .find("SSL_set_bio", api.SSL_set_bio)
      .find("SSL_set_ex_data", api.SSL_set_ex_data)
      .find("SSL_get_ex_data", api.SSL_get_ex_data)
      .find("SSL_set_default_read_buffer_len", api.SSL_set_default_read_buffer_len)
      .find("SSL_set_connect_state", api.SSL_set_connect_state)
      .find("SSL_do_handshake", api.SSL_do_handshake)
      .find("SSL_read", api.SSL_read)
      .find("SSL_write", api.SSL_write)
      .find("SSL_shutdown", api.SSL_shutdown)
      .find("SSL_get_error", api.SSL_get_error);
}

void findDescriptions(Library& library, Api& api) noexcept {
  library.find("SSL_get_verify_result", api.SSL_get_verify_result)
      .find("SSL_get1_peer_certificate", "SSL_get_peer_certificate", api.SSL_get1_peer_certificate)
      .find("SSL_get_version", api.SSL_get_version)
      .find("SSL_get_current_cipher", api.SSL_get_current_cipher)
      .find("SSL_CIPHER_standard_name", api.SSL_CIPHER_standard_name)
      .find("SSL_session_reused", api.SSL_session_reused)
      .find("SSL_set_session", api.SSL_set_session)
      .find("SSL_SESSION_free", api.SSL_SESSION_free)
      .find("i2d_SSL_SESSION", api.i2d_SSL_SESSION)
      .find("d2i_SSL_SESSION", api.d2i_SSL_SESSION);
}

void findBasics(Library& library, Api& api) noexcept {
  library.find("i2d_X509", api.i2d_X509)
      .find("X509_free", api.X509_free)
      .find("X509_verify_cert_error_string", api.X509_verify_cert_error_string)
      .find("X509_STORE_set_flags", api.X509_STORE_set_flags)
      .find("X509_STORE_CTX_get_error", api.X509_STORE_CTX_get_error)
      .find("X509_STORE_CTX_set_error", api.X509_STORE_CTX_set_error)
      .find("BIO_meth_new", api.BIO_meth_new)
      .find("BIO_meth_free", api.BIO_meth_free)
      .find("BIO_meth_set_read", api.BIO_meth_set_read)
      .find("BIO_meth_set_write", api.BIO_meth_set_write)
      .find("BIO_meth_set_ctrl", api.BIO_meth_set_ctrl)
      .find("BIO_new", api.BIO_new)
      .find("BIO_set_data", api.BIO_set_data)
      .find("BIO_get_data", api.BIO_get_data)
      .find("BIO_set_flags", api.BIO_set_flags)
      .find("BIO_clear_flags", api.BIO_clear_flags)
      .find("ERR_clear_error", api.ERR_clear_error)
      .find("ERR_get_error", api.ERR_get_error)
      .find("ERR_reason_error_string", api.ERR_reason_error_string)
      .find("EVP_sha256", api.EVP_sha256)
      .find("EVP_Digest", api.EVP_Digest);
}

std::optional<Api> loadFrom(const char* name) noexcept {
  // It stays when this library is unloaded: what OpenSSL has left with threads is run when they end.
  void* const handle = ::dlopen(name, RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
  if (!handle) return std::nullopt;
  Library library(handle);
  Api api{};
  findStreams(library, api);
  findDescriptions(library, api);
  findBasics(library, api);
  if (library.whole() && api.OPENSSL_init_ssl(kNoCleanUpAtExit, nullptr) == 1) return api;
  ::dlclose(handle);
  return std::nullopt;
}

std::optional<Api> load() noexcept {
  for (const char* name : {"libssl.so.4", "libssl.so.3", "libssl.so.1.1"}) {
    if (auto api = loadFrom(name)) return api;
  }
  return std::nullopt;
}

}  // namespace

const Api* api() noexcept {
  static const std::optional<Api> theApi = load();
  return theApi ? &*theApi : nullptr;
}

}  // namespace platform::openssl
