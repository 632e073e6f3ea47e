// SPDX-License-Identifier: MIT
#include "tests/dialogs/Driver.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <sstream>

#include "framework/windows/windows_api.h"
// Only now:
#include <commctrl.h>
#include <commdlg.h>

namespace dialog_test {
namespace {

constexpr std::chrono::seconds kLimit{120};
constexpr DWORD kLimitMs = 120'000;
constexpr DWORD kPollMs = 5;
constexpr int kBoxText = 0xFFFF;    // the static control of a message box
constexpr int kNameCombo = 1148;    // the name box of a classic dialog with the places bar
constexpr int kNameEdit = 1152;     // the name box of all others
constexpr int kMaxItemText = 1024;  // longer names do not exist

std::string classOf(HWND window) {
  char name[64] = "";
  GetClassNameA(window, name, sizeof name);
  return name;
}

bool isDialog(HWND window) { return classOf(window) == "#32770" && IsWindowVisible(window); }

BOOL CALLBACK collect(HWND window, LPARAM windows) {
  reinterpret_cast<std::vector<HWND>*>(windows)->push_back(window);
  return TRUE;
}

std::vector<HWND> descendants(HWND window) {
  std::vector<HWND> found;
  EnumChildWindows(window, &collect, reinterpret_cast<LPARAM>(&found));
  return found;
}

std::vector<HWND> topWindows(DWORD thread) {
  std::vector<HWND> found;
  EnumThreadWindows(thread, &collect, reinterpret_cast<LPARAM>(&found));
  return found;
}

}  // namespace

void Driver::waitUntil(const std::string& what, const std::function<bool()>& holds) const {
  const auto end = std::chrono::steady_clock::now() + kLimit;
  for (;;) {
    const bool over = m_over;  // before the look: what the dialog's end brings counts
    if (holds()) return;
    if (over) throw TooLate("the dialog ended before " + what);
    if (std::chrono::steady_clock::now() > end)
      throw TooLate("waited in vain for " + what + "\n" + picture());
    Sleep(kPollMs);  // allowed: Sleep: between two looks
  }
}

HWND Driver::find(const std::function<bool(HWND)>& wanted) const {
  const auto windows = topWindows(m_thread);
  const auto place = std::find_if(windows.begin(), windows.end(),
                                  [&](HWND window) { return isDialog(window) && wanted(window); });
  return place != windows.end() ? *place : nullptr;
}

HWND Driver::waitForDialog() const {
  HWND found = nullptr;
  waitUntil("a dialog", [&] {
    found = find([](HWND window) {
      const HWND owner = GetWindow(window, GW_OWNER);
      return owner == nullptr || !isDialog(owner);
    });
    return found != nullptr;
  });
  return found;
}

HWND Driver::waitForDialog(const std::string& title) const {
  HWND found = nullptr;
  waitUntil("the dialog " + title, [&] {
    found = find([&](HWND window) { return textOf(window) == title; });
    return found != nullptr;
  });
  return found;
}

HWND Driver::waitForBox(HWND owner) const {
  HWND found = nullptr;
  waitUntil("a message box", [&] {
    found = find([owner](HWND window) {
      return GetWindow(window, GW_OWNER) == owner && GetDlgItem(window, kBoxText) != nullptr;
    });
    return found != nullptr;
  });
  return found;
}

void Driver::waitUntilGone(HWND window) const {
  waitUntil("a window to go", [window] { return !IsWindow(window); });
}

Box Driver::answerBox(HWND owner) const {
  const HWND window = waitForBox(owner);
  Box box{textOf(window), textOf(control(window, kBoxText))};
  for (const HWND each : descendants(window)) {
    const auto type = GetWindowLongPtrA(each, GWL_STYLE) & SS_TYPEMASK;
    if (classOf(each) == "Static" && type == SS_ICON)
      box.icon = reinterpret_cast<HICON>(send(each, STM_GETICON));
    if (classOf(each) == "Button" && IsWindowVisible(each)) ++box.buttons;
  }
  press(window, IDOK);
  waitUntilGone(window);
  return box;
}

HWND Driver::child(HWND window, const char* className) const {
  HWND found = nullptr;
  waitUntil(std::string("a child of class ") + className, [&] {
    const auto windows = descendants(window);
    const auto place = std::find_if(windows.begin(), windows.end(),
                                    [className](HWND each) { return classOf(each) == className; });
    found = place != windows.end() ? *place : nullptr;
    return found != nullptr;
  });
  return found;
}

HWND Driver::control(HWND dialog, int id) const {
  const HWND found = GetDlgItem(dialog, id);
  if (found == nullptr) throw TooLate("no control " + std::to_string(id) + "\n" + picture());
  return found;
}

std::string Driver::textOf(HWND window) const {
  std::string text(static_cast<std::size_t>(send(window, WM_GETTEXTLENGTH)) + 1, '\0');
  const LRESULT length = send(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()));
  text.resize(static_cast<std::size_t>(length));
  return text;
}

void Driver::type(HWND window, const std::string& text) const {
  send(window, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str()));
}

void Driver::press(HWND dialog, int id) const {
  // Posted: a sent one would wait for the dialog's end, or for that of a box that it shows.
  PostMessageA(dialog, WM_COMMAND, MAKEWPARAM(id, BN_CLICKED),
               reinterpret_cast<LPARAM>(GetDlgItem(dialog, id)));
}

LRESULT Driver::send(HWND window, UINT message, WPARAM wParam, LPARAM lParam) const {
  DWORD_PTR result = 0;
  if (SendMessageTimeoutA(window, message, wParam, lParam, SMTO_NORMAL, kLimitMs, &result) == 0)
    throw TooLate("no answer to message " + std::to_string(message) + "\n" + picture());
  return static_cast<LRESULT>(result);
}

