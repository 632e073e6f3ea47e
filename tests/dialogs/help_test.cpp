// SPDX-License-Identifier: MIT
// The help launcher as a foreign host sees it: which library it loads and what that is called with.
#include <filesystem>
#include <optional>

#include "QXDialogs.h"
#include "dialogs/HtmlHelp.h"
#include "examples/host/SharedLibrary.h"
#include "tests/dialogs/OwnProcess.h"
#include "tests/dialogs/help_stub.h"

namespace {

constexpr const char* kServerKey = "CLSID\\{ADB880A6-D8FF-11CF-9377-00AA003B7A11}\\InprocServer32";
constexpr const char* kControl = "hhctrl.ocx";
constexpr std::size_t kLongest = MAX_PATH - 1;

// An empty HKEY_CLASSES_ROOT of this process alone.
class ClassesRoot {
 public:
  ClassesRoot() : m_name("Software\\ZRM_QXKT32x64 test " + std::to_string(GetCurrentProcessId())) {
    EXPECT_EQ(RegCreateKeyExA(HKEY_CURRENT_USER, m_name.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                              &m_key, nullptr),
              ERROR_SUCCESS);
    EXPECT_EQ(RegOverridePredefKey(HKEY_CLASSES_ROOT, m_key), ERROR_SUCCESS);
  }
  ~ClassesRoot() {
    RegOverridePredefKey(HKEY_CLASSES_ROOT, nullptr);
    RegDeleteTreeA(m_key, nullptr);
    RegCloseKey(m_key);
    RegDeleteKeyA(HKEY_CURRENT_USER, m_name.c_str());
  }
  ClassesRoot(const ClassesRoot&) = delete;
  ClassesRoot& operator=(const ClassesRoot&) = delete;

  void addKey() const {
    withKey([](HKEY) {});
  }
  void store(const std::string& path, DWORD type = REG_SZ) const {
    withKey([&](HKEY key) {
      const auto* const data = reinterpret_cast<const BYTE*>(path.c_str());
      EXPECT_EQ(RegSetValueExA(key, nullptr, 0, type, data, static_cast<DWORD>(path.size() + 1)),
                ERROR_SUCCESS);
    });
  }

 private:
  template <typename Work>
  void withKey(const Work& work) const {
    HKEY key = nullptr;
    ASSERT_EQ(RegCreateKeyExA(m_key, kServerKey, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr),
              ERROR_SUCCESS);
    work(key);
    RegCloseKey(key);
  }

  std::string m_name;
  HKEY m_key = nullptr;
};

class HelpCase {
 public:
  HelpCase() : m_library(std::getenv("QX_LIBRARY")) {}

  // A new library of this name in the folder of the case.
  [[nodiscard]] std::string stub(const std::string& name, const char* kind = "help_stub.dll") const {
    std::filesystem::copy_file(programFolder() + kind, file(name));
    return file(name);
  }
  // What "hhctrl.ocx" alone names.
  [[nodiscard]] std::string stubByName() const {
    SetDllDirectoryA(file("").c_str());
    return stub(kControl);
  }

  QXBool help(const char* file, std::uint32_t command = 0, std::uint32_t data = 0,
              void* window = nullptr) const {
    return m_library.function<PfnDoHtmlHelp>("DoHtmlHelp")(window, file, command, data);
  }

  // A file in the folder of the case.
  [[nodiscard]] static std::string file(const std::string& name) {
    return dialog_test::ownFolder() + "\\" + name;
  }

  const ClassesRoot registry;

