// SPDX-License-Identifier: MIT
#include "hosts/qxbrowse/App.h"

#include <system_error>

#include "QXVersion.h"
#include "hosts/qxbrowse/LocalFolder.h"
#include "hosts/qxbrowse/Names.h"
#include "hosts/qxbrowse/Texts.h"

namespace browse {

int App::run(int how) {
  m_window.create();
  m_window.show(how);
  m_window.go(Side::local, homeFolder());
  MSG message{};
  while (GetMessageW(&message, nullptr, 0, 0) > 0) {
    if (m_window.translate(message)) continue;
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
  return static_cast<int>(message.wParam);
}

void App::list(Side side, const std::wstring& path) {
  try {
    if (side == Side::local) m_window.showFolder(side, path, readLocalFolder(path));
  } catch (const std::system_error& problem) {
    m_window.showFolderFailed(side, path, fromLibrary(problem.code().message()));
  }
}

// The folder is listed again in either case, and what went wrong is told behind that.
template <typename Change>
void App::changeLocal(const std::wstring& path, Change&& change) {
  std::wstring fault;
  try {
    change();
  } catch (const std::system_error& problem) {
    fault = text(Text::statusFailed, {path, fromLibrary(problem.code().message())});
  }
  m_window.refresh(Side::local, localParent(path));
  if (!fault.empty()) m_window.showMessage(fault);
}

void App::createFolder(Side side, const std::wstring& path) {
  if (side == Side::local) changeLocal(path, [&] { createLocalFolder(path); });
}

void App::rename(Side side, const std::wstring& from, const std::wstring& to) {
  if (side == Side::local) changeLocal(from, [&] { renameLocal(from, to); });
}

void App::remove(Side side, const std::vector<Place>& places) {
  if (side == Side::local) changeLocal(places.front().path, [&] { removeLocal(m_window.handle(), places); });
}

void App::showAbout() {
  MessageBoxW(m_window.handle(), text(Text::about, {fromLibrary(QXIP_VERSION)}).c_str(),
              text(Text::programName), MB_OK | MB_ICONINFORMATION);
}

}  // namespace browse
