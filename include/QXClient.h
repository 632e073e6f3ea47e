// SPDX-License-Identifier: MIT
// qx::Client: the client for hosts in C++20, which frees itself, takes lambdas and answers by results.
//
//   const auto exports = qx::loadLibrary("libZRM_QXKT32x64.so");  // or qx::linkedExports()
//   auto client = qx::Client::make(exports.value()).value();
//   client.use({.poll = [&](const qx::Progress& p) { return stop ? qx::Poll::cancel : qx::Poll::goOn; }});
//   if (!client.setLogin({.host = "ftp.example.org"})) return;
//   const auto entries = client.list("/pub");
//   if (!entries) std::puts(entries.report().text.c_str());
//
// The operations are those of QXIPInt.h, which tells what they do; here stands what differs. For all of them:
//  - One thread at a time uses a client. A lambda starts no operation of its client.
//  - Every result has the report of its own operation (QXResult.h), also a success; a failure always has a
//    text. Where an operation of this class makes two of the library's, the first report of a failure counts.
//  - An exception of a lambda ends the operation where it can be cancelled, and leaves the function of this
//    class that called it, which has no result then. None goes through the library; one that comes while the
//    client ends is lost.
//  - A lambda may destroy its client, or move it: the operation fails then, or ends as it would have.
//  - A client that was moved from, or destroyed in a lambda, fails in every operation. Moving takes the
//    lambdas and the count of retries along.
//
// What is not here, and why. Slots 0 to 2, 23, 24, 27 and 38 do nothing; connect() connects again as well. 30
// hands out what a host cannot use. 32 and 33 cannot be cancelled: download() and upload() are copies. 34 and
// 45 are count() and directoryExists() without a difference between "no" and "not known". The callback of
// copies tells less than the lambda `poll`. Of the hooks there are those that tell what the library does.
#pragma once

#include <cstdio>
#include <fstream>
#include <span>
#include <string>
#include <vector>

#include "QXClientState.h"

namespace qx {

// The texts of a login; QXIPInt.h tells what `host` may say of encryption. Texts of at most 255 characters,
// in which that and the option of `tellsUploads` count.
struct Login {
  std::string host;
  std::string user = "anonymous";
  std::string password = "anonymous@";
  std::uint32_t port = 21;
  bool isPassive = true;
  bool tellsUploads = false;  // upload(), copy(), move() and append() have progress on the way to the server
};

struct ItemCounts {
  std::uint32_t files = 0;
  std::uint32_t directories = 0;
};

// QXIPInt.h tells what `server` may say of encryption. Port 0 is the usual one.
struct WebFile {
  std::string server;
  std::string object = "/";
  std::uint32_t port = 0;
};

using Bytes = std::vector<std::byte>;

class Client {
 public:
  // Fails when the library makes none. Keeps the library loaded.
  static Result<Client> make(const Exports& exports) {
    if (exports.create == nullptr || exports.free == nullptr) return {std::nullopt, NoClient()};
    Client client(std::make_shared<detail::State>(exports));
    if (!client.m_state->Create()) return {std::nullopt, NoClient()};
    return {std::move(client), {}};
  }

  ~Client() { Free(); }
  Client(Client&& other) noexcept = default;
  Client& operator=(Client&& other) noexcept {
    if (this != &other) {
      Free();
      m_state = std::move(other.m_state);
      m_retries = other.m_retries;
    }
    return *this;
  }

  // Whether there is a client.
  explicit operator bool() const noexcept { return get() != nullptr; }
  // For what this class lacks. What such calls report, or their lambdas throw, is lost.
  TQXIPIFInt* get() const noexcept { return m_state ? m_state->Client() : nullptr; }

  // The lambdas from now on. Not within one of them.
  void use(Lambdas lambdas) {
    if (m_state) m_state->Use(std::move(lambdas));
  }
  // How often a failed attempt is repeated; 0 at first.
  void setRetries(std::uint32_t retries) noexcept { m_retries = retries; }

