// SPDX-License-Identifier: MIT
// HTTPDownloadFile: one GET request, with at most one redirect, on the caller's thread and in a session of
// its own. It writes no message lines and no failure report.
#include <algorithm>
#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "Src/CollectedFile.h"
#include "Src/HostCall.h"
#include "Src/OperationGuard.h"
#include "Src/QXIP.h"
#include "Src/SlotRetry.h"
#include "Src/TInternetSession.h"
#include "framework/File.h"
#include "framework/internet/HttpConnection.h"
#include "framework/internet/HttpFile.h"
#include "framework/internet/InternetException.h"
#include "framework/internet/http/HttpUrl.h"
#include "framework/platform/file.h"
#include "framework/platform/message_queue.h"
#include "framework/platform/modal_message.h"
#include "framework/platform/wait_watch.h"
#include "framework/text/AsciiText.h"
#include "support/Messages.h"

namespace {

constexpr const char* kAcceptHeader =
    "Accept: audio/x-aiff, audio/basic, audio/midi, audio/mpeg, audio/wav, image/jpeg, image/gif, image/jpg, "
    "image/png, image/mng, image/bmp, text/plain, text/html, text/htm, image/imk, image/img\r\n";
constexpr const char* kAgentHeader = "User-Agent: Kaltor WEB/1.0\r\n";
constexpr std::string_view kLocation = "Location: ";
constexpr std::uint32_t kRequestFlags = internet::kFlagExistingConnect | internet::kFlagNoCacheWrite;
constexpr std::uintptr_t kContext = 1;

constexpr std::uint32_t kConnectTimeoutMs = 30 * 1000;
constexpr std::uint32_t kConnectBackoffMs = 1000;
constexpr std::uint32_t kConnectRetries = 1;

constexpr std::size_t kMostOfName = 255;
constexpr std::uint32_t kHttpChunk = 4096;
// How long a server may keep the host waiting: with a chunk that is not full, and with all that comes before.
constexpr std::chrono::milliseconds kPatience{50};
// What is in the queue is dispatched no later. A look takes a hundred times as long as a chunk where the
// queue is another process's, as in Wine.
constexpr std::chrono::milliseconds kLookEvery{1};

enum Status : std::uint32_t {
  kOk = 200,
  kMovedPermanently = 301,
  kFound = 302,
  kSeeOther = 303,
  kUnauthorized = 401
};

std::string boundedName(const char* text) {
  return std::string(std::string_view(text != nullptr ? text : "").substr(0, kMostOfName));
}

// What follows the first "Location: " of the response's head, up to its line feed; the carriage return before
// that is left to the address splitter. Case matters, and so does a Content-Location that comes first: hosts
// know it like that.
std::optional<std::string> redirectAddress(const std::string& headers) {
  const auto at = headers.find(kLocation);
  if (at == std::string::npos) return std::nullopt;
  std::string address = headers.substr(at + kLocation.size());
  const auto end = address.find('\n');
  if (end != std::string::npos && end > 0) address.resize(end);
  return address;
}

void showFailure(CInternetException* exception) {
  char text[kExceptionTextCapacity] = "";
  exception->GetErrorMessage(text, sizeof text);
  exception->Delete();
  platform::showModalMessage(text, "ERROR");
}

struct Target {
  const char* localFile;
  std::uint64_t* pLength;  // not null: only the length is wanted
  QXHostValue pollArg1;
  QXHostValue pollArg2;
};

class HttpDownload {
 public:
  HttpDownload(TQXIP& client, const Target& target);

  // Throws CInternetException* and, for the local file, CFileException*.
  [[nodiscard]] bool Fetch(const std::string& server, const std::string& object, std::uint16_t port);
  [[nodiscard]] bool Cancelled() const noexcept { return m_cancelled; }

