// SPDX-License-Identifier: MIT
#include "examples/qxdialogs/Dialogs.h"

#define WIN32_LEAN_AND_MEAN
#include <windows.h>
// Only now:
#include <commdlg.h>

#include <array>
#include <memory>

#include "QXDialogs.h"

namespace {

constexpr std::uint32_t kFlags = OFN_EXPLORER | OFN_ALLOWMULTISELECT | OFN_HIDEREADONLY;

// A path that the library reads and writes.
template <std::size_t Size>
class PathBuffer {
 public:
  explicit PathBuffer(const std::string& path) { path.copy(m_text.data(), Size - 1); }
  [[nodiscard]] char* data() { return m_text.data(); }
  [[nodiscard]] std::string text() const { return m_text.data(); }

 private:
  std::array<char, Size> m_text{};
};

// What the two file dialogs write, beside the path.
struct Selection {
  char* list = nullptr;
  std::uint32_t count = 0;
  void* dialog = nullptr;
  QXBool cancelled = 0;
};

// The dialog goes back to the library in any case, and with it the list of DoOpenDirFileDialog.
Answer take(const SharedLibrary& library, bool confirmed, const std::string& folder,
            const Selection& selection) {
  Answer answer{confirmed, folder + "\n"};
  for (std::uint32_t i = 0; confirmed && i < selection.count; ++i) {
    answer.text += std::string(selection.list + std::size_t{i} * QX_PATH_SIZE) + "\n";
  }
  library.function<PfnDoFreeDirFileDialog>("DoFreeDirFileDialog")(selection.dialog);
  return answer;
}

Answer openFile(const Request& request) {
  const auto show = request.library.function<PfnDoOpenFileDialog>("DoOpenFileDialog");
  PathBuffer<QX_PATH_SIZE> path(request.path);
  Selection selection;
  const char reserved = 0;
  const bool confirmed = show(&reserved, &reserved, &reserved, path.data(), nullptr, kFlags, &selection.list,
                              &selection.count, &selection.dialog, &selection.cancelled) != 0;
  return take(request.library, confirmed, path.text(), selection);
}

template <std::uint32_t Mode, bool Files>
Answer pick(const Request& request) {
  const auto show = request.library.function<PfnDoOpenDirFileDialog>("DoOpenDirFileDialog");
  PathBuffer<QX_PATH_SIZE> path(request.path);
  Selection selection;
  const char reserved = 0;
  const bool confirmed = show(Mode == QX_LIST_FOLDERS ? "Choose a folder" : "Choose files and folders",
                              "&Choose", &reserved, path.data(), Files, 1, Mode, kFlags, &selection.list,
                              &selection.count, &selection.dialog, &selection.cancelled) != 0;
  return take(request.library, confirmed, path.text(), selection);
}

Answer browse(const Request& request) {
  PathBuffer<QX_FOLDER_SIZE> path(request.path);
  const bool confirmed = request.library.function<PfnQXSelectFolder>("QXSelectFolder")(path.data()) != 0;
  return {confirmed, path.text() + "\n"};
}

Answer help(const Request& request) {
  constexpr std::uint32_t kDisplayTopic = 0;
  const auto show = request.library.function<PfnDoHtmlHelp>("DoHtmlHelp");
  return {show(request.window, request.path.c_str(), kDisplayTopic, 0) != 0, request.path + "\n"};
}

constexpr Dialog kDialogs[] = {
    {"open", "&Open files...", openFile},
    {"pick", "&Pick files and folders...", pick<1, true>},
    {"pick-files", "Pick &files...", pick<QX_LIST_FILES, true>},
    {"pick-folder", "Pick a fol&der...", pick<QX_LIST_FOLDERS, false>},
    {"folder", "&Browse for a folder...", browse},
    {"help", "&Help", help},
};

}  // namespace

std::span<const Dialog> dialogs() { return kDialogs; }
