// SPDX-License-Identifier: MIT
#include "framework/ui/FileDialog.h"

#include <algorithm>
#include <cstring>
#include <string_view>
#include <utility>

#include "framework/ui/CommonDialogs.h"
#include "framework/ui/ModalRun.h"
#include "framework/ui/NarrowText.h"
#include "framework/ui/ShellFileDialog.h"
#include "framework/ui/ThreadState.h"
#include "framework/ui/WideText.h"

namespace {

constexpr std::size_t kNameCapacity = MAX_PATH;
constexpr std::size_t kManyNamesCapacity = std::size_t{512} * 1024;  // some 2,000 of the longest names

const char* given(const char* text) { return text != nullptr ? text : ""; }

// The bars become the ends of texts; the text's own end stands behind the last one.
std::string recordFilter(const char* filter) {
  std::string result = given(filter);
  if (!result.empty()) result.push_back('\0');
  replaceEach(result, '|', '\0');
  return result;
}

bool isChild(HWND window) { return (GetWindowLongPtrA(window, GWL_STYLE) & WS_CHILD) != 0; }

// Disabled while the scope lasts, if it was not so before; `focus` gets the focus at the end.
class OwnerPause {
 public:
  OwnerPause(HWND owner, HWND focus) noexcept
      : m_focus(focus), m_owner(owner != nullptr && IsWindowEnabled(owner) ? owner : nullptr) {
    if (m_owner != nullptr) EnableWindow(m_owner, FALSE);
  }
  ~OwnerPause() {
    if (m_owner != nullptr) EnableWindow(m_owner, TRUE);
    if (IsWindow(m_focus)) SetFocus(m_focus);
  }
  OwnerPause(const OwnerPause&) = delete;
  OwnerPause& operator=(const OwnerPause&) = delete;

 private:
  const HWND m_focus;
  const HWND m_owner;
};

}  // namespace

struct CFileDialog::ModalScope {
  explicit ModalScope(CFileDialog& modal) noexcept : dialog(modal), owner(modal.PreModal()) {}
  ~ModalScope() { dialog.PostModal(); }
  ModalScope(const ModalScope&) = delete;
  ModalScope& operator=(const ModalScope&) = delete;

  CFileDialog& dialog;
  const HWND owner;
};

CFileDialog::CFileDialog(bool open, const char* defaultExtension, const char* fileName, DWORD flags,
                         const char* filter, HWND parent, DWORD size, bool newerStyle)
    : m_bOpenFileDialog(open),
      m_newerStyle(newerStyle),
      m_parent(parent),
      m_defaultExtension(given(defaultExtension)),
      m_filter(recordFilter(filter)),
      m_nameBuffer(std::max((flags & OFN_ALLOWMULTISELECT) != 0 ? kManyNamesCapacity : kNameCapacity,
                            std::strlen(given(fileName)) + 1)) {
  const std::string_view name = given(fileName);
  name.copy(m_nameBuffer.data(), name.size());  // the rest of the buffer is zeros
  m_ofn.lStructSize = size != 0 ? size : sizeof m_ofn;
  m_ofn.lpstrFile = m_nameBuffer.data();
  m_ofn.nMaxFile = static_cast<DWORD>(m_nameBuffer.size());
  m_ofn.lpstrDefExt = defaultExtension != nullptr ? m_defaultExtension.c_str() : nullptr;
  m_ofn.lpstrFilter = m_filter.empty() ? nullptr : m_filter.c_str();
  m_ofn.Flags = flags | OFN_ENABLEHOOK | OFN_EXPLORER;
  m_ofn.lpfnHook = &CFileDialog::hook;
}

int CFileDialog::DoModal() { return isNewer() ? runNewer() : RunClassic(m_ofn); }

bool CFileDialog::isNewer() const noexcept {
  return m_newerStyle && m_ofn.lStructSize == sizeof m_ofn &&
         (m_ofn.Flags & (OFN_ENABLETEMPLATE | OFN_ENABLETEMPLATEHANDLE)) == 0;
}

int CFileDialog::runNewer() {
  ChosenFiles chosen;
  bool confirmed = false;
  forgetChosenNames();
  ModalRun run;
  {
    const ModalScope scope(*this);
    m_ofn.hwndOwner = scope.owner;
    confirmed = showShellFileDialog(m_ofn, m_bOpenFileDialog, run, chosen);
  }
  run.Rethrow();
  if (!confirmed) return IDCANCEL;
  m_folder = std::move(chosen.folder);
  m_paths = std::move(chosen.paths);
  m_namesAreExact = chosen.exact;
  return IDOK;
}

