// SPDX-License-Identifier: MIT
#include "hosts/qxbrowse/sites/Protection.h"

#include <memory>
#include <system_error>
#include <vector>

#include "hosts/qxbrowse/ui/System.h"
// Only now:
#include <dpapi.h>
#include <wincrypt.h>

namespace browse {
namespace {

constexpr DWORD kForm = CRYPT_STRING_BASE64 | CRYPT_STRING_NOCRLF;

// A block that the system has made.
class Block {
 public:
  Block() = default;
  Block(const Block&) = delete;
  Block& operator=(const Block&) = delete;
  ~Block() {
    if (m_blob.pbData == nullptr) return;
    SecureZeroMemory(m_blob.pbData, m_blob.cbData);
    LocalFree(m_blob.pbData);
  }
  DATA_BLOB* out() { return &m_blob; }
  [[nodiscard]] std::string_view bytes() const {
    return {reinterpret_cast<const char*>(m_blob.pbData), m_blob.cbData};
  }

 private:
  DATA_BLOB m_blob{};
};

DATA_BLOB blobOf(std::string_view bytes) {
  return {static_cast<DWORD>(bytes.size()), reinterpret_cast<BYTE*>(const_cast<char*>(bytes.data()))};
}

std::string toText(std::string_view bytes) {
  const auto* const data = reinterpret_cast<const BYTE*>(bytes.data());
  DWORD length = 0;
  CryptBinaryToStringA(data, static_cast<DWORD>(bytes.size()), kForm, nullptr, &length);
  std::string text(length, '\0');
  CryptBinaryToStringA(data, static_cast<DWORD>(bytes.size()), kForm, text.data(), &length);
  text.resize(length);
  return text;
}

std::string fromText(std::string_view text) {
  const auto size = static_cast<DWORD>(text.size());
  DWORD length = 0;
  if (!CryptStringToBinaryA(text.data(), size, CRYPT_STRING_BASE64, nullptr, &length, nullptr, nullptr))
    return {};
  std::string bytes(length, '\0');
  CryptStringToBinaryA(text.data(), size, CRYPT_STRING_BASE64, reinterpret_cast<BYTE*>(bytes.data()), &length,
                       nullptr, nullptr);
  bytes.resize(length);
  return bytes;
}

}  // namespace

std::string protect(std::string_view password) {
  DATA_BLOB in = blobOf(password);
  Block out;
  if (!CryptProtectData(&in, L"qxbrowse", nullptr, nullptr, nullptr, CRYPTPROTECT_UI_FORBIDDEN, out.out())) {
    throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), "CryptProtectData");
  }
  return toText(out.bytes());
}

std::optional<std::string> unprotect(std::string_view text) {
  const std::string bytes = fromText(text);
  DATA_BLOB in = blobOf(bytes);
  Block out;
  if (bytes.empty() ||
      !CryptUnprotectData(&in, nullptr, nullptr, nullptr, nullptr, CRYPTPROTECT_UI_FORBIDDEN, out.out())) {
    return std::nullopt;
  }
  return std::string(out.bytes());
}

void wipe(std::string& secret) noexcept {
  SecureZeroMemory(secret.data(), secret.size());
  secret.clear();
}

}  // namespace browse
