// SPDX-License-Identifier: MIT
// A host of Microsoft's C++ ABI, without SDK and run-time library: the public header has a real virtual
// destructor here, and the shipped import library is linked. It prints the checks that fail; their number is
// the exit code.
#include "QXDialogs.h"
#include "QXExports.h"
#include "QXHooks.h"
#include "tests/dll/c_host.h"
#include "tests/dll/slot_probe.h"

extern "C" {
[[noreturn]] void ExitProcess(std::uint32_t nExitCode);
void* GetStdHandle(std::uint32_t nWhich);
int WriteFile(void* hFile, const void* pData, std::uint32_t nSize, std::uint32_t* pnWritten,
              void* pOverlapped);

void* memcpy(void* target, const void* source, std::size_t size) {
  for (std::size_t i = 0; i < size; ++i) {
    static_cast<unsigned char*>(target)[i] = static_cast<const unsigned char*>(source)[i];
  }
  return target;
}
}

namespace {

unsigned g_nFailed = 0;
unsigned g_nChecks = 0;
// Not on the stack: a frame of more than a page would need a helper of the run-time library.
QXErrorInfo g_error;

void print(const char* text) {
  std::uint32_t length = 0;
  while (text[length] != '\0') ++length;
  constexpr std::uint32_t kStandardOutput = 0xFFFFFFF5;
  WriteFile(GetStdHandle(kStandardOutput), text, length, &length, nullptr);
}

void check(bool holds, const char* what) {
  ++g_nChecks;
  if (holds) return;
  ++g_nFailed;
  print("failed: ");
  print(what);
  print("\n");
}

#define CHECK(condition) check(condition, #condition)

bool equal(const char* left, const char* right) {
  for (; *left == *right; ++left, ++right) {
    if (*left == '\0') return true;
  }
  return false;
}

bool begins(const char* text, const char* start) {
  for (; *start != '\0'; ++text, ++start) {
    if (*text != *start) return false;
  }
  return true;
}

std::uint32_t moduleCount() {
  const std::uint32_t raised = DllAddRef();
  CHECK(DllRelease() == raised - 1);
  return raised - 1;
}

// Which slots this compiler calls, by name and order of the public header.
void checkSlotOrder() {
  SlotProbe probe;
  TQXIPIFInt* const client = probe.client();
  SlotProbe::taken();
#define QX_SLOT(number, operation, arguments) \
  client->operation arguments;                \
  check(SlotProbe::taken() == number, "slot of " #operation);
#include "tests/dll/slots.inc"
#undef QX_SLOT
  delete client;
  check(SlotProbe::taken() == 3, "slot of the destructor");
}

void checkReferences(TQXIPIFInt* client) {
  CHECK(client->m_nRefCount == 1);
  CHECK(client->AddRef() == 2);
  CHECK(client->m_nRefCount == 2);
  CHECK(FreeQXIPIFInstance(client) == 1);
  CHECK(client->m_nRefCount == 1);
}

// Slots on both sides of the destructor.
void checkWipe(TQXIPIFInt* client) {
  std::uint32_t pattern[2] = {};
  client->m_pWipePattern = pattern;
  CHECK(client->FillWipePattern(7, 1) == 1);
  CHECK(pattern[0] == 7 && pattern[1] == 0);
  client->m_pWipePattern = nullptr;
  CHECK(client->Wipe(nullptr) == 0);
  CHECK(client->Wipe("/file") == 1);
  CHECK(client->FTPRmvFile("", 0, 0, 0, 0) == 0);
  CHECK(equal(client->m_szMessage, "TQXIP::FTPRmvFile '' failed!"));
}

// The last slot.
void checkRename(TQXIPIFInt* client) {
  CHECK(client->FTPRenameFile("\n", "/new", 0) == 0);
  CHECK(equal(client->m_szMessage, "TQXIP::FTPRenameFile from '\n' to '/new' failed!"));
}

void checkOperations(TQXIPIFInt* client) {
  CHECK(client->FTPSetLogin("ftp://example.test", "name", "secret", 2121, 1) == 1);
  CHECK(equal(client->m_RemoteSystem, "example.test"));
  CHECK(equal(client->m_UserName, "name"));
  CHECK(equal(client->m_Password, "secret"));
  CHECK(client->m_nPort == 2121 && client->m_bPassive == 1);

  CHECK(client->GetFinder(0, "m_pFTPDirFind") == nullptr);
  CHECK(client->GetFinder(0, nullptr) == nullptr);
  CHECK(client->FTPFileSize(nullptr, 0, 0, 0) == 0);
  CHECK(client->FTPReConnect(1, 0) == 1);
}

void checkErrorRecord(TQXIPIFInt* client) {
  g_error.bSet = 0;
  CHECK(client->FTPSetProxy("proxy.example.test", 0) == 0);
  CHECK(g_error.bSet == 1 && g_error.nCode == 1000);
  CHECK(begins(g_error.szText, "TQXIP::FTPSetProxy failed!"));
}

// `delete` is this ABI's own way to end a client: its memory goes back to the library.
void checkDeletion(std::uint32_t nModuleCount) {
  for (int i = 0; i < 100; ++i) {
    TQXIPIFInt* const client = CreateQXIPIFInstance(nullptr);
    CHECK(client != nullptr && moduleCount() == nModuleCount + 1);
    delete client;
    CHECK(moduleCount() == nModuleCount);
  }
}

// The same records and slots in this compiler's C.
void checkCHost(TQXIPIFInt* client) {
  const CMember* member = cLayout();
#define QX_RECORD(record) QX_MEMBER(record, 0, sizeof(record))
#define QX_FIELD(record, field) QX_MEMBER(field, offsetof(record, field), sizeof(record::field))
#define QX_OBJECT_FIELD(field) QX_MEMBER(field, offsetof(QXClientObject, field), sizeof(TQXIPIFInt::field))
#define QX_MEMBER(name, offset, size)                                                            \
  check(equal(member->pszName, #name) && member->nOffset == (offset) && member->nSize == (size), \
        "C layout of " #name);                                                                   \
  ++member;
#include "tests/dll/layout.inc"
  CHECK(member->pszName == nullptr);
  for (std::size_t slot = 0; slot < QX_SLOT_COUNT; ++slot) CHECK(cSlotOffsets()[slot] == slot * 8);
  CHECK(cSetsLogin(client) == 1);
}

void noteConnect(TQXIPIFInt* client) {
  QXHooksOf(client)->pOriginal->OnConnect(client);
  ++QXClientHooks::ContextOf<int>(client);
}

void checkHooks(TQXIPIFInt* client) {
  int connects = 0;
  {
    QXClientHooks hooks(client, &connects);
    hooks->OnConnect = &noteConnect;
    client->OnConnect();
    CHECK(connects == 1 && client->m_bConnected == 1);
  }
  client->OnConnect();
  CHECK(connects == 1);
  client->OnDisconnect();
}

// `delete` goes through the copy of the table.
void checkEndWithHooks() {
  TQXIPIFInt* const client = CreateQXIPIFInstance(nullptr);
  QXHooks hooks;
  int ends = 0;
  cInstallHooks(client, &hooks, &ends);
  delete client;
  CHECK(ends == 1 && hooks.bEnded == 1);
  QXRemoveHooks(client, &hooks);
}

// Every dialog refuses what it was not given, without a window.
void checkDialogs() {
  std::uint32_t count = 7;
  QXBool cancelled = 7;
  CHECK(DoOpenFileDialog(nullptr, nullptr, nullptr, nullptr, nullptr, 0, nullptr, &count, nullptr,
                         &cancelled) == 0);
  CHECK(DoOpenDirFileDialog(nullptr, nullptr, nullptr, nullptr, 0, 1, 0, 0, nullptr, &count, nullptr,
                            &cancelled) == 0);
  CHECK(count == 7 && cancelled == 7);
  CHECK(DoFreeDirFileDialog(nullptr) == 0);
  CHECK(QXSelectFolder(nullptr) == 0);
  CHECK(DoHtmlHelp(nullptr, nullptr, 0, 0) == 0);
}

}  // namespace

extern "C" void hostMain() {
  checkSlotOrder();
  if (g_nFailed != 0) ExitProcess(g_nFailed);  // calls into a real client would go astray
  const std::uint32_t before = moduleCount();
  TQXIPIFInt* const client = CreateQXIPIFInstance(&g_error);
  CHECK(client != nullptr);
  if (client != nullptr) {
    CHECK(moduleCount() == before + 1);
    CHECK(client->m_pErrorInfo == &g_error);
    checkReferences(client);
    if (g_nFailed != 0) ExitProcess(g_nFailed);  // the library has other slots: further calls would go astray
    checkWipe(client);
    checkRename(client);
    checkOperations(client);
    checkErrorRecord(client);
    checkCHost(client);
    checkHooks(client);
    delete client;
    CHECK(moduleCount() == before);
    checkDeletion(before);
    checkEndWithHooks();
  }
  CHECK(FreeQXIPIFInstance(nullptr) == 0);
  CHECK(DoFTPConnect(nullptr, "example.test", "", "", 21, 0, 0, nullptr) == 0);
  checkDialogs();
  check(g_nChecks > 400, "every group of checks has run");
  if (g_nFailed == 0) print("foreign host: all checks hold\n");
  ExitProcess(g_nFailed);
}
