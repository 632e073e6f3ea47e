// SPDX-License-Identifier: MIT
// qxrun FILE COMMAND [ARGUMENT...]: runs the command and writes into FILE its wall and processor seconds and
// the bytes of its peak memory. A process's peak counts from what it had before it became the command, so it
// is started by a small program.
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <chrono>
#include <cstdio>
#include <cstring>

extern char** environ;

namespace {

double seconds(const timeval& time) {
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

bool write(const char* path, double wall, const rusage& usage) {
  std::FILE* const file = std::fopen(path, "w");
  if (file == nullptr) return false;
  std::fprintf(file, "%.6f %.6f %ld\n", wall, seconds(usage.ru_utime) + seconds(usage.ru_stime),
               usage.ru_maxrss * 1024);
  return std::fclose(file) == 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) {
    std::fputs("usage: qxrun FILE COMMAND [ARGUMENT...]\n", stderr);
    return 2;
  }
  const auto start = std::chrono::steady_clock::now();
  pid_t process = 0;
  if (const int error = posix_spawnp(&process, argv[2], nullptr, nullptr, argv + 2, environ); error != 0) {
    std::fprintf(stderr, "qxrun: %s: %s\n", argv[2], std::strerror(error));
    return 127;
  }
  int status = 0;
  rusage usage{};
  if (wait4(process, &status, 0, &usage) != process) return 127;
  const std::chrono::duration<double> wall = std::chrono::steady_clock::now() - start;
  if (!write(argv[1], wall.count(), usage)) return 127;
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}
