// SPDX-License-Identifier: MIT
// Contract: local files by narrow path. Failures set the thread's last error (platform/last_error.h): 2 for a
// missing file, 3 for a missing folder and for a null or empty path, 5 for a folder in place of a file.
// On POSIX a drive prefix names the root ("Z:/home/me/f", any letter) and a backslash is a separator, so
// names are built the same way on both builds.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

namespace platform {

enum class FileAccess { read, write, readWrite };
enum class FileCreation {
  openExisting,
  createNew,    // fails with kErrorFileExists when the file is there
  createAlways  // truncates an existing file
};

inline constexpr std::uint32_t kFileAttributeReadOnly = 0x01;
inline constexpr std::uint32_t kFileAttributeArchive = 0x20;
inline constexpr std::uint32_t kFileAttributeNormal = 0x80;

class File {
 public:
  File() noexcept = default;
  ~File();  // close(), leaving the last error alone
  File(File&& other) noexcept;
  File& operator=(File&& other) noexcept;

  // Closes a file that is open. Others may read and write meanwhile.
  // `attributes` are those of a file that gets created (kFileAttribute...; POSIX honours read-only).
  [[nodiscard]] bool open(const char* path, FileAccess access, FileCreation creation,
                          std::uint32_t attributes = kFileAttributeNormal) noexcept;
  [[nodiscard]] bool isOpen() const noexcept;

  // Bytes read, 0 at the end, -1 on failure. Interrupted calls are repeated.
  [[nodiscard]] std::int64_t read(void* buffer, std::size_t size) noexcept;
  // Writes all or fails.
  [[nodiscard]] bool write(const void* data, std::size_t size) noexcept;
  // -1 on failure.
  [[nodiscard]] std::int64_t size() const noexcept;
  // The new position, -1 on failure.
  [[nodiscard]] std::int64_t seekToEnd() noexcept;
  [[nodiscard]] std::int64_t seekTo(std::uint64_t position) noexcept;
  // From now on the file is for its owner alone (POSIX: mode 0600; on Windows its folder is). False on
  // failure.
  [[nodiscard]] bool keepToOwner() noexcept;
  // False when the system reports a late write error on closing. Closing a closed file is true.
  bool close() noexcept;

  // HANDLE on Windows, descriptor on POSIX.
  [[nodiscard]] std::intptr_t nativeHandle() const noexcept { return handle_; }

 private:
  static constexpr std::intptr_t kNone = -1;
  std::intptr_t handle_ = kNone;
};

[[nodiscard]] bool deleteFile(const char* path) noexcept;
// Makes a folder that is the user's alone, or makes sure that the one which is there is: on POSIX it gets the
// mode 0700, and a link, or what belongs to another user, is refused (5); `path` ends in no separator. On
// Windows whoever may use the folder above may use this one.
[[nodiscard]] bool createOwnDirectory(const char* path) noexcept;
// Sets the attributes; without kFileAttributeReadOnly a read-only file becomes writable (POSIX: chmod u+w).
// No link is followed.
[[nodiscard]] bool setFileAttributes(const char* path, std::uint32_t attributes) noexcept;
// What shows, without reading it, that a file's content has changed: as a rule it has where these differ.
struct FileStamp {
  std::uint64_t size = 0;
  std::int64_t writtenAt = 0;  // in a unit of the system's

  bool operator==(const FileStamp&) const = default;
};
// None where there is no such file. Leaves the last error alone.
[[nodiscard]] std::optional<FileStamp> fileStamp(const char* path) noexcept;
// The user's temporary folder with a trailing separator, NUL-terminated, into `buffer`. On POSIX that is
// $TMPDIR or, without one, a folder of the user's own below /tmp, made as by createOwnDirectory.
// The length without terminator; 0 with the last error set when it fails or does not fit.
[[nodiscard]] std::size_t temporaryFolder(char* buffer, std::size_t size) noexcept;

}  // namespace platform
