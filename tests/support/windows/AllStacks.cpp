// SPDX-License-Identifier: MIT
// Every thread is suspended and its stack unwound by the tables that all x64 code carries. The names come
// from x86_64-w64-mingw32-addr2line -Cfipe PROGRAM ADDRESS: the addresses printed are those of the file.
#include "tests/support/AllStacks.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "tests/support/windows/Threads.h"

namespace testing_support {
namespace {

constexpr int kMostFrames = 100;
constexpr DWORD kMillisecondsForAll = 20000;

struct Module {
  std::uintptr_t base = 0;
  std::uintptr_t preferredBase = 0;
  char name[MAX_PATH] = "";
};

Module moduleOf(DWORD64 address) {
  Module found;
  HMODULE handle = nullptr;
  const auto flags = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
  if (!GetModuleHandleExA(flags, reinterpret_cast<LPCSTR>(address), &handle)) return found;
  found.base = reinterpret_cast<std::uintptr_t>(handle);
  GetModuleFileNameA(handle, found.name, sizeof found.name);
  const auto* header = reinterpret_cast<const IMAGE_DOS_HEADER*>(handle);
  const auto* image =
      reinterpret_cast<const IMAGE_NT_HEADERS64*>(found.base + static_cast<std::uintptr_t>(header->e_lfanew));
  found.preferredBase = image->OptionalHeader.ImageBase;
  return found;
}

void printFrame(DWORD64 address) {
  const Module module = moduleOf(address);
  std::fprintf(stderr, "    0x%llx %s\n",
               static_cast<unsigned long long>(address - module.base + module.preferredBase), module.name);
}

void step(CONTEXT& context) {
  DWORD64 base = 0;
  if (PRUNTIME_FUNCTION function = RtlLookupFunctionEntry(context.Rip, &base, nullptr)) {
    void* handlerData = nullptr;
    DWORD64 frame = 0;
    RtlVirtualUnwind(UNW_FLAG_NHANDLER, base, context.Rip, function, &context, &handlerData, &frame, nullptr);
    return;
  }
  // A leaf function without tables: its return address is on top of the stack.
  context.Rip = *reinterpret_cast<const DWORD64*>(context.Rsp);
  context.Rsp += sizeof(DWORD64);
}

// Fills `addresses` and returns how many there are. Allocates nothing: the thread may hold the heap's lock.
int unwind(CONTEXT context, DWORD64 (&addresses)[kMostFrames]) {
  int count = 0;
  while (count < kMostFrames && context.Rip != 0) {
    addresses[count++] = context.Rip;
    MEMORY_BASIC_INFORMATION code{};
    if (VirtualQuery(reinterpret_cast<LPCVOID>(context.Rip), &code, sizeof code) == 0 ||
        code.Type != MEM_IMAGE)
      break;
    step(context);
  }
  return count;
}

void printStack(const CONTEXT& context) {
  DWORD64 addresses[kMostFrames];
  const int count = unwind(context, addresses);
  for (int index = 0; index < count; ++index) printFrame(addresses[index]);
}

void printThread(DWORD id) {
  std::fprintf(stderr, "  thread %lu:\n", id);
  const HANDLE thread =
      OpenThread(THREAD_SUSPEND_RESUME | THREAD_GET_CONTEXT | THREAD_QUERY_INFORMATION, FALSE, id);
  if (thread == nullptr) return;
  DWORD64 addresses[kMostFrames];
  CONTEXT context{};
  context.ContextFlags = CONTEXT_FULL;
  SuspendThread(thread);
  const int count = GetThreadContext(thread, &context) ? unwind(context, addresses) : 0;
  // Printing takes locks that the thread may hold, so it runs on before.
  ResumeThread(thread);
  CloseHandle(thread);
  for (int index = 0; index < count; ++index) printFrame(addresses[index]);
}

// Should even the printing hang.
DWORD WINAPI endLater(void*) {
  // allowed: Sleep: the time that printing may take
  Sleep(kMillisecondsForAll);
  endProcess(42);
}

LONG WINAPI reportCrash(EXCEPTION_POINTERS* crash) {
  std::fprintf(stderr, "CRASH: exception 0x%lx in thread %lu\n", crash->ExceptionRecord->ExceptionCode,
               GetCurrentThreadId());
  printStack(*crash->ContextRecord);
  std::fflush(stderr);
  endProcess(static_cast<int>(crash->ExceptionRecord->ExceptionCode));
}

}  // namespace

void prepareStackPrinting() {}

void printAllStacks() {
  CreateThread(nullptr, 0, endLater, nullptr, 0, nullptr);
  for (const DWORD id : threadIds())
    if (id != GetCurrentThreadId()) printThread(id);
}

void endProcess(int exitCode) {
  TerminateProcess(GetCurrentProcess(), static_cast<UINT>(exitCode));
  // allowed: Sleep: the process ends under this thread
  for (;;) Sleep(INFINITE);
}

int leaveMain(int exitCode) {
  std::fflush(nullptr);
  endProcess(exitCode);
  return exitCode;
}

void disableErrorBoxes() {
  SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
  _set_error_mode(_OUT_TO_STDERR);
  SetUnhandledExceptionFilter(reportCrash);
}

}  // namespace testing_support