HWND Driver::waitForList(HWND dialog, const std::string& what,
                         const std::function<bool(HWND)>& wanted) const {
  HWND list = nullptr;
  waitUntil(what, [&] {
    list = child(dialog, WC_LISTVIEWA);
    try {
      return wanted(list);
    } catch (const TooLate&) {
      if (IsWindow(list)) throw;
      return false;  // another folder came, and it brings a list of its own
    }
  });
  return list;
}

HWND Driver::waitForList(HWND dialog, std::size_t count) const {
  return waitForList(dialog, "a list of " + std::to_string(count) + " items", [&](HWND list) {
    return static_cast<std::size_t>(send(list, LVM_GETITEMCOUNT)) >= count;
  });
}

HWND Driver::waitForList(HWND dialog, std::vector<std::string> names) const {
  std::sort(names.begin(), names.end());
  return waitForList(dialog, "a list of certain items", [&](HWND list) {
    auto shown = items(list);
    std::sort(shown.begin(), shown.end());
    return shown == names;
  });
}

std::vector<std::string> Driver::items(HWND list) const {
  std::vector<std::string> names;
  const LRESULT count = send(list, LVM_GETITEMCOUNT);
  for (LRESULT index = 0; index < count; ++index) {
    char text[kMaxItemText] = "";
    LVITEMA item{};
    item.pszText = text;
    item.cchTextMax = kMaxItemText;
    send(list, LVM_GETITEMTEXTA, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&item));
    names.emplace_back(text);
  }
  return names;
}

int Driver::indexOf(HWND list, const std::string& name) const {
  const auto names = items(list);
  const auto place = std::find(names.begin(), names.end(), name);
  if (place == names.end()) throw TooLate("no item " + name + "\n" + picture());
  return static_cast<int>(place - names.begin());
}

void Driver::select(HWND list, const std::string& name) const {
  LVITEMA item{};
  item.state = item.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
  send(list, LVM_SETITEMSTATE, static_cast<WPARAM>(indexOf(list, name)), reinterpret_cast<LPARAM>(&item));
}

void Driver::selectAll(HWND list) const {
  LVITEMA item{};
  item.state = item.stateMask = LVIS_SELECTED;
  send(list, LVM_SETITEMSTATE, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(&item));
}

void Driver::doubleClick(HWND list, const std::string& name) const {
  const int index = indexOf(list, name);
  send(list, LVM_ENSUREVISIBLE, static_cast<WPARAM>(index), FALSE);
  RECT rect{LVIR_SELECTBOUNDS, 0, 0, 0};
  send(list, LVM_GETITEMRECT, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&rect));
  const LPARAM point = MAKELPARAM(rect.left + 4, (rect.top + rect.bottom) / 2);
  for (const UINT message :
       std::initializer_list<UINT>{WM_LBUTTONDOWN, WM_LBUTTONUP, WM_LBUTTONDBLCLK, WM_LBUTTONUP})
    PostMessageA(list, message, message == WM_LBUTTONUP ? 0 : MK_LBUTTON, point);
}

void Driver::typeName(HWND dialog, const std::string& name) const {
  const HWND combo = GetDlgItem(dialog, kNameCombo);
  // The combo box of the classic dialog is reached through its message, an edit directly.
  if (combo != nullptr) {
    send(dialog, CDM_SETCONTROLTEXT, kNameCombo, reinterpret_cast<LPARAM>(name.c_str()));
  } else {
    type(control(dialog, kNameEdit), name);
  }
}

std::string Driver::picture() const {
  std::ostringstream out;
  const auto describe = [&out](HWND window, const char* indent) {
    char text[80] = "";
    DWORD_PTR length = 0;
    SendMessageTimeoutA(window, WM_GETTEXT, sizeof text, reinterpret_cast<LPARAM>(text), SMTO_ABORTIFHUNG,
                        200, &length);
    RECT rect{};
    GetWindowRect(window, &rect);
    out << indent << classOf(window) << ' ' << GetDlgCtrlID(window) << " '" << text << "' (" << rect.left
        << ',' << rect.top << ")-(" << rect.right << ',' << rect.bottom << ')'
        << (IsWindowVisible(window) ? "" : " hidden") << '\n';
  };
  for (const HWND window : topWindows(m_thread)) {
    describe(window, "");
    for (const HWND each : descendants(window)) describe(each, "  ");
  }
  return out.str();
}

void Driver::closeAll() const {
  for (const HWND window : topWindows(m_thread)) {
    if (!isDialog(window)) continue;
    PostMessageA(window, WM_COMMAND, GetDlgItem(window, IDCANCEL) != nullptr ? IDCANCEL : IDOK, 0);
    PostMessageA(window, WM_CLOSE, 0, 0);
  }
}

void Driver::follow(const std::function<void(Driver&)>& user) {
  try {
    user(*this);
    waitUntil("the dialog's end", [this] { return m_over.load(); });
    return;
  } catch (const std::exception& error) {
    ADD_FAILURE() << error.what();
  }
  while (!m_over) {
    closeAll();
    Sleep(kPollMs);  // allowed: Sleep: between two attempts
  }
}

Session::Session(std::function<void(Driver&)> user)
    : m_driver(GetCurrentThreadId()), m_thread([this, user = std::move(user)] { m_driver.follow(user); }) {}

Session::~Session() {
  m_driver.m_over = true;
  m_thread.join();
}

}  // namespace dialog_test
