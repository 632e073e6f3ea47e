// SPDX-License-Identifier: MIT
// The main window with services that write down what they are asked.
#pragma once

#include <gtest/gtest.h>

#include "hosts/qxbrowse/ui/Texts.h"
#include "hosts/qxbrowse/ui/WindowText.h"
#include "hosts/qxbrowse/window/MainWindow.h"
#include "tests/dialogs/Driver.h"

namespace main_window_test {

using namespace browse;

class Notes : public Services {
 public:
  void connect() override { note(L"connect"); }
  void disconnect() override { note(L"disconnect"); }
  void list(Side side, const std::wstring& path) override { note(L"list " + nameOf(side) + path); }
  void createFolder(Side side, const std::wstring& path) override { note(L"create " + nameOf(side) + path); }
  void rename(Side side, const std::wstring& from, const std::wstring& to) override {
    note(L"rename " + nameOf(side) + from + L" to " + to);
  }
  void remove(Side side, const std::vector<Place>& places) override {
    note(L"remove " + nameOf(side) + paths(places));
  }
  void upload(const std::vector<Place>& places, const std::wstring& to) override {
    note(L"upload " + paths(places) + L" to " + to);
  }
  void download(const std::vector<Place>& places, const std::wstring& to) override {
    note(L"download " + paths(places) + L" to " + to);
  }
  void copy(const std::vector<Place>& places, const std::wstring& to) override {
    note(L"copy " + paths(places) + L" to " + to);
  }
  void move(const std::vector<Place>& places, const std::wstring& to) override {
    note(L"move " + paths(places) + L" to " + to);
  }
  void cancel() override { note(L"cancel"); }
  void cancelAll() override { note(L"cancel all"); }
  void retryFailed() override { note(L"retry"); }
  void clearDone() override { note(L"clear"); }
  std::wstring chooseLocalFolder(const std::wstring&) override { return L"C:\\chosen"; }
  std::vector<Place> chooseFiles(const std::wstring&) override { return {{L"C:\\picked"}}; }
  std::vector<Place> chooseFilesAndFolders(const std::wstring&) override { return {}; }
  void showHelp() override { note(L"help"); }
  void showAbout() override { note(L"about"); }
  void end() override { note(L"end"); }

  std::vector<std::wstring> take() { return std::exchange(m_notes, {}); }

 private:
  void note(std::wstring what) { m_notes.push_back(std::move(what)); }
  static std::wstring nameOf(Side side) { return side == Side::local ? L"local " : L"server "; }
  static std::wstring paths(const std::vector<Place>& places) {
    std::wstring all;
    for (const Place& place : places) all += (all.empty() ? L"" : L" ") + place.path;
    return all;
  }

  std::vector<std::wstring> m_notes;
};

inline std::vector<Item> manyItems(int count) {
  std::vector<Item> items;
  for (int i = 0; i < count; ++i)
    items.push_back({L"file" + std::to_wstring(i), false, static_cast<std::uint64_t>(i)});
  return items;
}

// A window that has closed asks its thread to end, which would end the next dialog.
inline void forgetTheEnd() {
  MSG message{};
  while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
}

class TheMainWindow : public testing::Test {
 protected:
  void SetUp() override {
    window.create();
    window.show(SW_SHOWNOACTIVATE);
  }
  ~TheMainWindow() override {
    if (window.handle() != nullptr) DestroyWindow(window.handle());
    forgetTheEnd();
  }

  void showLocal() {
    window.go(Side::local, L"C:\\here");
    window.showFolder(Side::local, L"C:\\here",
                      ItemList({{L"b.txt", false, 2}, {L"a.txt", false, 1}, {L"sub", true}}));
    notes.take();
  }
  void showBoth() {
    showLocal();
    window.showConnected(L"site");
    window.go(Side::server, L"/pub");
    window.showFolder(Side::server, L"/pub", ItemList({{L"x", true}, {L"y.bin", false, 5000}}));
    notes.take();
  }
  void choose(Side side, const std::wstring& name) {
    window.pane(side).focusList();
    window.pane(side).select({name});
  }
  // As the loop of messages has it.
  bool press(WORD key) {
    MSG message{};
    message.hwnd = GetFocus();
    message.message = WM_KEYDOWN;
    message.wParam = key;
    return window.translate(message);
  }
  // Of the items, above which the way up has a row in the folders of this test.
  std::wstring cell(Side side, int item, Column column) {
    const int row = item + 1;
    wchar_t text[512] = L"";
    LVITEMW wanted{};
    wanted.iSubItem = static_cast<int>(column);
    wanted.pszText = text;
    wanted.cchTextMax = static_cast<int>(std::size(text));
    SendMessageW(window.pane(side).list(), LVM_GETITEMTEXTW, static_cast<WPARAM>(row),
                 reinterpret_cast<LPARAM>(&wanted));
    return text;
  }
  // Among the images of the list; -1 for none.
  int icon(Side side, int item) {
    LVITEMW wanted{};
    wanted.mask = LVIF_IMAGE;
    wanted.iItem = item + 1;
    wanted.iImage = -1;
    SendMessageW(window.pane(side).list(), LVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&wanted));
    return wanted.iImage;
  }
  int items(Side side) {
    return static_cast<int>(SendMessageW(window.pane(side).list(), LVM_GETITEMCOUNT, 0, 0)) - 1;
  }

  Notes notes;
  MainWindow window{notes};
  const dialog_test::Driver look{GetCurrentThreadId()};
};

}  // namespace main_window_test
