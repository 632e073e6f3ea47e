// SPDX-License-Identifier: MIT
// A worker that is asked to stop leaves a web request at once, wherever it waits.
#include "tests/internet/CancelTest.h"
#include "tests/internet/HttpTest.h"

namespace internet_tests {
namespace {

using fixture::ScriptedHttp;
using namespace nlohmann::literals;

class HttpCancel : public HttpTest {
 protected:
  static void fetchAll(const fixture::Server& server) {
    RecordingSession own;
    const HttpFetch fetch(own, server);
    fetch.request->SendRequest();
    fetch.readToEnd();
  }

  // Stops a fetch that waits at the gate of this answer.
  static void expectPromptAtGate(const char* place, const nlohmann::json& answer) {
    expectPrompt(place, [&] {
      const auto server = answering(answer);
      const double latency = latencyMs([&] { fetchAll(server); }, [&] { server.waitAtGate("gate"); });
      server.waitFor(R"({"closed": 1})");
      return latency;
    });
  }
};

TEST_F(HttpCancel, InTheLookup) {
  const SlowLookup slow;
  int count = 0;
  expectPrompt("lookup", [&] {
    return latencyMs([&] { HttpFetch(session, "slow.test", 80).request->SendRequest(); },
                     [&] { SlowLookup::awaitRunning(++count); });
  });
}

TEST_F(HttpCancel, InConnecting) {
  const fixture::Blackhole hanging(false);
  expectPromptInConnecting([&](CInternetSession& own) { HttpFetch(own, hanging).request->SendRequest(); });
}

TEST_F(HttpCancel, BetweenTwoAttempts) {
  const fixture::RefusedPort refused;
  expectPrompt("back-off", [&] {
    Signal failed;
    return latencyMs(
        [&] {
          RecordingSession own;
          own.SetOption(internet::kOptionConnectRetries, 2);
          own.SetOption(internet::kOptionConnectBackoff, 3'600'000);
          own.onStatus = [&](std::uint32_t status) {
            if (status == internet::kStatusClosed) failed.give();
          };
          HttpFetch(own, refused).request->SendRequest();
        },
        [&] { failed.await(); });
  });
}

TEST_F(HttpCancel, InTheHead) { expectPromptAtGate("head", R"({"head_gate": "gate"})"_json); }

TEST_F(HttpCancel, InABodyOfKnownLength) {
  expectPromptAtGate("body", R"({"body": {"size": 9999}, "stall_after": 5000, "gate": "gate"})"_json);
}

TEST_F(HttpCancel, InAChunk) {
  expectPromptAtGate(
      "chunk", R"({"body": {"size": 9999}, "framing": "chunked", "stall_after": 50, "gate": "gate"})"_json);
}

TEST_F(HttpCancel, InTheWaitForTheConnectionsEnd) {
  expectPromptAtGate("end",
                     R"({"body": {"text": "a"}, "framing": "close", "stall_after": 1, "gate": "gate"})"_json);
}

TEST_F(HttpCancel, InTheLength) {
  expectPrompt("length", [&] {
    const auto server = answering(R"({"body": {"text": "a"}, "stall_after": 0, "gate": "gate"})"_json);
    return latencyMs(
        [&] {
          RecordingSession own;
          const HttpFetch fetch(own, server);
          fetch.request->SendRequest();
          fetch.request->GetLength();
        },
        [&] { server.waitAtGate("gate"); });
  });
}

TEST_F(HttpCancel, AStoppedWorkerNotifiesNothingMore) {
  const auto server = answering(R"({"head_gate": "gate"})"_json);
  latencyMs([&] { HttpFetch(session, server).request->SendRequest(); }, [&] { server.waitAtGate("gate"); });
  EXPECT_FALSE(session.statuses.empty());
  EXPECT_FALSE(toldOfAnEnd(session.statuses));
}

}  // namespace
}  // namespace internet_tests