  Result<Done> setLogin(const Login& login) {
    return Do([&](TQXIPIFInt& client) {
      return client.FTPSetLogin(HostOf(login).c_str(), login.user.c_str(), login.password.c_str(), login.port,
                                login.isPassive ? 1 : 0);
    });
  }
  // Operations work without it, each over connections of its own.
  Result<Done> connect(const Login& login) {
    return Do([&](TQXIPIFInt& client) {
      return client.FTPConnect(HostOf(login).c_str(), login.user.c_str(), login.password.c_str(), login.port,
                               login.isPassive ? 1 : 0, 0, nullptr);
    });
  }
  Result<Done> disconnect() {
    return Do([](TQXIPIFInt& client) { return client.FTPDisconnect(); });
  }
  // Returns when the connection has ended; until then it dispatches the thread's messages.
  Result<Done> keepAlive() {
    return Run<Done>([](TQXIPIFInt& client) {
      client.FTPKeepAlive();
      return std::optional(Done{});
    });
  }

  // Both calls of FTPGetDirectory. A directory that is not there has no entries.
  Result<std::vector<QXDirEntry>> list(const std::string& path, const std::string& pattern = "*.*") {
    return Run<std::vector<QXDirEntry>>([&](TQXIPIFInt& client) -> std::optional<std::vector<QXDirEntry>> {
      std::uint32_t count = 0;
      if (!client.FTPGetDirectory(path.c_str(), nullptr, &count, pattern.c_str(), m_retries)) return {};
      std::vector<QXDirEntry> entries(std::size_t{count} + 1);
      if (!client.FTPGetDirectory(path.c_str(), entries.data(), &count, pattern.c_str(), 0)) return {};
      entries.resize(count);
      return entries;
    });
  }
  Result<ItemCounts> count(const std::string& path) {
    return Run<ItemCounts>([&](TQXIPIFInt& client) -> std::optional<ItemCounts> {
      ItemCounts counts;
      if (!client.FTPCountFolderItems(path.c_str(), &counts.files, &counts.directories, m_retries)) return {};
      return counts;
    });
  }
  // "No" is a success. A failure is what the record has a number for.
  Result<bool> fileExists(const std::string& path) {
    return Ask([&](TQXIPIFInt& client) { return client.FTPFileExists(path.c_str(), m_retries, 0, 0); });
  }
  Result<bool> directoryExists(const std::string& path) {
    return Ask([&](TQXIPIFInt& client) { return client.FTPDirExist(path.c_str(), m_retries, 0, 0); });
  }
  // Bytes modulo 2^32. The 0 of an attempt behind a failed one counts as a failure.
  Result<std::uint32_t> size(const std::string& path) {
    return Run<std::uint32_t>(
        [&](TQXIPIFInt& client) -> std::optional<std::uint32_t> {
          return path.empty() ? std::nullopt
                              : std::optional(client.FTPFileSize(path.c_str(), m_retries, 0, 0));
        },
        [](const std::optional<std::uint32_t>& size, const Report& report) {
          return size.has_value() && (*size != 0 || !report.isSet);
        });
  }