 private:
  SharedLibrary m_library;
};

// The calls of a loaded library; none while it is not loaded.
std::optional<HelpCalls> callsOf(const std::string& library) {
  const HMODULE module = GetModuleHandleA(library.c_str());
  if (module == nullptr) return std::nullopt;
  const auto calls = reinterpret_cast<void*>(GetProcAddress(module, "stubHelpCalls"));
  if (calls == nullptr) return std::nullopt;
  return *reinterpret_cast<PfnStubHelpCalls>(calls)();
}

unsigned countOf(const std::string& library) {
  const auto calls = callsOf(library);
  return calls ? calls->count : 0;
}

bool isLoaded(const std::string& library) { return GetModuleHandleA(library.c_str()) != nullptr; }

TEST_ALONE(HtmlHelp, ANullFileAnswersFalseAndLoadsNothing) {
  const HelpCase host;
  const std::string control = host.stub("control.dll");
  const std::string named = host.stubByName();
  host.registry.store(control);
  EXPECT_EQ(host.help(nullptr, 1, 2), 0);
  EXPECT_FALSE(isLoaded(control));
  EXPECT_FALSE(isLoaded(kControl));
}

TEST_ALONE(HtmlHelp, TheRegistryNamesTheLibraryAndTheCallArrivesUnchanged) {
  const HelpCase host;
  const std::string control = host.stub("control.dll");
  const std::string named = host.stubByName();
  host.registry.store(control);
  void* const window = reinterpret_cast<void*>(0x12345678);
  EXPECT_EQ(host.help("manual.chm::/start.htm", 0xFEDCBA98, 0x00001234, window), 1);
  const auto calls = callsOf(control);
  ASSERT_TRUE(calls);
  EXPECT_EQ(calls->count, 1U);
  EXPECT_EQ(calls->window, window);
  EXPECT_STREQ(calls->file, "manual.chm::/start.htm");
  EXPECT_EQ(calls->command, 0xFEDCBA98U);
  EXPECT_EQ(calls->data, 0x1234U);
  EXPECT_FALSE(isLoaded(kControl));
}

// Data above 32 bits cannot be passed at all: the argument has no more.
TEST_ALONE(HtmlHelp, DataIsWidenedWithZeros) {
  const HelpCase host;
  const std::string control = host.stub("control.dll");
  host.registry.store(control);
  EXPECT_EQ(host.help("manual.chm", 15, 0xFFFFFFFF), 1);
  ASSERT_TRUE(callsOf(control));
  EXPECT_EQ(callsOf(control)->data, DWORD_PTR{0xFFFFFFFF});
  EXPECT_EQ(host.help("manual.chm", 15, 0x80000000), 1);
  EXPECT_EQ(callsOf(control)->data, DWORD_PTR{0x80000000});
}

TEST_ALONE(HtmlHelp, AnEmptyFileIsPassedOn) {
  const HelpCase host;
  const std::string control = host.stub("control.dll");
  host.registry.store(control);
  EXPECT_EQ(host.help(""), 1);
  EXPECT_EQ(countOf(control), 1U);
}

TEST_ALONE(HtmlHelp, AnExpandableValueIsExpandedBeforeTheLoad) {
  const HelpCase host;
  const std::string control = host.stub("control.dll");
  SetEnvironmentVariableA("QX_HELP_FOLDER", host.file("").c_str());
  host.registry.store("%QX_HELP_FOLDER%control.dll", REG_EXPAND_SZ);
  EXPECT_EQ(host.help("manual.chm"), 1);
  EXPECT_EQ(countOf(control), 1U);
}

TEST_ALONE(HtmlHelp, AnOrdinaryValueIsNotExpanded) {
  const HelpCase host;
  const std::string control = host.stub("control.dll");
  const std::string named = host.stubByName();
  SetEnvironmentVariableA("QX_HELP_FOLDER", host.file("").c_str());
  host.registry.store("%QX_HELP_FOLDER%control.dll");
  EXPECT_EQ(host.help("manual.chm"), 1);
  EXPECT_FALSE(isLoaded(control));
  EXPECT_EQ(countOf(named), 1U);
}

TEST_ALONE(HtmlHelp, WithoutTheKeyTheControlIsLoadedByItsName) {
  const HelpCase host;
  const std::string named = host.stubByName();
  EXPECT_EQ(host.help("manual.chm"), 1);
  EXPECT_EQ(countOf(named), 1U);
}

TEST_ALONE(HtmlHelp, WithoutAValueTheControlIsLoadedByItsName) {
  const HelpCase host;
  const std::string named = host.stubByName();
  host.registry.addKey();
  EXPECT_EQ(host.help("manual.chm"), 1);
  EXPECT_EQ(countOf(named), 1U);
}

TEST_ALONE(HtmlHelp, WhenTheLoadFailsTheControlIsLoadedByItsName) {
  const HelpCase host;
  const std::string named = host.stubByName();
  host.registry.store(host.file("no such library.dll"));
  EXPECT_EQ(host.help("manual.chm"), 1);
  EXPECT_EQ(countOf(named), 1U);
}

// A path to the same library, with so many "\." that it has this length.
std::string stretched(const std::string& path, std::size_t length) {
  const std::size_t at = path.find_last_of('\\');
  std::string longer = path;
  while (longer.size() + 1 < length) longer.insert(at, "\\.");
  if (longer.size() < length) longer.insert(at, "\\");
  return longer;
}

TEST_ALONE(HtmlHelp, ThePathHas259CharactersAtMost) {
  const HelpCase host;
  const std::string control = host.stub("control.dll");
  const std::string longest = stretched(control, kLongest);
  ASSERT_EQ(longest.size(), kLongest);
  host.registry.store(longest);
  EXPECT_EQ(host.help("manual.chm"), 1);
  EXPECT_EQ(countOf(control), 1U);
}

TEST_ALONE(HtmlHelp, ALongerValueIsNoPath) {
  const HelpCase host;
  const std::string control = host.stub("control.dll");
  const std::string named = host.stubByName();
  host.registry.store(stretched(control, kLongest + 1));
  EXPECT_EQ(host.help("manual.chm"), 1);
  EXPECT_FALSE(isLoaded(control));
  EXPECT_EQ(countOf(named), 1U);
}

TEST_ALONE(HtmlHelp, AnExpandedTextThatIsLongerIsNoPath) {
  const HelpCase host;
  const std::string control = host.stub("control.dll");
  const std::string named = host.stubByName();
  SetEnvironmentVariableA("QX_HELP_PATH", stretched(control, kLongest + 1).c_str());
  host.registry.store("%QX_HELP_PATH%", REG_EXPAND_SZ);
  EXPECT_EQ(host.help("manual.chm"), 1);
  EXPECT_FALSE(isLoaded(control));
  EXPECT_EQ(countOf(named), 1U);
}

TEST_ALONE(HtmlHelp, WhatWasFoundIsKept) {
  const HelpCase host;
  const std::string first = host.stub("first.dll");
  const std::string second = host.stub("second.dll");
  host.registry.store(first);
  EXPECT_EQ(host.help("manual.chm"), 1);
  host.registry.store(second);
  EXPECT_EQ(host.help("manual.chm"), 1);
  EXPECT_EQ(countOf(first), 2U);
  EXPECT_FALSE(isLoaded(second));
}

// Afterwards a good library is there under both names, and stays unloaded.
void expectThatTheFailureStays(const HelpCase& host) {
  const std::string control = host.stub("control.dll");
  const std::string named = host.stubByName();
  host.registry.store(control);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(host.help("manual.chm"), 1);
  EXPECT_FALSE(isLoaded(control));
  EXPECT_EQ(countOf(named), 0U);
  EXPECT_EQ(host.help(nullptr), 0);
}

TEST_ALONE(HtmlHelp, WithoutAnyControlEveryCallAnswersTrueAndNoFurtherLoadIsAttempted) {
  const HelpCase host;
  host.registry.store(host.file("no such library.dll"));
  EXPECT_EQ(host.help("manual.chm"), 1);
  EXPECT_FALSE(isLoaded(kControl));
  expectThatTheFailureStays(host);
}

TEST_ALONE(HtmlHelp, ALibraryWithoutTheEntryIsAFailureThatStays) {
  const HelpCase host;
  const std::string control = host.stub("without_entry.dll", "help_without_entry.dll");
  host.registry.store(control);
  EXPECT_EQ(host.help("manual.chm"), 1);
  EXPECT_TRUE(isLoaded(control));
  EXPECT_EQ(countOf(control), 0U);
  expectThatTheFailureStays(host);
}

// The launcher itself tells what its export keeps to itself.
TEST_ALONE(HtmlHelp, TheLauncherAnswersTheHelpWindow) {
  const HelpCase host;
  host.registry.store(host.stub("control.dll"));
  EXPECT_EQ(CallHtmlHelp(nullptr, "manual.chm", 0, DWORD_PTR{1} << 40), kHelpWindow);
  EXPECT_EQ(callsOf(host.file("control.dll"))->data, DWORD_PTR{1} << 40);
}

TEST_ALONE(HtmlHelp, TheLauncherAnswersNoWindowWithoutAControl) {
  const HelpCase host;
  EXPECT_EQ(CallHtmlHelp(nullptr, "manual.chm", 0, 0), nullptr);
  EXPECT_EQ(CallHtmlHelp(nullptr, "manual.chm", 0, 0), nullptr);
}

}  // namespace