int CFileDialog::RunClassic(OPENFILENAMEA& record) {
  BOOL result = FALSE;
  forgetChosenNames();
  ModalRun run;
  {
    const HWND focus = GetFocus();  // before PreModal, which disables windows
    const ModalScope scope(*this);
    record.hwndOwner = scope.owner;
    const OwnerPause pause(scope.owner, focus);
    if ((record.Flags & OFN_EXPLORER) != 0) {
      AfxGetThreadState()->m_pAlternateWndInit = this;
    } else {
      AfxHookWindowCreate(this);
    }
    const auto show = m_bOpenFileDialog ? g_commonDialogs.openFileName : g_commonDialogs.saveFileName;
    run.Show([&] { result = show(&record); }, [this] { cancel(); });
  }
  run.Rethrow();
  if (result == FALSE) return IDCANCEL;
  takeChosenNames(record);
  return result;
}

HWND CFileDialog::PreModal() noexcept {
  HWND owner = m_parent;
  while (owner != nullptr && isChild(owner)) owner = ::GetParent(owner);
  HWND top = owner;
  while (top != nullptr && ::GetParent(top) != nullptr) top = ::GetParent(top);
  if (top != owner && IsWindowEnabled(top)) {
    EnableWindow(top, FALSE);
    m_top = top;
  }
  return owner;
}

void CFileDialog::PostModal() noexcept {
  AfxUnhookWindowCreate();
  AfxGetThreadState()->m_pAlternateWndInit = nullptr;
  Detach();
  if (m_top != nullptr) EnableWindow(std::exchange(m_top, nullptr), TRUE);
}

std::string CFileDialog::GetFolderPath() const {
  return m_hWnd != nullptr ? ask(CDM_GETFOLDERPATH) : m_folder;
}

std::string CFileDialog::GetPathName() const {
  if (m_hWnd != nullptr) return ask(CDM_GETFILEPATH);
  return m_paths.empty() ? m_ofn.lpstrFile : m_paths.front();
}

POSITION CFileDialog::GetStartPosition() const noexcept { return m_paths.empty() ? nullptr : m_paths.data(); }

std::string CFileDialog::GetNextPathName(POSITION& position) const {
  const auto* const path = static_cast<const std::string*>(position);
  position = path == &m_paths.back() ? nullptr : path + 1;
  return *path;
}

bool CFileDialog::OnInitDialog() {
  UpdateData(false);
  return true;
}

bool CFileDialog::OnNotify(WPARAM, LPARAM lParam, LRESULT* result) {
  switch (reinterpret_cast<const NMHDR*>(lParam)->code) {
    case CDN_INITDONE:
      OnInitDone();
      return true;
    case CDN_FOLDERCHANGE:
      OnFolderChange();
      return true;
    case CDN_FILEOK:
      *result = OnFileNameOK();
      SetWindowLongPtrA(m_hWnd, DWLP_MSGRESULT, *result);  // where the dialog looks for a veto
      return true;
    default:
      return false;
  }
}

UINT_PTR CALLBACK CFileDialog::hook(HWND window, UINT message, WPARAM, LPARAM) {
  try {
    CWnd*& waiting = AfxGetThreadState()->m_pAlternateWndInit;
    if (waiting != nullptr) std::exchange(waiting, nullptr)->SubclassWindow(window);
    auto* const dialog = static_cast<CFileDialog*>(FromHandlePermanent(window));
    if (message == WM_INITDIALOG && dialog != nullptr) return dialog->OnInitDialog();
  } catch (...) {
    AfxKeepException();
  }
  return 0;
}

// The message's answer tells the size that it needs, with the terminator; negative when there is no such
// text.
std::string CFileDialog::ask(UINT message) const {
  const HWND dialog = GetParent();
  std::string text(MAX_PATH, '\0');
  for (;;) {
    const LRESULT needed = SendMessageA(dialog, message, text.size(), reinterpret_cast<LPARAM>(text.data()));
    if (needed <= 0) return {};
    if (static_cast<std::size_t>(needed) <= text.size()) return text.substr(0, text.find('\0'));
    text.assign(static_cast<std::size_t>(needed), '\0');
  }
}

void CFileDialog::forgetChosenNames() noexcept {
  m_folder.clear();
  m_paths.clear();
  m_namesAreExact = true;
}

// One file is a full path; several are their folder and then each one's name, all with their ends.
void CFileDialog::takeChosenNames(const OPENFILENAMEA& record) {
  const std::string first = record.lpstrFile;
  const char* name = record.lpstrFile + first.size() + 1;
  const bool several = (record.Flags & OFN_ALLOWMULTISELECT) != 0 &&
                       name < record.lpstrFile + record.nMaxFile && *name != '\0';
  if (!several) {
    m_folder = narrowText(pathParts(wideText(first)).folder);
    m_paths.push_back(first);
    return;
  }
  m_folder = first;
  for (; *name != '\0'; name += std::strlen(name) + 1)
    m_paths.push_back(first + (endsWith(first, '\\') ? "" : "\\") + name);
}

void CFileDialog::cancel() const noexcept {
  const HWND dialog = (m_ofn.Flags & OFN_EXPLORER) != 0 ? GetParent() : m_hWnd;
  if (m_hWnd != nullptr) SendMessageA(dialog, WM_COMMAND, IDCANCEL, 0);
}