 private:
  bool ReceiveHead(const std::string& server, const std::string& object, std::uint16_t port);
  bool Connect(const std::string& server, std::uint16_t port);
  bool Request(const std::string& object);
  bool FollowRedirect();
  [[nodiscard]] std::string EncryptedAsBefore(const std::string& server) const;
  bool RequestAgain(const std::string& object);
  void Transfer();
  void SaveBody();
  bool WantsMore(CollectedFile* file = nullptr);
  [[nodiscard]] bool HostIsAsked() const noexcept { return !HasOwnSlot(m_client, Slot::OnPoll); }
  bool FindsMessage() noexcept;
  [[nodiscard]] platform::WaitWatch LeaveWhenCancelled();
  void Close() noexcept;

  TQXIP& m_client;
  const Target m_target;
  std::string m_server;  // that was asked first, in the host's words
  TInternetSession m_session;
  std::unique_ptr<CHttpConnection> m_connection;
  std::unique_ptr<CHttpFile> m_request;
  std::uint32_t m_status = kOk;  // stays what it was when a response tells none
  bool m_cancelled = false;
  std::chrono::steady_clock::time_point m_nextLook{};
};

HttpDownload::HttpDownload(TQXIP& client, const Target& target)
    : m_client(client), m_target(target), m_session(client.m_pErrorInfo, &client, nullptr) {
  m_session.SetOption(internet::kOptionConnectTimeout, kConnectTimeoutMs);
  m_session.SetOption(internet::kOptionConnectBackoff, kConnectBackoffMs);
  m_session.SetOption(internet::kOptionConnectRetries, kConnectRetries);
  m_session.EnableStatusCallback();
}

bool HttpDownload::Fetch(const std::string& server, const std::string& object, std::uint16_t port) {
  if (!ReceiveHead(server, object, port)) return false;
  if (m_status == kOk) Transfer();
  Close();
  return m_status == kOk && !m_cancelled;
}

// Of the last request there is.
bool HttpDownload::ReceiveHead(const std::string& server, const std::string& object, std::uint16_t port) {
  const platform::WaitWatch watch = LeaveWhenCancelled();
  m_server = server;
  if (!Connect(server, port) || !Request(object)) return false;
  m_request->QueryInfoStatusCode(m_status);
  if (m_status == kUnauthorized) return false;
  const bool moved = m_status == kMovedPermanently || m_status == kFound || m_status == kSeeOther;
  return !moved || FollowRedirect();
}

bool HttpDownload::Connect(const std::string& server, std::uint16_t port) {
  m_connection.reset(m_session.GetHttpConnection(server.c_str(), port));
  return m_connection != nullptr;
}

bool HttpDownload::Request(const std::string& object) {
  m_request.reset(m_connection->OpenRequest(CHttpConnection::HTTP_VERB_GET, object.c_str(), nullptr, kContext,
                                            nullptr, nullptr, kRequestFlags));
  if (m_request == nullptr) return false;
  m_request->AddRequestHeaders(kAcceptHeader);
  m_request->AddRequestHeaders(kAgentHeader);
  return m_request->SendRequest();
}

bool HttpDownload::FollowRedirect() {
  std::string headers;
  m_request->QueryRawHeaders(headers);
  const auto address = redirectAddress(headers);
  if (!address) return false;
  m_request.reset();
  m_connection.reset();
  internet::UrlService service{};
  std::string server;
  std::string object;
  std::uint16_t port = 0;
  if (!AfxParseURL(*address, service, server, object, port)) return false;
  // An https address alone encrypts nothing: hosts know it like that. What began encrypted stays so there.
  if (service == internet::UrlService::https) server = EncryptedAsBefore(server);
  return Connect(server, port) && RequestAgain(object) && m_status == kOk;
}

// The name of a redirect's server, with scheme and options of the first one where that was asked encrypted.
std::string HttpDownload::EncryptedAsBefore(const std::string& server) const {
  constexpr std::string_view kScheme = "https://";
  if (!ascii::startsBlindToCase(m_server, kScheme)) return server;
  const auto options = std::min(m_server.find(';'), m_server.size());
  return std::string(kScheme) + server + m_server.substr(options);
}

bool HttpDownload::RequestAgain(const std::string& object) {
  const char* const acceptTypes[] = {kAcceptHeader, nullptr};
  m_request.reset(m_connection->OpenRequest("GET", object.c_str(), nullptr, kContext, acceptTypes, nullptr,
                                            kRequestFlags));
  if (m_request == nullptr) return false;
  m_request->AddRequestHeaders(kAcceptHeader);
  // What was not sent has no status: the redirect's stays.
  static_cast<void>(m_request->SendRequest());
  m_request->QueryInfoStatusCode(m_status);
  return true;
}

void HttpDownload::Transfer() {
  if (m_target.pLength != nullptr) {
    const platform::WaitWatch watch = LeaveWhenCancelled();
    *m_target.pLength = m_request->GetLength();
  } else {
    SaveBody();
  }
}

// A host that is asked, or gets a message, finds in the file what has come by then. Where neither happens,
// what comes without a pause is written in larger pieces.
void HttpDownload::SaveBody() {
  CFile file(m_target.localFile, CFile::modeCreate | CFile::modeWrite | CFile::typeBinary);
  CollectedFile collected(file);
  bool ended = false;
  do {
    char* const room = collected.Room(kHttpChunk);
    const std::uint32_t count = m_request->ReadFor(room, kHttpChunk, kPatience, ended);
    if (count == 0 && ended) break;
    collected.Added(count);
    if (count < kHttpChunk || HostIsAsked()) collected.Flush();
  } while (WantsMore(&collected));
  collected.Flush();
  file.Close();
}

// A host that is asked may post a message, and finds it dispatched when it is asked again. Where it is not,
// no code of its own runs on this thread between two chunks unless there were messages.
bool HttpDownload::WantsMore(CollectedFile* file) {
  const bool asked = HostIsAsked();
  m_cancelled = m_client.OnPoll(m_target.pollArg1, m_target.pollArg2, 0, nullptr) != 0;
  if (m_cancelled) return false;  // the client, which may be gone, is asked nothing more
  if (!HostCall([&] { return asked ? platform::messageWaiting() : FindsMessage(); })) return true;
  if (file != nullptr) file->Flush();
  HostCall([] { PumpMessages(nullptr, 0, 0); });
  m_nextLook = {};  // there may be more, or what has run may have posted more
  return true;
}

// From the end of one look to the next: on a busy machine a look may take longer than the time between them.
bool HttpDownload::FindsMessage() noexcept {
  if (std::chrono::steady_clock::now() < m_nextLook) return false;
  const bool waits = platform::messageWaiting();
  m_nextLook = std::chrono::steady_clock::now() + kLookEvery;
  return waits;
}

// For the time without a local file. There is nothing to delete then: a file of that name is an older one.
platform::WaitWatch HttpDownload::LeaveWhenCancelled() {
  return {kPatience, [this] {
            if (!WantsMore()) throw platform::OperationStopped{};
          }};
}

void HttpDownload::Close() noexcept {
  m_request.reset();
  m_connection.reset();
  m_session.Close();
}

bool download(TQXIP& client, const Target& target, const char* server, const char* object,
              std::uint32_t port) {
  HttpDownload download(client, target);
  bool fetched = false;
  try {
    fetched = download.Fetch(boundedName(server), boundedName(object), static_cast<std::uint16_t>(port));
  } catch (CInternetException* exception) {
    // Request, connection and session end behind the box. What the local file has got stays.
    showFailure(exception);
  }
  if (download.Cancelled()) {  // with the file begun
    // Windows deletes no read-only file. There is nobody to tell if it fails.
    static_cast<void>(platform::setFileAttributes(target.localFile, platform::kFileAttributeArchive));
    static_cast<void>(platform::deleteFile(target.localFile));
  }
  return fetched;
}

}  // namespace

std::uint32_t TQXIP::HTTPDownloadFile(const char* pszServer, const char* pszObject, std::uint32_t nPort,
                                      const char* pszLocalFile, std::uint64_t* pnLength,
                                      QXHostValue nPollArg1, QXHostValue nPollArg2) {
  return GuardOperation(*this, [&]() -> std::uint32_t {
    const Target target{pszLocalFile, pnLength, nPollArg1, nPollArg2};
    return download(*this, target, pszServer, pszObject, nPort) ? 1 : 0;
  });
}
