// SPDX-License-Identifier: MIT
// What the C library of older systems lacks and the product or the C++ library in it wants, made of what they
// have. For the shared library alone: its export list keeps these names inside.
#include <sys/random.h>
#include <sys/stat.h>

#include <cstdint>
#include <cstdlib>

// The names are the C library's:
// NOLINTBEGIN(bugprone-reserved-identifier,readability-inconsistent-declaration-parameter-name)
extern "C" {

// stat and its like were functions of each program until 2.33, which called these with the layout's number.
int __xstat(int layout, const char* path, struct stat* status) noexcept;
int __fxstat(int layout, int file, struct stat* status) noexcept;
int __lxstat(int layout, const char* path, struct stat* status) noexcept;
constexpr int kStatLayout = 1;

int stat(const char* path, struct stat* status) noexcept { return __xstat(kStatLayout, path, status); }
int fstat(int file, struct stat* status) noexcept { return __fxstat(kStatLayout, file, status); }
int lstat(const char* path, struct stat* status) noexcept { return __lxstat(kStatLayout, path, status); }

// Since 2.32 true while a process has one thread, where reference counts need no lock. False is always safe.
extern char __libc_single_threaded;
char __libc_single_threaded = 0;

// Since 2.36. So few bytes come in one piece; without them the program must not go on.
std::uint32_t arc4random() noexcept {
  std::uint32_t number = 0;
  if (getrandom(&number, sizeof number, 0) != sizeof number) std::abort();
  return number;
}

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier,readability-inconsistent-declaration-parameter-name)
