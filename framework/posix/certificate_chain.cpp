// SPDX-License-Identifier: MIT
#include "framework/posix/certificate_chain.h"

namespace platform {
namespace {

using namespace openssl;

// X509_V_ERR_...: no list of that authority, or one that is no longer, not yet or not at all good. What such
// a list names is revoked all the same.
bool isOfListAlone(int verdict) noexcept {
  switch (verdict) {
    case 3:   // none
    case 8:   // not its signature
    case 11:  // not yet valid
    case 12:  // expired
    case 15:  // no date
    case 16:  // no date
    case 33:  // nobody knows who has made it
    case 44:  // for other certificates
      return true;
    default:
      return false;
  }
}

// What is not known about revocation is no fault: most authorities' lists are in no system's store.
int passOverLists(int fine, StoreContext* judged) noexcept {
  if (fine == 1 || !isOfListAlone(api()->X509_STORE_CTX_get_error(judged))) return fine;
  api()->X509_STORE_CTX_set_error(judged, 0);
  return 1;
}

}  // namespace

void judgeChains(const Api& api, Context* context) noexcept {
  api.SSL_CTX_set_default_verify_paths(context);
  api.X509_STORE_set_flags(api.SSL_CTX_get_cert_store(context), kListsOfAll);
  api.SSL_CTX_set_verify(context, kNoVerification, &passOverLists);
}

TlsTrust trustOf(long verdict) noexcept {
  switch (verdict) {
    case 0:
      return TlsTrust::trusted;
    case 9:   // not yet valid
    case 10:  // expired
      return TlsTrust::date;
    case 2:   // no issuer
    case 18:  // self-signed
    case 19:  // a self-signed one in the chain
    case 20:  // no issuer in the system's store
    case 21:  // none that its signature could be checked with
    case 27:  // its authority is not trusted for this
      return TlsTrust::unknownAuthority;
    case 23:
      return TlsTrust::revoked;
    default:
      return TlsTrust::invalid;
  }
}

}  // namespace platform
