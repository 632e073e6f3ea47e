// SPDX-License-Identifier: MIT
#include "hosts/qxbrowse/LibraryDialogs.h"

#include <array>
#include <filesystem>
#include <stdexcept>

#include "hosts/qxbrowse/ui/Names.h"
#include "hosts/shared/windows/CodePages.h"
// Only now:
#include <commdlg.h>

namespace browse {
namespace {

constexpr std::uint32_t kFlags = OFN_EXPLORER | OFN_ALLOWMULTISELECT | OFN_HIDEREADONLY | OFN_FILEMUSTEXIST;
constexpr std::uint32_t kDisplayTopic = 0;  // HH_DISPLAY_TOPIC

// All texts of the dialogs are in the code page. Empty where that lacks a character.
std::string forDialog(std::wstring_view text) {
  return hosts::narrow(text, hosts::Encoding::codePage).value_or("");
}

std::wstring fromDialog(std::string_view text) {
  return hosts::wideWithMarks(text, hosts::Encoding::codePage);
}

// A path that the library reads and writes. One that is too long for it starts it at its own place.
template <std::size_t Size>
class PathBuffer {
 public:
  explicit PathBuffer(const std::wstring& path) {
    const std::string narrow = forDialog(path);
    if (narrow.size() < Size) narrow.copy(m_text.data(), narrow.size());
  }
  [[nodiscard]] char* data() { return m_text.data(); }
  [[nodiscard]] std::wstring text() const { return fromDialog(m_text.data()); }
  [[nodiscard]] std::size_t size() const { return std::string_view(m_text.data()).size(); }

 private:
  std::array<char, Size> m_text{};
};

template <typename Function>
void find(Function& function, HMODULE library, const char* name) {
  function = reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library, name)));
  if (function == nullptr) throw std::runtime_error("the library has no export " + std::string(name));
}

}  // namespace

// What both dialogs of files write.
struct LibraryDialogs::Selection {
  char* list = nullptr;
  std::uint32_t count = 0;
  void* dialog = nullptr;
  QXBool isCancelled = 0;

  // `skipped` bytes stand in front of each path.
  [[nodiscard]] Choice choice(bool isConfirmed, std::size_t skipped) const {
    Choice choice;
    choice.isTooLong = !isConfirmed && isCancelled == 0;
    for (std::uint32_t i = 0; isConfirmed && i < count; ++i) {
      const std::string_view entry = list + std::size_t{i} * QX_PATH_SIZE;
      choice.paths.push_back(fromDialog(entry.substr(std::min(skipped, entry.size()))));
    }
    return choice;
  }
};

LibraryDialogs::LibraryDialogs(std::shared_ptr<void> library) : m_library(std::move(library)) {
  auto* const module = static_cast<HMODULE>(m_library.get());
  find(m_selectFolder, module, "QXSelectFolder");
  find(m_openFile, module, "DoOpenFileDialog");
  find(m_openDirFile, module, "DoOpenDirFileDialog");
  find(m_freeDialog, module, "DoFreeDirFileDialog");
  find(m_help, module, "DoHtmlHelp");
}

std::optional<std::wstring> LibraryDialogs::chooseFolder(const std::wstring& start) const {
  PathBuffer<QX_FOLDER_SIZE> path(start);
  if (!m_selectFolder(path.data())) return {};
  return path.text();
}

// It begins in the folder that the start stands in front of, and each path has that folder in front of it a
// second time.
LibraryDialogs::Choice LibraryDialogs::chooseFiles(const std::wstring& start) const {
  PathBuffer<QX_PATH_SIZE> path(localPath(start, L""));
  const char reserved = 0;
  Selection selection;
  const bool isConfirmed =
      m_openFile(&reserved, &reserved, &reserved, path.data(), nullptr, kFlags, &selection.list,
                 &selection.count, &selection.dialog, &selection.isCancelled) != 0;
  Choice choice = selection.choice(isConfirmed, path.size() + 1);
  m_freeDialog(selection.dialog);
  return choice;
}

LibraryDialogs::Choice LibraryDialogs::chooseFilesAndFolders(const std::wstring& start,
                                                             const std::wstring& title,
                                                             const std::wstring& ok) const {
  constexpr std::uint32_t kAnything = 1;
  PathBuffer<QX_PATH_SIZE> path(start);
  const char reserved = 0;
  Selection selection;
  const bool isConfirmed = m_openDirFile(forDialog(title).c_str(), forDialog(ok).c_str(), &reserved,
                                         path.data(), 1, 1, kAnything, kFlags, &selection.list,
                                         &selection.count, &selection.dialog, &selection.isCancelled) != 0;
  Choice choice = selection.choice(isConfirmed, 0);
  m_freeDialog(selection.dialog);
  return choice;
}

std::wstring helpPage(const std::filesystem::path& programFolder) {
  for (const wchar_t* page : {L"docs/html/qxbrowse.html", L"docs/qxbrowse.md"}) {
    for (const std::filesystem::path& folder : {programFolder, programFolder.parent_path()}) {
      std::error_code error;
      std::filesystem::path file = (folder / page).make_preferred();
      if (std::filesystem::is_regular_file(file, error)) return file.wstring();
    }
  }
  return L"docs/qxbrowse.md";
}

bool LibraryDialogs::showHelp(HWND owner, const std::wstring& file) const {
  if (!std::filesystem::exists(file)) return false;
  return m_help(owner, forDialog(file).c_str(), kDisplayTopic, 0) != 0;
}

}  // namespace browse