  // Copies a remote file over a local one, with progress; not FTPDownloadFile, which nobody can cancel.
  // `local` is a full path (on Windows with a drive, or of a share).
  Result<Done> download(const std::string& remote, const std::string& local) {
    return IsFull(local) ? copy(remote, InHostForm(local)) : Result<Done>{std::nullopt, NotFull()};
  }
  // A success means that the server has a file of that size, modulo 2^32; it is asked in the end. What has
  // been written behind the local file meanwhile may be there or not.
  Result<Done> upload(const std::string& local, const std::string& remote) {
    if (!IsFull(local)) return {std::nullopt, NotFull()};
    const std::uint64_t size = SizeOfLocal(local);
    Result<Done> copied = copy(InHostForm(local), remote);
    if (!copied || size == 0) return copied;
    const Result<std::uint32_t> arrived = this->size(remote);
    const std::uint64_t now = SizeOfLocal(local);
    const auto more = static_cast<std::uint32_t>(arrived.valueOr(0) - size);
    if (arrived && (more == 0 || (now > size && more <= now - size))) return copied;
    if (copied.report().isSet) return {std::nullopt, copied.report()};
    return {std::nullopt, arrived.report().number >= kInternetErrors ? arrived.report() : NotArrived()};
  }
  // A success of a copy to the server does not tell that it took all: upload() does.
  // Either path may be local, in the form that FTPCpyFile knows ("C:\dir\file", on Linux "Z:/dir/file").
  Result<Done> copy(const std::string& source, const std::string& destination) {
    return Do([&](TQXIPIFInt& client) {
      return client.FTPCpyFile(source.c_str(), destination.c_str(), nullptr, m_retries, 0, 0);
    });
  }
  // A success can leave the source: see FTPMovFile.
  Result<Done> move(const std::string& source, const std::string& destination) {
    return Do([&](TQXIPIFInt& client) {
      return client.FTPMovFile(source.c_str(), destination.c_str(), nullptr, m_retries, 0, 0);
    });
  }
  Result<Done> rename(const std::string& from, const std::string& to) {
    return Do([&](TQXIPIFInt& client) { return client.FTPRenameFile(from.c_str(), to.c_str(), m_retries); });
  }
  Result<Done> remove(const std::string& path) {
    return Do([&](TQXIPIFInt& client) { return client.FTPRmvFile(path.c_str(), 0, m_retries, 0, 0); });
  }
  // A failure also where nobody can tell whether the directory is there.
  Result<Done> removeDirectory(const std::string& path) {
    return Run<Done>(
        [&](TQXIPIFInt& client) { return DoneIf(client.FTPRmvDir(path.c_str(), m_retries, 0, 0)); },
        [](const std::optional<Done>& done, const Report& report) {
          return done.has_value() && report.number == 0;
        });
  }
  Result<Done> createDirectory(const std::string& path) {
    return Do([&](TQXIPIFInt& client) { return client.FTPCreateDir(path.c_str(), m_retries, 0, 0); });
  }
  // The path of the new directory.
  Result<std::string> createNewDirectory(const std::string& parent, const std::string& baseName) {
    return Run<std::string>([&](TQXIPIFInt& client) -> std::optional<std::string> {
      char created[256] = "";
      if (!client.FTPCreateNewDir(parent.c_str(), created, baseName.c_str(), m_retries)) return {};
      return created;
    });
  }

  // A remote file's content. One that is missing is a failure, and so is none behind a failed attempt.
  Result<Bytes> read(const std::string& path) {
    return Run<Bytes>(
        [&](TQXIPIFInt& client) -> std::optional<Bytes> {
          void* data = nullptr;
          std::uint32_t size = 0;
          const bool ok = client.FTPReadFile(path.c_str(), &data, &size, 0, m_retries, 0, 0) != 0;
          const auto giveBack = [&client](void* block) { client.FTPFreeFileAPI(block); };
          const std::unique_ptr<void, decltype(giveBack)> block(data, giveBack);
          if (!ok) return {};
          const auto* const bytes = static_cast<const std::byte*>(data);
          return Bytes(bytes, bytes + size);
        },
        [](const std::optional<Bytes>& content, const Report& report) {
          return content.has_value() && (!content->empty() || !report.isSet);
        });
  }
  // At most 4 GiB less one byte; none is a failure.
  Result<Done> write(const std::string& path, std::span<const std::byte> content) {
    return Write(path, content, 0);
  }
  Result<Done> append(const std::string& path, std::span<const std::byte> content) {
    return Write(path, content, 1);
  }

  // Gets a file from the web: HTTPDownloadFile, which tells of itself neither record nor line. `poll` gets no
  // progress. On Windows the library shows the user what the network has refused.
  Result<Done> fetch(const WebFile& from, const std::string& local) {
    if (!CanBeWritten(local)) return {std::nullopt, NotWritten()};
    return Do([&](TQXIPIFInt& client) -> QXBool {
      try {
        return client.HTTPDownloadFile(from.server.c_str(), from.object.c_str(), from.port, local.c_str(),
                                       nullptr, 0, 0) != 0;
      } catch (...) {  // the library's, of which no more is known than that the local file has failed
        return 0;
      }
    });
  }

 private:
  explicit Client(std::shared_ptr<detail::State> state) noexcept : m_state(std::move(state)) {}

