// SPDX-License-Identifier: MIT
#include "tests/hosts/shared/FileRights.h"

#include <memory>
#include <system_error>
#include <vector>

#include "hosts/shared/windows/System.h"
// Only now:
#include <aclapi.h>

namespace test {
namespace {

void require(DWORD error) {
  if (error != ERROR_SUCCESS) throw std::system_error(static_cast<int>(error), std::system_category());
}

EXPLICIT_ACCESSW grant(PSID who, DWORD rights) {
  EXPLICIT_ACCESSW access{};
  access.grfAccessPermissions = rights;
  access.grfAccessMode = SET_ACCESS;
  BuildTrusteeWithSidW(&access.Trustee, who);
  return access;
}

// The user of this process.
class Myself {
 public:
  Myself() {
    HANDLE token = nullptr;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token)) require(GetLastError());
    DWORD size = 0;
    const BOOL done = GetTokenInformation(token, TokenUser, m_user, sizeof m_user, &size);
    CloseHandle(token);
    if (!done) require(GetLastError());
  }

  [[nodiscard]] PSID sid() { return reinterpret_cast<TOKEN_USER*>(m_user)->User.Sid; }

 private:
  alignas(TOKEN_USER) BYTE m_user[256];
};

// Nothing is inherited of the folder.
void setRights(const std::filesystem::path& file, std::vector<EXPLICIT_ACCESSW> entries) {
  ACL* list = nullptr;
  require(SetEntriesInAclW(static_cast<ULONG>(entries.size()), entries.data(), nullptr, &list));
  const std::unique_ptr<ACL, decltype(&LocalFree)> owner(list, &LocalFree);
  SECURITY_DESCRIPTOR descriptor;
  if (!InitializeSecurityDescriptor(&descriptor, SECURITY_DESCRIPTOR_REVISION) ||
      !SetSecurityDescriptorDacl(&descriptor, TRUE, list, FALSE) ||
      !SetFileSecurityW(file.c_str(), DACL_SECURITY_INFORMATION | PROTECTED_DACL_SECURITY_INFORMATION,
                        &descriptor)) {
    require(GetLastError());
  }
}

}  // namespace

void makePrivate(const std::filesystem::path& file) {
  Myself myself;
  setRights(file, {grant(myself.sid(), GENERIC_ALL)});
}

void letOthersRead(const std::filesystem::path& file) {
  BYTE everyone[SECURITY_MAX_SID_SIZE];
  DWORD size = sizeof everyone;
  if (!CreateWellKnownSid(WinWorldSid, nullptr, everyone, &size)) require(GetLastError());
  Myself myself;
  setRights(file, {grant(myself.sid(), GENERIC_ALL), grant(everyone, GENERIC_READ)});
}

}  // namespace test
