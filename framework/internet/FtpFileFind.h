// SPDX-License-Identifier: MIT
// Finds files and directories on a server. FindFile takes the whole listing into memory and frees the data
// connection; the walk over the entries does no I/O. The constructor and the destructor do none either.
// Without a connection there is nothing to find (12019). A link in a listing is what it leads to, where the
// server tells (ftp/OpenRows.h).
//   FindFile("/pub/*.*")  everything in /pub, also names without a dot
//   FindFile("/pub")      the content of /pub when it is a directory, that one entry when it is a file
//   FindFile("*.*")       the current directory
//   FindFile("")          the same as "*"
// A connection that reopens on demand may have been closed by the server meanwhile, for its idleness for one:
// when that shows before the server has answered anything, the finder logs in again, once and without
// notifications, returns to the current directory and asks anew. When the log-in fails, its failure is that
// of the call.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace internet {
class FtpControl;
struct FindState;
}  // namespace internet

class CFtpConnection;

class CFtpFileFind {
 public:
  explicit CFtpFileFind(CFtpConnection* connection, std::uintptr_t context = 1);
  virtual ~CFtpFileFind();
  CFtpFileFind(const CFtpFileFind&) = delete;
  CFtpFileFind& operator=(const CFtpFileFind&) = delete;

  // True when at least one entry was found. Nothing there: false, last error 18. The server's refusal: false,
  // 12003; likewise 87 for a path that cannot be sent, 12110 while a file is open. Trouble of the connection
  // (12002, 12030, 12031, ...): throws CInternetException*. So does a listing that is known not to be whole:
  // 12003 with the server's text when it says so, 12030 when it ends in the middle of a row, 12152 when it is
  // beyond the limits or not one row of it can be read.
  virtual bool FindFile(const char* pattern = nullptr, std::uint32_t flags = 0);
  // A hint for the next FindFile: its path is most likely a directory's.
  void ExpectContent() noexcept { m_expectsContent = true; }
  // Makes the next entry current. False when that entry is the last one (it is still the current entry) or
  // when there is none at all (last error 18).
  virtual bool FindNextFile();

  // The path was that of a directory: the entries are what it holds, and none of them is the path's own, not
  // even one of its name. False for the matches of a pattern.
  virtual bool IsContent() const noexcept;

  // How many entries FindNextFile has still to make current.
  virtual std::size_t EntriesLeft() const noexcept;

  // Of the current entry; before the first FindNextFile there is none ("" / 0 / false).
  virtual std::string GetFileName() const;  // without directory
  virtual bool IsDirectory() const;
  virtual std::uint64_t GetLength() const;  // bytes; 0 when the server did not tell
  // True when the entry has at least one of these attribute bits (0x1 read-only, 0x2 hidden, 0x4 system,
  // 0x10 directory, 0x20 archive, 0x80 normal, 0x100 temporary, 0x800 compressed).
  virtual bool MatchesMask(std::uint32_t mask) const;
  // Seconds since 1970-01-01 UTC, or of the server's zone where that is not known; 0 when unknown. May ask
  // the server (MDTM) where the entry came from a size query.
  virtual std::int64_t GetLastWriteTime();
  virtual std::int64_t GetCreationTime() { return GetLastWriteTime(); }
  virtual std::int64_t GetLastAccessTime() { return GetLastWriteTime(); }

  // Forgets the entries. The finder can be used again.
  virtual void Close() noexcept;

 private:
  std::shared_ptr<internet::FtpControl> m_control;
  bool m_expectsContent = false;
  // A running call holds it too: a status callback may delete the finder.
  std::shared_ptr<internet::FindState> m_state;
};