  void Free() noexcept {
    if (const std::shared_ptr<detail::State> state = m_state) state->Free();
  }

  static constexpr std::uint32_t kInternetErrors = 12000;

  static std::string HostOf(const Login& login) {
    return login.tellsUploads ? login.host + ";progress=uploads" : login.host;
  }

  static Report NoClient() { return {true, false, 0, "there is no client", {}}; }
  static Report NotFull() { return {true, false, 0, "the local path is not a full one", {}}; }
  static Report NotWritten() { return {true, false, 0, "the local file cannot be written", {}}; }
  static const char* NoReason(const detail::State& state) noexcept {
    return state.Client() == nullptr ? "the client was destroyed" : "the library tells no reason";
  }
  static Report NotArrived() { return {true, false, 0, "the server has not got the whole file", {}}; }

  static std::optional<Done> DoneIf(QXBool answer) {
    return answer != 0 ? std::optional(Done{}) : std::nullopt;
  }

  struct AsAnswered {
    template <typename Value>
    bool operator()(const std::optional<Value>& value, const Report&) const {
      return value.has_value();
    }
  };

  // `operation(client)` answers a value or none, and `holds(value, report)` whether it is one. The lambdas of
  // a client that is destroyed meanwhile live until the library has come back.
  template <typename Value, typename Operation, typename Holds = AsAnswered>
  Result<Value> Run(Operation&& operation, Holds&& holds = {}) {
    const std::shared_ptr<detail::State> state = m_state;
    TQXIPIFInt* const client = get();
    if (client == nullptr) return {std::nullopt, NoClient()};
    state->Begin();
    std::optional<Value> value = operation(*client);
    Report report = state->End();
    if (state->Client() == nullptr || !holds(value, report)) value.reset();
    if (!value && report.text.empty()) report.text = NoReason(*state);
    return {std::move(value), std::move(report)};
  }

  template <typename Operation>
  Result<Done> Do(Operation&& operation) {
    return Run<Done>([&](TQXIPIFInt& client) { return DoneIf(operation(client)); });
  }

  template <typename Question>
  Result<bool> Ask(Question&& question) {
    return Run<bool>(
        [&](TQXIPIFInt& client) -> std::optional<bool> { return question(client) != 0; },
        [](const std::optional<bool>& yes, const Report& report) { return *yes || report.number == 0; });
  }

  Result<Done> Write(const std::string& path, std::span<const std::byte> content, QXBool append) {
    return Run<Done>([&](TQXIPIFInt& client) -> std::optional<Done> {
      const auto size = static_cast<std::uint32_t>(content.size());
      if (size != content.size()) return {};
      return DoneIf(client.FTPWriteFile(path.c_str(), content.data(), size, append, 0, m_retries, 0, 0));
    });
  }

  // 0 where there is none.
  static std::uint64_t SizeOfLocal(const std::string& local) {
    std::ifstream file(local, std::ios::binary | std::ios::ate);
    return file.is_open() ? static_cast<std::uint64_t>(file.tellg()) : 0;
  }

  // Makes sure that the library need not throw. Leaves the file as it was, also where there was none.
  static bool CanBeWritten(const std::string& local) {
    if (std::fstream(local, std::ios::binary | std::ios::in | std::ios::out).is_open()) return true;
    std::ofstream made(local, std::ios::binary | std::ios::app);
    const bool isEmpty = made.is_open() && made.tellp() == std::streampos(0);
    const bool canBeWritten = made.is_open();
    made.close();
    if (isEmpty) std::remove(local.c_str());
    return canBeWritten;
  }

  // A copy takes a path for a local one by its drive, or by the two backslashes of a share.
#if defined(_WIN32)
  static bool IsFull(const std::string& local) {
    return local.substr(1, 1) == ":" || local.starts_with("\\\\");
  }
  static const std::string& InHostForm(const std::string& local) { return local; }
#else
  static bool IsFull(const std::string& local) { return local.starts_with('/'); }
  static std::string InHostForm(const std::string& local) { return "Z:" + local; }
#endif

  std::shared_ptr<detail::State> m_state;
  std::uint32_t m_retries = 0;
};

}  // namespace qx
