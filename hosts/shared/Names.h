// SPDX-License-Identifier: MIT
// Names of files here and on servers. A server's name is a text of the library: bytes on Linux; on Windows in
// the code page of the process, or in UTF-8 where that lacks a character.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace hosts {

enum class NameRules { posix, windows };
NameRules namesHere();

// Why no local file or folder can have the name, which a server has told: it would be elsewhere, or something
// else. Nothing where one can.
std::optional<std::string> whyNotLocal(std::string_view name, NameRules rules = namesHere());
// Why nothing on a server can be reached by the name: the library takes it for a path, or for none.
std::optional<std::string> whyNotRemote(std::string_view name);

// Two names that are the same to the system come out the same, and so do paths. Windows regards no case.
std::string folded(std::string_view name, NameRules rules = namesHere());
// In capitals, of all letters that the system knows: on Linux those of ASCII.
std::string withoutCase(std::string_view path);

// `folder` may be empty or end with a slash.
std::string joined(std::string_view folder, std::string_view name);
// "c" of "/a/b/c", "/a/b" of it, "/" of "/a", "" of "a".
std::string lastPart(std::string_view path);
std::string folderOf(std::string_view path);

// A name of this system as the library would tell it of a server, and back.
std::string nameForServer(const std::filesystem::path& name);
std::filesystem::path nameFromServer(const std::string& name);
// The same for a path with slashes, whose parts may differ in their encoding.
std::filesystem::path pathFromServer(std::string_view path);
// The full form of a local path for the library. None on Windows where the process's code page lacks one of
// its characters.
std::optional<std::string> pathForLibrary(const std::filesystem::path& path);
// For people: UTF-8 on Windows.
std::string shown(const std::filesystem::path& path);

}  // namespace hosts
