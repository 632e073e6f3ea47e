// SPDX-License-Identifier: MIT
// qxbench: carries out one operation of the loaded library a number of times. Prints the seconds of each,
// then the processor's for all of them and, on Linux, the bytes of memory that they have added at most.
#include <cstdio>
#include <exception>
#include <stdexcept>
#include <string>

#include "bench/Operations.h"
#include "bench/Usage.h"
#include "examples/host/ClientLibrary.h"

namespace {

constexpr const char* kUsage =
    "usage: qxbench LIBRARY HOST PORT USER PASSWORD [connected:]OPERATION [FIRST+]TIMES [ARGUMENT...]\n"
    "# in an argument stands for a number of six digits: FIRST (0), and one more each time\n";

struct Login {
  std::string host, user, password;
  std::uint32_t port;
};

// What to do: `name` on the connection of FTPConnect or on the operation's own.
struct Work {
  bool connected;
  std::string name;
  int first, times;
  Arguments arguments;
};

Work parseWork(const std::string& operation, const std::string& times, const Arguments& arguments) {
  constexpr std::string_view kConnected = "connected:";
  const bool connected = operation.starts_with(kConnected);
  const auto plus = times.find('+');
  const bool counts = plus != std::string::npos;
  return {connected, connected ? operation.substr(kConnected.size()) : operation,
          counts ? std::stoi(times) : 0, std::stoi(counts ? times.substr(plus + 1) : times), arguments};
}

Arguments numbered(Arguments arguments, int number) {
  char digits[16];
  std::snprintf(digits, sizeof digits, "%06d", number);
  for (std::string& argument : arguments) {
    if (const auto at = argument.find('#'); at != std::string::npos) argument.replace(at, 1, digits);
  }
  return arguments;
}

void carryOut(TQXIPIFInt& client, const Work& work) {
  const Operation& operation = operations().at(work.name);
  const double before = processorSeconds();
  const bool countsMemory = forgetPeakMemory();
  const std::uint64_t atFirst = peakMemory();
  for (int i = 0; i < work.times; ++i)
    std::printf("seconds %.6f\n", operation(client, numbered(work.arguments, work.first + i)));
  std::printf("processor %.6f\n", processorSeconds() - before);
  if (countsMemory) std::printf("memory %llu\n", static_cast<unsigned long long>(peakMemory() - atFirst));
}

void run(const std::string& path, const Login& login, const Work& work) {
  const ClientLibrary library(path);
  QXErrorInfo error{};
  const Client client = makeClient(library, &error);
  client->FTPSetLogin(login.host.c_str(), login.user.c_str(), login.password.c_str(), login.port, 1);
  try {
    if (work.connected && !client->FTPConnect(login.host.c_str(), login.user.c_str(), login.password.c_str(),
                                              login.port, 1, 0, nullptr)) {
      throw NotDone();
    }
    carryOut(*client, work);
  } catch (const NotDone&) {
    throw std::runtime_error(std::string(client->m_szMessage) + " | " + error.szText);
  }
}

}  // namespace

int main(int argc, char** argv) {
  try {
    if (argc < 8) throw std::invalid_argument(kUsage);
    const Login login{argv[2], argv[4], argv[5], static_cast<std::uint32_t>(std::stoul(argv[3]))};
    const Work work = parseWork(argv[6], argv[7], {argv + 8, argv + argc});
    if (!operations().contains(work.name)) throw std::invalid_argument(kUsage);
    run(argv[1], login, work);
    return 0;
  } catch (const std::exception& problem) {
    std::fprintf(stderr, "qxbench: %s\n", problem.what());
    return 1;
  }
}
