// SPDX-License-Identifier: MIT
#include "tests/support/Controller.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <mutex>

#include "tests/support/Fixture.h"
#include "tests/support/RawSocket.h"

namespace fixture {
namespace {

using testing_support::RawSocket;

RawSocket connectToController() {
  const char* port = std::getenv("QX_FIXTURE_PORT");
  if (port == nullptr)
    throw FixtureError("QX_FIXTURE_PORT is not set: run under tests/fixture/run-with-fixture");
  return {"127.0.0.1", static_cast<std::uint16_t>(std::strtoul(port, nullptr, 10))};
}

// Ends the running test as skipped, also from inside a constructor.
[[noreturn]] void skipTest(const std::string& reason) {
  [&reason] { GTEST_SKIP() << reason; }();
  // GoogleTest takes this exception for one that has been told already.
  using testing::TestPartResult;
  throw testing::AssertionException({TestPartResult::kSkip, __FILE__, __LINE__, reason.c_str()});
}

nlohmann::json exchange(RawSocket& socket, const nlohmann::json& request) {
  socket.send(request.dump() + "\n");
  auto answer = nlohmann::json::parse(socket.readLine());
  if (answer.contains("unavailable")) skipTest(answer["unavailable"].get<std::string>());
  if (answer.contains("error"))
    throw FixtureError(request.dump() + ": " + answer["error"].get<std::string>());
  return answer;
}

}  // namespace

nlohmann::json askController(const nlohmann::json& request) {
  static std::mutex mutex;
  static RawSocket socket = connectToController();
  const std::lock_guard lock(mutex);
  return exchange(socket, request);
}

nlohmann::json askControllerApart(const nlohmann::json& request) {
  RawSocket socket = connectToController();
  return exchange(socket, request);
}

}  // namespace fixture
