// SPDX-License-Identifier: MIT
// Whole conversations with a hostile server. Whatever it does, the client comes to an end, takes each reply
// for that of its own command, calls no file whole that is not, and ends no upload in good order that has
// failed.
#include <algorithm>
#include <array>
#include <chrono>
#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "framework/internet/FtpConnection.h"
#include "framework/internet/FtpFileFind.h"
#include "framework/internet/InternetException.h"
#include "framework/internet/InternetFile.h"
#include "framework/internet/InternetSession.h"
#include "framework/internet/ftp/FtpTraits.h"
#include "framework/internet/net/FtpErrand.h"
#include "framework/platform/last_error.h"
#include "framework/platform/stop_token.h"
#include "tests/fuzz/HostileFtp.h"
#include "tests/fuzz/Invariants.h"

namespace {

using fuzz::Choices;
using fuzz::HostileFtp;
using fuzz::require;
using testing_support::MemoryNetwork;

constexpr bool kWindows = std::filesystem::path::preferred_separator == '\\';
constexpr const char* kNowhere = kWindows ? "NUL" : "/dev/null";
constexpr std::array<std::uint32_t, 13> kErrors{8,     18,    87,    12002, 12003, 12014, 12015,
                                                12019, 12029, 12030, 12031, 12110, 12152};

// Counts the control connections that it is told of.
class CountingSession : public CInternetSession {
 public:
  CountingSession() { EnableStatusCallback(); }
  ~CountingSession() override { Close(); }
  void OnStatusCallback(std::uintptr_t, std::uint32_t status, void*, std::uint32_t) override {
    if (status == internet::kStatusConnecting) ++open;
    if (status == internet::kStatusClosed) --open;
  }
  int open = 0;
};

class Client {
 public:
  Client(Choices& choices, HostileFtp& server, bool passive)
      : choices_(choices), server_(server), passive_(passive) {}

  void perform(unsigned operation, unsigned errand);
  // How many control connections it was told of that have not been closed, once all are.
  int openAtEnd() {
    connection_.reset();
    session_.Close();
    return session_.open;
  }

 private:
  template <class Work>
  bool succeeds(const Work& work);
  void judge(std::uint32_t error, const std::string& text) const;
  [[nodiscard]] bool done(std::string_view verb) const;
  const HostileFtp::Transfer* transfer() const;
  [[nodiscard]] bool isWhole(const HostileFtp::Transfer& sent) const;
  template <class Promise>
  void requireOfOne(const Promise& promise) const;

  template <class Work>
  void change(std::string_view verb, const Work& work);
  void connect(internet::FtpErrand::Kind errand);
  void askDirectory();
  void read();
  void readPart();
  void get();
  template <class Work>
  void upload(const std::string& content, const Work& work);
  void write();
  void find(const char* pattern);

