// SPDX-License-Identifier: MIT
// qxbrowse: files on this computer and on an FTP server, side by side in a window.
#include "hosts/qxbrowse/App.h"
#include "hosts/qxbrowse/Start.h"

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int nShowCmd) {
  return browse::start([nShowCmd](const browse::Start& start) {
    browse::App app(start.library, start.sites);
    return app.run(nShowCmd);
  });
}
