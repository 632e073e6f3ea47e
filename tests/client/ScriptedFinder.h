// SPDX-License-Identifier: MIT
// A finder that answers from the test's own entries, without a server.
#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "framework/internet/FtpFileFind.h"

struct Found {
  std::string name;
  bool isDirectory = false;
  std::uint64_t length = 0;
  std::uint32_t attributes = 0;
  std::int64_t time = 0;

  static Found file(std::string name, std::uint64_t length = 0) {
    return {.name = std::move(name), .length = length};
  }
  static Found directory(std::string name) { return {.name = std::move(name), .isDirectory = true}; }
};

class ScriptedFinder final : public CFtpFileFind {
 public:
  ScriptedFinder() : CFtpFileFind(nullptr) {}

  // The entries for a pattern. None: FindFile is false with the last error 18. May throw.
  std::function<std::vector<Found>(const std::string& pattern)> answer =
      [](const std::string&) -> std::vector<Found> { return {}; };
  // Gives the last entry again and again, as a broken server does.
  bool repeatsTheLastEntry = false;

  // How far the other two times lie from that of an entry, in seconds.
  std::int64_t createdBefore = 0;
  std::int64_t accessedAfter = 0;

  // What the client asked.
  std::vector<std::string> patterns;
  std::vector<std::uint32_t> flags;
  int walked = 0;
  int closed = 0;

  void answersWith(std::vector<Found> entries) {
    answer = [entries = std::move(entries)](const std::string&) { return entries; };
  }
  // Throws an internet exception the first `times` times; what it answered before comes afterwards.
  void throwsAtFirst(std::uint32_t error, int times);

  bool FindFile(const char* pattern, std::uint32_t flags) override;
  bool FindNextFile() override;
  std::size_t EntriesLeft() const noexcept override;
  std::string GetFileName() const override { return current().name; }
  bool IsDirectory() const override { return current().isDirectory; }
  std::uint64_t GetLength() const override { return current().length; }
  bool MatchesMask(std::uint32_t mask) const override { return (current().attributes & mask) != 0; }
  std::int64_t GetLastWriteTime() override { return current().time; }
  std::int64_t GetCreationTime() override { return current().time - createdBefore; }
  std::int64_t GetLastAccessTime() override { return current().time + accessedAfter; }
  void Close() noexcept override { ++closed; }

 private:
  [[nodiscard]] const Found& current() const;

  std::vector<Found> m_entries;
  std::size_t m_next = 0;
};
