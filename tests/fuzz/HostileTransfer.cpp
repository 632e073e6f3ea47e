// SPDX-License-Identifier: MIT
// The data connections of the hostile server.
#include <utility>

#include "tests/fuzz/HostileFtp.h"
#include "tests/fuzz/Invariants.h"

namespace fuzz {

using testing_support::MemoryLink;

namespace {

bool stands(const HostileFtp::Link& data) {
  return data && data->state == MemoryLink::State::established && data->server == MemoryLink::End::open &&
         !data->clientBroken;
}

}  // namespace

void HostileFtp::transfer(Session& session, std::size_t index) {
  const auto transfer = std::make_shared<Transfer>();
  const std::string verb = commands_[index].verb;
  transfer->command = index;
  transfer->upload = verb == "STOR";
  transfer->control = session.link;
  transfer->data = std::exchange(session.data, nullptr);
  const std::uint16_t port = std::exchange(session.port, std::uint16_t{0});
  if (transfer->upload || verb == "RETR") transfers_.push_back(transfer);

  const bool connectsFirst = choices_.of(4) == 1;
  const bool endsFirst = choices_.of(8) == 1;
  if (port != 0 && connectsFirst) connectBack(transfer, port);
  const std::string content = verb == "RETR" ? fileContent() : verb == "STOR" ? "" : listing(verb == "MLSD");
  openingReply(transfer, content.size());
  if (port != 0 && !connectsFirst) connectBack(transfer, port);
  if (endsFirst) finalReply(transfer);
  if (transfer->upload) {
    takeSlowly(transfer);
    const bool tellsFailure = choices_.of(2) == 0;
    later([this, transfer, tellsFailure] {
      if (!transfer->data && tellsFailure) finalReply(transfer);
    });
  } else {
    sendContent(transfer, content);
    if (!endsFirst) finalReply(transfer);
  }
}

void HostileFtp::openingReply(const TransferPtr& transfer, std::size_t size) {
  const unsigned manner = choices_.of(8);
  if (manner == 7) return;
  const bool tells = !transfer->upload && manner < 5;
  const std::size_t told = manner == 4 ? size + 100 : size;
  later([this, transfer, tells, told] {
    // Only the first reply is asked for it.
    if (tells && commands_[transfer->command].first == 0) transfer->announced = told;
    arrive(transfer->control, transfer->command, 150,
           tells ? "Here (" + std::to_string(told) + " bytes)" : "Here");
  });
  if (manner == 6) reply(transfer->control, transfer->command, 125, "Still");
}

void HostileFtp::connectBack(const TransferPtr& transfer, std::uint16_t port) {
  const unsigned manner = choices_.of(8);
  if (manner == 6) return;
  later([this, transfer, port, manner] {
    if (manner == 5) network_->connectToClient(port, true);
    if (manner == 7) return network_->failAccepts(port);
    transfer->data = network_->connectToClient(port);
  });
}

// --- Downloads ---

void HostileFtp::sendContent(const TransferPtr& transfer, const std::string& content) {
  const unsigned manner = choices_.of(8);
  const std::size_t half = manner < 5 ? content.size() : content.size() / 2;
  const auto sendPart = [transfer](const std::string& part) {
    if (!stands(transfer->data)) return;
    transfer->data->toClient += part;
    transfer->content += part;
  };
  later([sendPart, part = content.substr(0, half / 2)] { sendPart(part); });
  later([sendPart, part = content.substr(half / 2, half - half / 2)] { sendPart(part); });
  if (manner == 7) return;
  later([transfer, manner, size = content.size()] {
    if (!stands(transfer->data)) return;
    transfer->data->server = manner == 6 ? MemoryLink::End::broken : MemoryLink::End::ended;
    transfer->whole = manner != 6 && transfer->content.size() == size;
  });
}

std::string HostileFtp::listing(bool facts) {
  static constexpr std::string_view kFacts[] = {"type=file;size=5;modify=20240229123456; name\r\n",
                                                "type=dir;modify=20240101000000; folder\r\n",
                                                "type=cdir; .\r\n", "no facts\r\n", "type=file; ../up\r\n"};
  static constexpr std::string_view kRows[] = {
      "-rw-r--r-- 1 a b 5 Jan  1 12:30 name\r\n", "drwxr-xr-x 2 a b 0 Jan  1 12:30 folder\r\n",
      "01-02-24  03:04PM       <DIR>          dos\r\n", "total 5\r\n", "550 No such file\r\n"};
  std::string text;
  for (unsigned rows = choices_.of(4); rows > 0; --rows) {
    const unsigned row = choices_.of(6);
    plainListings_ = plainListings_ && row < 3;
    text += row == 5 ? choices_.text(choices_.of(100)) : std::string(facts ? kFacts[row] : kRows[row]);
  }
  return text;
}

// --- Uploads ---

// It takes little, or breaks the connection then; more only after a while, or never.
void HostileFtp::takeSlowly(const TransferPtr& transfer) {
  const unsigned manner = choices_.of(8);
  if (manner < 4) return;
  later([transfer, room = choices_.of(64)] {
    if (transfer->data) transfer->data->room = room;
  });
  if (manner == 4) return;
  later([transfer, manner] {
    if (!stands(transfer->data)) return;
    transfer->data->room = SIZE_MAX;
    if (manner == 6) transfer->data->server = MemoryLink::End::ended;
    if (manner == 7) transfer->data->server = MemoryLink::End::broken;
  });
}

void HostileFtp::takeContent(const TransferPtr& transfer) {
  transfer->content += std::exchange(transfer->data->toServer, {});
}

void HostileFtp::left(const Link& link) {
  for (const TransferPtr& each : transfers_) {
    if (each->data != link || !each->upload) continue;
    if (!link->clientBroken) {
      each->ended = true;
      // What the server has said by then is no answer to the whole.
      const bool spoken = commands_[each->command].final != 0;
      require(!orderly_ || (!spoken && each->control->server == MemoryLink::End::open));
    }
    finalReply(each);
  }
}

// --- The end ---

void HostileFtp::finalReply(const TransferPtr& transfer) {
  static constexpr int kRefusals[] = {425, 426, 451, 550, 552, 350};
  if (std::exchange(transfer->answered, true)) return;
  const unsigned manner = choices_.of(12);
  if (manner == 9) return;
  if (manner == 10) return end(transfer->control, MemoryLink::End::ended);
  later([this, transfer, manner, refusal = choices_.from(kRefusals)] {
    const bool good = transfer->upload ? transfer->ended : transfer->whole;
    int code = good ? 226 : transfer->data ? 426 : 425;
    if (manner == 6) code = 226;
    if (manner == 7) code = refusal;
    if (manner == 8) code = 421;
    transfer->claimed = code == 226;
    arrive(transfer->control, transfer->command, code, "End");
  });
}

}  // namespace fuzz
