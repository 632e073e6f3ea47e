// SPDX-License-Identifier: MIT
// Letters to the window's thread, and its keys, in loops of messages that are not the main one.
#include "hosts/qxbrowse/jobs/Mailbox.h"

#include <gmock/gmock.h>

#include <optional>
#include <thread>
#include <vector>

#include "hosts/qxbrowse/ui/Keyboard.h"
#include "hosts/qxbrowse/ui/WindowText.h"

namespace {

using namespace browse;
using testing::ElementsAre;

// As the library takes and dispatches messages while it waits: narrow ones.
void pumpAsTheLibrary() {
  MSG message;
  while (PeekMessageA(&message, nullptr, 0, 0, PM_NOREMOVE) != FALSE) {
    GetMessageA(&message, nullptr, 0, 0);
    TranslateMessage(&message);
    DispatchMessageA(&message);
  }
}

TEST(TheMailbox, HandsLettersOverInTheirOrder) {
  std::vector<int> read;
  Mailbox box;
  std::thread other([&] {
    for (int letter = 0; letter < 1000; ++letter) box.post([&read, letter] { read.push_back(letter); });
  });
  other.join();
  EXPECT_THAT(read, ElementsAre()) << "on the thread that posts";
  pumpAsTheLibrary();
  ASSERT_EQ(read.size(), 1000U);
  EXPECT_TRUE(std::ranges::is_sorted(read));
}

// A letter that shows a dialog kept all others waiting.
TEST(TheMailbox, ReadsOnWithinALetterThatPumps) {
  std::vector<int> read;
  Mailbox box;
  box.post([&] {
    read.push_back(1);
    pumpAsTheLibrary();
    read.push_back(3);
  });
  box.post([&] { read.push_back(2); });
  pumpAsTheLibrary();
  EXPECT_THAT(read, ElementsAre(1, 2, 3));
}

TEST(TheMailbox, ThrowsAwayWhatNobodyReads) {
  const auto held = std::make_shared<int>();
  std::optional<Mailbox> box(std::in_place);
  box->post([held] { FAIL() << "read after the end"; });
  box.reset();
  EXPECT_EQ(held.use_count(), 1);
  pumpAsTheLibrary();
}

TEST(TheMailbox, MayEndInALetter) {
  std::optional<Mailbox> box(std::in_place);
  box->post([&] { box.reset(); });
  pumpAsTheLibrary();
  EXPECT_FALSE(box.has_value());
}

class TheKeyboard : public testing::Test {
 protected:
  TheKeyboard() { ShowWindow(frame, SW_SHOWNOACTIVATE); }
  ~TheKeyboard() override {
    keyboard.reset();
    DestroyWindow(frame);
    DestroyWindow(other);
    pumpAsTheLibrary();
  }

  static HWND makeWindow(const wchar_t* className, HWND parent) {
    return CreateWindowW(className, L"", parent != nullptr ? WS_CHILD | WS_VISIBLE : WS_OVERLAPPEDWINDOW, 0,
                         0, 100, 50, parent, nullptr, GetModuleHandleW(nullptr), nullptr);
  }

  const HWND frame = makeWindow(L"STATIC", nullptr);
  const HWND edit = makeWindow(L"EDIT", frame);
  const HWND other = makeWindow(L"EDIT", nullptr);
  std::vector<WPARAM> translated;
  bool isTaken = true;
  std::optional<Keyboard> keyboard{std::in_place, frame, [this](MSG& key) {
                                     if (key.message == WM_KEYDOWN) translated.push_back(key.wParam);
                                     return isTaken && key.message == WM_KEYDOWN;
                                   }};
};

// The library takes messages without a word to the program that has accelerators.
TEST_F(TheKeyboard, TranslatesKeysThatTheLibraryTakes) {
  PostMessageW(edit, WM_KEYDOWN, VK_F5, 0);
  PostMessageW(frame, WM_KEYDOWN, VK_DELETE, 0);
  pumpAsTheLibrary();
  EXPECT_THAT(translated, ElementsAre(VK_F5, VK_DELETE));
}

// Each key comes once, whoever looks at it first.
TEST_F(TheKeyboard, TranslatesNothingThatIsOnlyLookedAt) {
  PostMessageW(edit, WM_KEYDOWN, VK_F5, 0);
  MSG message;
  EXPECT_NE(PeekMessageA(&message, nullptr, WM_KEYFIRST, WM_KEYLAST, PM_NOREMOVE), FALSE);
  EXPECT_THAT(translated, ElementsAre());
  pumpAsTheLibrary();
  EXPECT_THAT(translated, ElementsAre(VK_F5));
}

TEST_F(TheKeyboard, LeavesOtherWindowsTheirKeys) {
  PostMessageW(other, WM_KEYDOWN, VK_F5, 0);
  pumpAsTheLibrary();
  EXPECT_THAT(translated, ElementsAre());
}

// Narrow messages turn what the code page lacks into question marks.
TEST_F(TheKeyboard, CharactersComeWhole) {
  for (const wchar_t character : {L'\x00E9', L'\x4E2D', L'\x0416'}) PostMessageW(edit, WM_CHAR, character, 0);
  pumpAsTheLibrary();
  EXPECT_EQ(windowText(edit), L"\x00E9\x4E2D\x0416");
}

TEST_F(TheKeyboard, GivesKeysOnThatNobodyTranslates) {
  isTaken = false;
  SetWindowTextW(edit, L"abc");
  PostMessageW(edit, WM_KEYDOWN, VK_DELETE, 0);
  pumpAsTheLibrary();
  EXPECT_THAT(translated, ElementsAre(VK_DELETE));
  EXPECT_EQ(windowText(edit), L"bc");
}

TEST_F(TheKeyboard, EndsWithItsObject) {
  keyboard.reset();
  PostMessageW(edit, WM_KEYDOWN, VK_F5, 0);
  pumpAsTheLibrary();
  EXPECT_THAT(translated, ElementsAre());
}

// What a key starts, a dialog for one, has keys of its own.
TEST_F(TheKeyboard, TakesKeysWithinAKey) {
  keyboard.reset();
  keyboard.emplace(frame, [this](MSG& key) {
    translated.push_back(key.wParam);
    if (key.wParam == VK_F5) pumpAsTheLibrary();
    return true;
  });
  PostMessageW(edit, WM_KEYDOWN, VK_F5, 0);
  PostMessageW(edit, WM_KEYDOWN, VK_F6, 0);
  pumpAsTheLibrary();
  EXPECT_THAT(translated, ElementsAre(VK_F5, VK_F6));
}

}  // namespace
