// SPDX-License-Identifier: MIT
// What the tests of HTTPDownloadFile have in common.
#pragma once

#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "framework/internet/net/NameLookup.h"
#include "tests/client/TransferTest.h"
#include "tests/support/ModalBoxes.h"

inline constexpr const char* kAcceptLine =
    "Accept: audio/x-aiff, audio/basic, audio/midi, audio/mpeg, audio/wav, image/jpeg, image/gif, image/jpg, "
    "image/png, image/mng, image/bmp, text/plain, text/html, text/htm, image/imk, image/img\r\n";
inline constexpr auto kAllWrite = std::filesystem::perms::owner_write | std::filesystem::perms::group_write |
                                  std::filesystem::perms::others_write;

class HttpDownloadTest : public TransferTest {
 protected:
  // A server that answers every request like this.
  static fixture::ScriptedHttp answering(const nlohmann::json& answer) {
    return fixture::ScriptedHttp(nlohmann::json{{"answers", nlohmann::json::array({answer})}});
  }
  static std::string hostLine(const fixture::Server& server) {
    return "Host: 127.0.0.1:" + std::to_string(server.port()) + "\r\n";
  }

  std::uint32_t download(const fixture::Server& server, const std::string& object = "/a") {
    return client.HTTPDownloadFile(server.host().c_str(), object.c_str(), server.port(), local.c_str(),
                                   nullptr, 11, 22);
  }

  // What OnPoll is asked with: the host's two values, and nothing of a transfer or a connection.
  static void expectDownloads(QXHostValue first, QXHostValue second, QXHostValue transfer,
                              const QXBool* reconnect) {
    EXPECT_EQ(first, 11u);
    EXPECT_EQ(second, 22u);
    EXPECT_EQ(transfer, 0u);
    EXPECT_EQ(reconnect, nullptr);
  }

  template <class Work>
  static std::vector<testing_support::ModalBox> boxesOf(Work work) {
    return testing_support::modalBoxesOf(work);
  }
};