  Choices& choices_;
  HostileFtp& server_;
  const bool passive_;
  CountingSession session_;
  std::unique_ptr<CFtpConnection> connection_;
  // What the server had seen before the current operation, and before the login if that is the one before it:
  // it may have taken the operation's first commands along.
  std::size_t commandsBefore_ = 0;
  std::size_t commandsBeforeLogin_ = SIZE_MAX;
  std::size_t transfersBefore_ = 0;
};

// `work` answers false with the last error set, or throws an exception that tells it.
template <class Work>
bool Client::succeeds(const Work& work) {
  commandsBefore_ = std::min(server_.commands().size(), std::exchange(commandsBeforeLogin_, SIZE_MAX));
  transfersBefore_ = server_.transfers().size();
  try {
    if (work()) return true;
    judge(platform::lastError(), connection_->LastServerText());
  } catch (CInternetException* exception) {
    char text[2048];
    static_cast<void>(exception->GetErrorMessage(text, sizeof text));
    const std::uint32_t error = exception->m_dwError;
    exception->Delete();
    judge(error, text);
  }
  return false;
}

// A refusal is one of a command of this operation, and that command's own. What agrees on something may have
// gone out along with an operation that has failed before its turn.
void Client::judge(std::uint32_t error, const std::string& text) const {
  require(std::find(kErrors.begin(), kErrors.end(), error) != kErrors.end());
  if (error != internet::kExtendedError || !server_.orderly() || !server_.plainListings()) return;
  const std::size_t mark = text.rfind('#');
  require(mark != std::string::npos);
  const std::size_t command = std::stoul(text.substr(mark + 1));
  require(command < server_.commands().size());
  const HostileFtp::Command& refused = server_.commands()[command];
  require(command >= commandsBefore_ || refused.verb == "TYPE" || refused.verb == "EPSV");
  require(std::to_string(refused.final) == text.substr(0, 3));
}

// The server has done what this operation has asked by that verb.
bool Client::done(std::string_view verb) const {
  const auto& commands = server_.commands();
  return std::any_of(commands.begin() + static_cast<std::ptrdiff_t>(commandsBefore_), commands.end(),
                     [&](const auto& each) { return each.verb == verb && each.final / 100 == 2; });
}

// Of this operation; null where the server has not begun any.
const HostileFtp::Transfer* Client::transfer() const {
  const auto& transfers = server_.transfers();
  return transfers.size() > transfersBefore_ ? transfers.back().get() : nullptr;
}

// The size may stand for the lost word of the server.
bool Client::isWhole(const HostileFtp::Transfer& sent) const {
  return (sent.claimed || sent.content == server_.fileContent()) && sent.content.size() >= sent.announced;
}

// Of this operation's, if there are any: a server that has taken RETR without a word gets it twice.
template <class Promise>
void Client::requireOfOne(const Promise& promise) const {
  const auto& transfers = server_.transfers();
  const auto first = transfers.begin() + static_cast<std::ptrdiff_t>(transfersBefore_);
  require(first == transfers.end() ||
          std::any_of(first, transfers.end(), [&](const auto& each) { return promise(*each); }));
}

// --- Operations ---

template <class Work>
void Client::change(std::string_view verb, const Work& work) {
  if (succeeds(work)) require(!server_.orderly() || done(verb));
}

void Client::askDirectory() {
  std::string directory;
  if (!succeeds([&] { return connection_->GetCurrentDirectory(directory); }) || !server_.orderly()) return;
  const std::size_t command = std::stoul(directory.substr(std::string_view("/at").size()));
  require(command >= commandsBefore_ && server_.commands()[command].verb == "PWD");
}

void Client::read() {
  static constexpr std::size_t kBlocks[] = {4096, 1, 100, 1'000'000};
  std::vector<char> block(choices_.from(kBlocks));
  std::string content;
  const bool good = succeeds([&] {
    const std::unique_ptr<CInternetFile> file(connection_->OpenFile("/f", internet::kGenericRead));
    const auto size = static_cast<std::uint32_t>(block.size());
    while (const std::uint32_t count = file->Read(block.data(), size)) content.append(block.data(), count);
    return file->Close();
  });
  if (!good || !server_.orderly()) return;
  require(transfer() || content.empty());
  requireOfOne([&](const auto& sent) { return content == sent.content && isWhole(sent); });
}

void Client::readPart() {
  const std::size_t size = choices_.of(4) * 100;
  std::vector<char> block(size + 1);
  succeeds([&] {
    const std::unique_ptr<CInternetFile> file(connection_->OpenFile("/f", internet::kGenericRead));
    file->Read(block.data(), static_cast<std::uint32_t>(size));
    return file->Close();
  });
}

void Client::get() {
  const bool good = succeeds([&] { return connection_->GetFile("/f", kNowhere, false); });
  if (good && server_.orderly()) requireOfOne([this](const auto& sent) { return isWhole(sent); });
}

// The end of the data in good order tells the server that it has the whole.
template <class Work>
void Client::upload(const std::string& content, const Work& work) {
  const auto endsWholeAlone = [&] {
    const HostileFtp::Transfer* const taken = transfer();
    require(!taken || !taken->ended || taken->data->sent == content.size());
  };
  bool good = false;
  try {
    good = succeeds(work);
  } catch (const platform::OperationStopped&) {
    endsWholeAlone();
    throw;
  }
  endsWholeAlone();
  if (!good || !server_.orderly()) return;
  const HostileFtp::Transfer* const taken = transfer();
  // The size may stand for the lost word of the server here as well.
  const bool sizeIsTold = done("SIZE") && server_.fileContent().size() == content.size();
  require(taken && taken->ended && (taken->claimed || sizeIsTold));
}

void Client::write() {
  static constexpr std::size_t kSizes[] = {1000, 0, 1, 100'000};
  const std::string content(choices_.from(kSizes), 'u');
  const std::size_t block = content.size() / (choices_.of(3) + 1) + 1;
  upload(content, [&] {
    const std::unique_ptr<CInternetFile> file(connection_->OpenFile("/up", internet::kGenericWrite));
    for (std::size_t at = 0; at < content.size(); at += block) {
      file->Write(content.data() + at, static_cast<std::uint32_t>(std::min(block, content.size() - at)));
    }
    return file->Close();
  });
}

void Client::find(const char* pattern) {
  succeeds([&] {
    CFtpFileFind finder(connection_.get());
    if (!finder.FindFile(pattern)) return false;
    for (bool more = true; more;) {
      more = finder.FindNextFile();
      fuzz::requireSoundName(finder.GetFileName());
      static_cast<void>(finder.GetLastWriteTime());
    }
    return true;
  });
}

void Client::connect(internet::FtpErrand::Kind errand) {
  static constexpr const char* kPaths[] = {"", "/d", "/d/*", "/f", "/up", "/up", "/f", ""};
  const char* const path = kPaths[static_cast<std::size_t>(errand)];
  connection_.reset();
  succeeds([&] {
    connection_.reset(session_.GetFtpConnection("127.0.0.1", "u", "p", 21, passive_, {errand, path}));
    return true;
  });
  commandsBeforeLogin_ = commandsBefore_;
  if (connection_) connection_->ReopenOnDemand(true);
}

void Client::perform(unsigned operation, unsigned errand) {
  if (!connection_) operation = 0;
  switch (operation) {
    case 0:
      return connect(static_cast<internet::FtpErrand::Kind>(errand % 8));
    case 1:
      return change("DELE", [&] { return connection_->Remove("/f"); });
    case 2:
      return change("MKD", [&] { return connection_->CreateDirectory("/d"); });
    case 3:
      return change("RMD", [&] { return connection_->RemoveDirectory("/d"); });
    case 4:
      return change("RNTO", [&] { return connection_->Rename("/f", "/g"); });
    case 5:
      return change("CWD", [&] { return connection_->SetCurrentDirectory("/d"); });
    case 6:
      return askDirectory();
    case 7:
      return read();
    case 8:
      return readPart();
    case 9:
      return get();
    case 10:
      return write();
    case 11:
      return upload({}, [&] { return connection_->PutFile(kNowhere, "/up"); });
    case 12:
      return find("/d/*");
    case 13:
      return find("/d");
    case 14:
      return find("name");
    default:
      static_cast<void>(connection_->WaitIdle(std::chrono::milliseconds(choices_.of(256))));
  }
}

// What the process has learnt of the server before: nothing, that it takes packets, also at a login, or what
// it can do besides.
void learnBefore(unsigned known) {
  internet::changeCachedTraits("127.0.0.1:21:u", [known](internet::FtpTraits& traits) {
    traits.takesPackets = known > 0;
    traits.takesLoginPackets = traits.asksPassword = known > 1;
    traits.featuresKnown = traits.mlst = traits.utf8 = known > 2;
    traits.extendedPassiveWorks = traits.activeWorks = known > 2;
  });
}

}  // namespace

// The first bytes: what the conversation is like, when the client is told to stop (0 = never), its operations
// with the errands that it connects for. The server does with the rest what it likes.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static constexpr std::size_t kSizes[] = {0, 7, 1'000, 5'000};
  constexpr std::size_t kHead = 10;
  std::string_view bytes = fuzz::textOf(data, size);
  Choices head(bytes.substr(0, kHead));
  Choices choices(bytes.substr(std::min(kHead, size)));
  internet::forgetCachedTraits();

  const unsigned way = head.of(8);
  const bool passive = way % 2 == 0;
  learnBefore(way / 2);
  HostileFtp server(choices, {.features = head.of(2) == 0, .fileSize = head.from(kSizes)});
  MemoryNetwork network(server, head.of(2) == 1);
  server.join(network);
  platform::StopToken token;
  const platform::StopToken::Scope scope(&token);
  network.stopAt(head.of(256));
  Client client(choices, server, passive);
  try {
    for (std::size_t at = 5; at < kHead; ++at) {
      const unsigned choice = head.of(256);
      client.perform(choice % 16, choice / 16);
    }
  } catch (const platform::OperationStopped&) {
    require(token.raised());
  }
  // A stopped client says nothing more.
  require(client.openAtEnd() == 0 || token.raised());
  require(network.openSockets() == 0);
  return 0;
}
