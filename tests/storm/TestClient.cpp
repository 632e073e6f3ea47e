// SPDX-License-Identifier: MIT
#include "tests/storm/TestClient.h"

#include "Src/SharedFlag.h"

namespace storm {

namespace {

struct Record : QXFtpThread {
  explicit Record(Script& owner) : script(owner) {}
  Script& script;
};

void StormThr(void* argument) {
  RunWorker(argument, static_cast<Record*>(argument)->script.shape,
            [](QXFtpThread& record) { return static_cast<Record&>(record).script.attempt(record); });
}

}  // namespace

void* TestClient::DeletingDestructor(std::uint32_t nFlags) {
  void* const self = TQXIP::DeletingDestructor(0);
  if ((nFlags & 1) != 0) ::operator delete(self, sizeof(TestClient));
  return self;
}

void TestClient::OnIPError(std::uint32_t nError, const char* pszText, std::uint32_t* pRetries) {
  if (m_script.onIPError) m_script.onIPError(nError, pRetries);
  TQXIP::OnIPError(nError, pszText, pRetries);
}

void TestClient::OnDisconnect() {
  TQXIP::OnDisconnect();
  if (m_script.onDisconnect) m_script.onDisconnect();
}

QXBool TestClient::OnPoll(QXHostValue, QXHostValue, QXHostValue, QXBool* pbReconnect) {
  return m_script.onPoll && m_script.onPoll(*pbReconnect) ? 1 : 0;
}

QXBool TestClient::FTPGetDirectory(const char* pszPath, QXDirEntry* pEntries, std::uint32_t* pnCount,
                                   const char* pszPattern, std::uint32_t nRetries) {
  if (m_script.onGetDirectory) return m_script.onGetDirectory(pnCount) ? 1 : 0;
  return TQXIP::FTPGetDirectory(pszPath, pEntries, pnCount, pszPattern, nRetries);
}

QXBool TestClient::FTPHasSubDir(const char* pszPath, std::uint32_t nRetries) {
  if (m_script.onHasSubDir) m_script.onHasSubDir();
  return TQXIP::FTPHasSubDir(pszPath, nRetries);
}

QXBool TestClient::FTPRmvFile(const char* pszPath, std::uint32_t nWipePasses, std::uint32_t nRetries,
                              QXHostValue nPollArg1, QXHostValue nPollArg2) {
  Script& script = m_script;  // the client may be gone before the call returns
  return GuardOperation(*this, [&]() -> QXBool {
    script.calls.push_back(nRetries);
    Record record(script);
    FillRecord(record, *this, nRetries, pszPath);
    const WorkerCall call{.client = *this, .record = record, .worker = &StormThr, .polling = script.polling};
    QXBool ok = 0;
    if (script.reports) {
      ok = RunReportedOperation(
          {.call = call, .slot = Slot::FTPRmvFile, .site = kOperationSite, .paths = {.first = pszPath}},
          [&] { return IsSet(m_bInitialized) ? Entry::worker : Entry::refused; },
          [&] { return FTPRmvFile(pszPath, nWipePasses, 1, nPollArg1, nPollArg2) != 0; });
    } else {
      script.end = RunAndWait(call);
      ok = record.bResult;
    }
    script.done.push_back(record.bDone);
    return ok;
  });
}

Client makeClient(Script& script, QXErrorInfo* pErrorInfo) {
  return Client(new TestClient(script, pErrorInfo));
}

}  // namespace storm
