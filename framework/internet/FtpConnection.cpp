// SPDX-License-Identifier: MIT
#include "framework/internet/FtpConnection.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "framework/internet/InternetFile.h"
#include "framework/internet/Raising.h"
#include "framework/internet/WholeFile.h"
#include "framework/internet/ftp/FindRule.h"
#include "framework/internet/ftp/FtpControl.h"
#include "framework/internet/ftp/FtpFileCopy.h"
#include "framework/internet/ftp/FtpTransfer.h"
#include "framework/internet/ftp/HostNames.h"
#include "framework/internet/ftp/RemotePart.h"
#include "framework/internet/net/Failure.h"
#include "framework/platform/last_error.h"
#include "framework/text/AsciiText.h"

using internet::FtpControl;
using internet::FtpTransfer;
using internet::nameForHost;
using internet::nameForServer;

namespace {

using ControlPtr = std::shared_ptr<FtpControl>;

void checkPath(const char* path) { FtpControl::checkArgument(path ? std::string_view(path) : ""); }

bool refused() {
  platform::setLastError(platform::kErrorInvalidParameter);
  return false;
}

// The public operations hold the control connection by a reference of their own: a notification may delete
// the object that they were called on.
bool simpleCommand(const ControlPtr control, std::string_view verb, const char* path) {
  return internet::answer([&] {
    checkPath(path);
    control->request([&] { control->require(verb, nameForServer(*control, path)); });
  });
}

// In doubt it is none.
bool isLink(FtpControl& control, const std::string& path) {
  try {
    return internet::FindRule(control, 0).isLink(path);
  } catch (const internet::Failure&) {
    if (!control.isOpen()) throw;
    return false;
  }
}

// A link to a directory is no directory for RMD. DELE takes the link away and leaves alone what it leads to.
void removeDirectory(FtpControl& control, const std::string& path) {
  const internet::FtpReply reply = control.command("RMD", path);
  if (!reply.refused()) return;
  if (reply.code < 500 || !isLink(control, path)) control.raise(reply);
  control.require("DELE", path);
}

// `begin(control, name)` answers the transfer, which has begun.
template <typename Begin>
CInternetFile* openFile(const ControlPtr control, const char* path, Begin&& begin) {
  std::unique_ptr<CInternetFile> file;
  internet::raising([&] {
    checkPath(path);
    control->request([&] {
      auto transfer = begin(control, nameForServer(*control, path));
      control->holdForFile(true);
      file = std::make_unique<CInternetFile>(std::move(transfer));
    });
  });
  return file.release();
}

}  // namespace

CFtpConnection::CFtpConnection(ControlPtr control) noexcept : m_control(std::move(control)) {}

CFtpConnection::~CFtpConnection() { Close(); }

bool CFtpConnection::Remove(const char* path) { return simpleCommand(m_control, "DELE", path); }

bool CFtpConnection::CreateDirectory(const char* path) { return simpleCommand(m_control, "MKD", path); }

void CFtpConnection::WillCreate(std::span<const std::string> paths) {
  const internet::FtpTraits& known = m_control->knownTraits();
  const bool isName = std::all_of(paths.begin(), paths.end(), &ascii::isAscii);
  if (!known.takesPackets || !(isName || known.utf8)) return;
  for (const std::string& path : paths) {
    if (!m_control->foresee("MKD", nameForServer(*m_control, path))) return;
  }
}

bool CFtpConnection::RemoveDirectory(const char* path) {
  return internet::answer([&, control = m_control] {
    checkPath(path);
    control->request([&] { removeDirectory(*control, nameForServer(*control, path)); });
  });
}

bool CFtpConnection::Rename(const char* from, const char* to) {
  return internet::answer([&, control = m_control] {
    checkPath(from);
    checkPath(to);
    control->request([&] {
      const std::string source = nameForServer(*control, from);
      const std::string target = nameForServer(*control, to);
      const internet::FtpReply named = control->command("RNFR", source);
      if (named.refused() && named.code != 350) control->raise(named);
      control->require("RNTO", target);
    });
  });
}

bool CFtpConnection::GetCurrentDirectory(std::string& directory) {
  return internet::answer([&, control = m_control] {
    std::string path;
    control->request([&] { path = nameForHost(*control, control->askDirectory()); });
    directory = std::move(path);
  });
}

bool CFtpConnection::SetCurrentDirectory(const char* path) {
  return internet::answer([&, control = m_control] {
    checkPath(path);
    control->request([&] { control->changeDirectory(nameForServer(*control, path)); });
  });
}

bool CFtpConnection::GetFile(const char* remote, const char* local, bool failIfExists,
                             std::uint32_t attributes, std::uint32_t, std::uintptr_t) {
  if (!local) return refused();
  CFileDownload file(local, failIfExists, attributes);
  return GetFile(remote, file);
}

bool CFtpConnection::GetFile(const char* remote, CFileDownload& file) {
  return internet::answer([&, control = m_control] {
    checkPath(remote);
    control->request([&] { file.m_file->run(*control, nameForServer(*control, remote)); });
  });
}

bool CFtpConnection::PutFile(const char* local, const char* remote, std::uint32_t, std::uintptr_t) {
  if (!local) return refused();
  CFileUpload file(local);
  return PutFile(file, remote);
}

bool CFtpConnection::PutFile(CFileUpload& file, const char* remote) {
  return internet::answer([&, control = m_control] {
    checkPath(remote);
    control->request([&] { file.m_file->run(*control, nameForServer(*control, remote)); });
  });
}

CInternetFile* CFtpConnection::OpenFile(const char* path, std::uint32_t access, std::uint32_t,
                                        std::uintptr_t) {
  const bool read = access == internet::kGenericRead;
  const bool append = access == internet::kFileAppendData;
  internet::raising([&] {
    if (!read && !append && access != internet::kGenericWrite)
      internet::fail(platform::kErrorInvalidParameter);
  });
  return openFile(m_control, path, [&](const ControlPtr& control, const std::string& name) {
    const auto kind = read ? FtpTransfer::Kind::download : FtpTransfer::Kind::upload;
    auto transfer = std::make_unique<FtpTransfer>(control, kind);
    if (append) transfer->startBehindContent();
    transfer->open(name);
    return transfer;
  });
}

CInternetFile* CFtpConnection::OpenFile(const char* path, CFilePart& part) {
  return openFile(m_control, path, [&](const ControlPtr& control, const std::string& name) {
    auto transfer = std::make_unique<FtpTransfer>(control, FtpTransfer::Kind::download);
    part.m_part->open(*transfer, name);
    return transfer;
  });
}

bool CFtpConnection::WaitIdle(std::chrono::milliseconds duration) {
  const ControlPtr control = m_control;
  return control->waitIdle(duration);
}

void CFtpConnection::ReopenOnDemand(bool reopens) noexcept { m_control->reopenOnDemand(reopens); }

void CFtpConnection::Close() noexcept {
  const ControlPtr control = m_control;
  control->close();
}

std::string CFtpConnection::LastServerText() const { return m_control->lastServerText(); }
