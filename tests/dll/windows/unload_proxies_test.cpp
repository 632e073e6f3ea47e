// SPDX-License-Identifier: MIT
// The library goes when it has asked the system for proxies, a script among them.
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <thread>

#include "tests/dll/library.h"
#include "tests/support/ScratchFolder.h"
#include "tests/support/windows/ConfigurationScript.h"
#include "tests/support/windows/OwnSettings.h"

namespace {

// As soon as the thread that asked the script has let go of it. The reference is kept: only unloading forgets
// it.
std::unique_ptr<ClientLibrary> loadAfresh(const std::string& path) {
  const auto giveUp = std::chrono::steady_clock::now() + std::chrono::seconds(60);
  while (std::chrono::steady_clock::now() < giveUp) {
    auto loaded = std::make_unique<ClientLibrary>(path);
    if (loaded->addRef() == 1) return loaded;
    loaded->release();
    std::this_thread::yield();
  }
  throw std::runtime_error("still loaded");
}

TEST(Unloading, ALibraryThatHasAskedAScriptForProxiesGoes) {
  const fixture::Proxy proxy(
      "proxy-script", nlohmann::json{{"speaks", "http"}, {"names", {{"ftp.tests.example", "127.0.0.1"}}}});
  const fixture::ScriptedFtp server;
  const testing_support::ConfigurationScript script(
      "return 'PROXY 127.0.0.1:" + std::to_string(proxy.port()) + "';");
  const testing_support::OwnSettings settings({false, script.address(), "", ""});
  const testing_support::ScratchFolder scratch;
  const std::string copy = scratch.file(clientLibraryName());
  std::filesystem::copy_file(std::getenv("QX_LIBRARY"), copy);
  for (std::size_t round = 1; round <= 3; ++round) {
    {
      const auto loaded = loadAfresh(copy);
      QXErrorInfo error{};
      const Client client = makeClient(*loaded, &error);
      ASSERT_NE(client, nullptr);
      EXPECT_EQ(
          loaded->connect(client.get(), "ftp.tests.example", "user", "secret", server.port(), 1, 0, nullptr),
          1)
          << error.szText;
    }
    EXPECT_EQ(proxy.requests().size(), round);
  }
}

}  // namespace
