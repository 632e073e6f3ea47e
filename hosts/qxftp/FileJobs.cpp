// SPDX-License-Identifier: MIT
#include "hosts/qxftp/FileJobs.h"

#include <algorithm>
#include <map>

#include "hosts/qxftp/Changes.h"
#include "hosts/shared/Interrupt.h"
#include "hosts/shared/Names.h"

namespace qxftp {
namespace {

namespace fs = std::filesystem;

constexpr int kLossesInARow = 2;

bool movesFile(const FileJob& job) {
  return job.action == JobAction::download || job.action == JobAction::upload;
}

// "download" and the others, for JSON.
const char* nameOf(JobAction action) {
  switch (action) {
    case JobAction::download:
      return "download";
    case JobAction::upload:
      return "upload";
    case JobAction::makeLocalFolder:
    case JobAction::makeRemoteFolder:
      return "makeFolder";
    case JobAction::removeLocal:
    case JobAction::removeRemoteFile:
    case JobAction::removeRemoteFolder:
      break;
  }
  return "remove";
}

std::string sourceText(const FileJob& job) {
  const bool isLocal = job.action == JobAction::upload || job.action == JobAction::makeLocalFolder ||
                       job.action == JobAction::removeLocal;
  return isLocal ? hosts::shown(job.local) : job.place.text;
}

void needLocal(const std::error_code& error) {
  if (error) fail(error.message());
}

std::optional<std::uint64_t> sumOf(const std::vector<FileJob>& jobs) {
  std::uint64_t sum = 0;
  for (const FileJob& job : jobs) {
    if (movesFile(job) && !job.size) return {};
    if (movesFile(job)) sum += *job.size;
  }
  return sum;
}

class Runner {
 public:
  Runner(Context& context, const std::vector<FileJob>& jobs)
      : m_context(context),
        m_jobs(jobs),
        m_display(!context.settings().isJson && !context.settings().isVerbose,
                  static_cast<std::uint64_t>(std::ranges::count_if(jobs, movesFile)), sumOf(jobs)) {
    m_context.onProgress([this](const qx::Progress& progress) { m_display.moved(progress.transferred); });
  }
  ~Runner() { m_context.onProgress(nullptr); }
  Runner(const Runner&) = delete;
  Runner& operator=(const Runner&) = delete;

  void run() {
    for (std::size_t i = 0; i < m_jobs.size(); ++i) {
      if (mayGoOn()) {
        m_context.one(sourceText(m_jobs[i]), [&](Json& result) { carryOut(m_jobs[i], result); });
      } else {
        return m_context.giveUp(m_jobs[i].place, m_jobs.size() - i - 1);
      }
    }
    if (std::ranges::any_of(m_jobs, movesFile)) m_display.sum();
  }

 private:
  bool mayGoOn() const { return !hosts::isInterrupted() && !m_isDiskFull && m_losses < kLossesInARow; }

  void carryOut(const FileJob& job, Json& result) {
    result["action"] = nameOf(job.action);
    std::error_code error;
    switch (job.action) {
      case JobAction::download:
      case JobAction::upload:
        return move(job, result);
      case JobAction::makeLocalFolder:
        fs::create_directories(job.local, error);
        return needLocal(error);
      case JobAction::makeRemoteFolder:
        return makeDirectory(client(job), job.place.path());
      case JobAction::removeLocal:
        fs::remove(job.local, error);
        return needLocal(error);
      case JobAction::removeRemoteFile:
        if (!wentWithLink(job)) removeFile(client(job), job.place.path());
        return;
      case JobAction::removeRemoteFolder:
        if (!wentWithLink(job)) removeDirectory(client(job), job.place.path());
        return;
    }
  }

  // A link goes alone: nothing that seems to be in it is removed.
  bool wentWithLink(const FileJob& job) {
    if (job.within.empty()) return false;
    const bool isFile = job.action == JobAction::removeRemoteFile;
    const std::string lowest = isFile ? hosts::folderOf(job.place.path()) : job.place.path();
    for (std::size_t end = job.within.size(); end != std::string::npos; end = lowest.find('/', end + 1)) {
      if (wasLink(job, lowest.substr(0, end))) return true;
    }
    return wasLink(job, lowest);
  }

  bool wasLink(const FileJob& job, const std::string& folder) {
    const auto known = m_wasLink.find(folder);
    if (known != m_wasLink.end()) return known->second;
    const bool wasLink = removeLink(client(job), m_context.watch(), folder);
    m_context.refusal().forget();
    return m_wasLink[folder] = wasLink;
  }

  qx::Client& client(const FileJob& job) { return m_context.connected(job.place); }

  bool isThere(const FileJob& job) {
    std::error_code error;
    return job.action == JobAction::download ? fs::exists(fs::symlink_status(job.local, error))
                                             : need(client(job).fileExists(job.place.path()));
  }

  void move(const FileJob& job, Json& result) {
    const bool isDown = job.action == JobAction::download;
    result["to"] = isDown ? hosts::shown(job.local) : job.place.text;
    if (job.keepsExisting && isThere(job)) {
      result["kept"] = true;
      return;
    }
    m_display.begin(hosts::lastPart(job.place.path()), job.size);
    const hosts::Outcome outcome =
        isDown ? hosts::download(client(job), {job.place.path(), job.size, job.time}, job.local)
               : hosts::upload(client(job), job.local, job.place.path());
    m_display.end(static_cast<bool>(outcome));
    note(outcome);
    if (job.size) result["bytes"] = *job.size;
  }

  void note(const hosts::Outcome& outcome) {
    m_losses = outcome.isServerLost ? m_losses + 1 : 0;
    m_isDiskFull = outcome.isDiskFull;
    need(outcome);
  }

  Context& m_context;
  const std::vector<FileJob>& m_jobs;
  Display m_display;
  int m_losses = 0;
  bool m_isDiskFull = false;
  std::map<std::string, bool> m_wasLink;  // of folders that are removed: which was one, and is gone
};

}  // namespace

void runJobs(Context& context, const std::vector<FileJob>& jobs) { Runner(context, jobs).run(); }

}  // namespace qxftp
