// SPDX-License-Identifier: MIT
// OpenSSL's functions by their binary interface, from whichever of its releases 1.1, 3 and 4 the system has.
// Nothing of OpenSSL is needed to build or to load the library; only what all three have is used.
#pragma once

#include <cstddef>
#include <cstdint>

namespace platform::openssl {

// Objects that OpenSSL alone looks into.
struct Bio;
struct BioMethod;
struct Certificate;
struct Cipher;
struct Context;
struct Digest;
struct Method;
struct Session;
struct Ssl;
struct Store;
struct StoreContext;

// SSL_get_error()
inline constexpr int kErrorWantRead = 2;
inline constexpr int kErrorWantWrite = 3;
inline constexpr int kErrorZeroReturn = 6;

// SSL_ctrl() and SSL_CTX_ctrl()
inline constexpr int kControlMode = 33;
inline constexpr int kControlReadAhead = 41;
inline constexpr int kControlSessionCache = 44;
inline constexpr int kControlServerName = 55;
inline constexpr int kControlLeastVersion = 123;
inline constexpr int kControlNewestVersion = 124;

// Parts of a write, from wherever its bytes lie; a read goes on behind records that are not for its caller.
inline constexpr long kModes = 0x1 | 0x2 | 0x4;
inline constexpr long kCacheClientOutside = 0x0001 | 0x0300;  // tells of sessions and keeps none itself
inline constexpr long kHostName = 0;
inline constexpr long kTls12 = 0x0303;

inline constexpr std::uint64_t kNoCompression = std::uint64_t{1} << 17;
inline constexpr std::uint64_t kNoRenegotiation = std::uint64_t{1} << 30;
// Worker threads may still be at work while the program ends.
inline constexpr std::uint64_t kNoCleanUpAtExit = 0x00080000;

inline constexpr int kNoVerification = 0;                // it is done all the same
inline constexpr unsigned long kListsOfAll = 0x4 | 0x8;  // of revoked certificates, for each in a chain

// Of an error's code: which one it is. An alert of the peer is its number above kAlert.
inline constexpr unsigned long kReason = 0xfff;
inline constexpr unsigned long kAlert = 1000;

// BIO objects
inline constexpr int kBioSourceSink = 0x0400;
inline constexpr int kBioFlush = 11;
inline constexpr int kBioRead = 0x01;
inline constexpr int kBioWrite = 0x02;
inline constexpr int kBioShouldRetry = 0x08;

struct Api {
  int (*OPENSSL_init_ssl)(std::uint64_t options, const void* settings);
  const Method* (*TLS_client_method)();

  Context* (*SSL_CTX_new)(const Method*);
  void (*SSL_CTX_free)(Context*);
  long (*SSL_CTX_ctrl)(Context*, int command, long number, void* pointer);
  std::uint64_t (*SSL_CTX_set_options)(Context*, std::uint64_t);
  void (*SSL_CTX_set_verify)(Context*, int mode, int (*callback)(int fine, StoreContext*));
  int (*SSL_CTX_set_default_verify_paths)(Context*);
  Store* (*SSL_CTX_get_cert_store)(const Context*);
  void (*SSL_CTX_sess_set_new_cb)(Context*, int (*callback)(Ssl*, Session*));
  void (*SSL_CTX_set_client_cert_cb)(Context*, int (*callback)(Ssl*, void** certificate, void** key));

  Ssl* (*SSL_new)(Context*);
  void (*SSL_free)(Ssl*);
  long (*SSL_ctrl)(Ssl*, int command, long number, void* pointer);
  void (*SSL_set_bio)(Ssl*, Bio* read, Bio* write);
  int (*SSL_set_ex_data)(Ssl*, int index, void*);
  void* (*SSL_get_ex_data)(const Ssl*, int index);
  void (*SSL_set_default_read_buffer_len)(Ssl*, std::size_t);
  void (*SSL_set_connect_state)(Ssl*);
  int (*SSL_do_handshake)(Ssl*);
  int (*SSL_read)(Ssl*, void*, int size);
  int (*SSL_write)(Ssl*, const void*, int size);
  int (*SSL_shutdown)(Ssl*);
  int (*SSL_get_error)(const Ssl*, int result);
  long (*SSL_get_verify_result)(const Ssl*);
  Certificate* (*SSL_get1_peer_certificate)(const Ssl*);  // under its old name in 1.1
  const char* (*SSL_get_version)(const Ssl*);
  const Cipher* (*SSL_get_current_cipher)(const Ssl*);
  const char* (*SSL_CIPHER_standard_name)(const Cipher*);

  int (*SSL_session_reused)(const Ssl*);
  int (*SSL_set_session)(Ssl*, Session*);
  void (*SSL_SESSION_free)(Session*);
  int (*i2d_SSL_SESSION)(const Session*, unsigned char** der);
  Session* (*d2i_SSL_SESSION)(Session**, const unsigned char** der, long size);

  int (*i2d_X509)(const Certificate*, unsigned char** der);
  void (*X509_free)(Certificate*);
  const char* (*X509_verify_cert_error_string)(long);
  int (*X509_STORE_set_flags)(Store*, unsigned long);
  int (*X509_STORE_CTX_get_error)(const StoreContext*);
  void (*X509_STORE_CTX_set_error)(StoreContext*, int);

  BioMethod* (*BIO_meth_new)(int type, const char* name);
  void (*BIO_meth_free)(BioMethod*);
  int (*BIO_meth_set_read)(BioMethod*, int (*)(Bio*, char*, int));
  int (*BIO_meth_set_write)(BioMethod*, int (*)(Bio*, const char*, int));
  int (*BIO_meth_set_ctrl)(BioMethod*, long (*)(Bio*, int command, long number, void* pointer));
  Bio* (*BIO_new)(const BioMethod*);
  void (*BIO_set_data)(Bio*, void*);
  void* (*BIO_get_data)(Bio*);
  void (*BIO_set_flags)(Bio*, int);
  void (*BIO_clear_flags)(Bio*, int);

  void (*ERR_clear_error)();
  unsigned long (*ERR_get_error)();
  const char* (*ERR_reason_error_string)(unsigned long);

  const Digest* (*EVP_sha256)();
  int (*EVP_Digest)(const void*, std::size_t, unsigned char* result, unsigned int* size, const Digest*,
                    void*);
};

// Loaded by the first call, for as long as the process lives. Null where the system has no such library.
const Api* api() noexcept;

}  // namespace platform::openssl
