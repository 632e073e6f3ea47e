// SPDX-License-Identifier: MIT
#include "bench/Cancels.h"

#include <atomic>
#include <chrono>

#include "QXHooks.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr Clock::time_point kNotYet{};

// Behind the begin, so that the content is flowing and the line's buffers are full.
constexpr auto kIntoIt = std::chrono::milliseconds(5);
constexpr int kPiecesIntoIt = 256;

// A callback of slot 39 is told nothing of who asked for it.
std::atomic<Clock::time_point> g_began;

struct Cancel {
  Clock::time_point answered = kNotYet;
  int polls = 0;

  QXBool answer(bool isTime) {
    if (!isTime) return 0;
    answered = Clock::now();
    return 1;
  }
};

QXBool noteBegin(const char*, std::uint32_t, std::uint32_t) {
  Clock::time_point before = kNotYet;
  g_began.compare_exchange_strong(before, Clock::now());
  return 0;
}

QXBool cancelInTime(TQXIPIFInt* client, QXHostValue, QXHostValue, QXHostValue, QXBool*) {
  const Clock::time_point began = g_began;
  return QXClientHooks::ContextOf<Cancel>(client).answer(began != kNotYet && Clock::now() - began > kIntoIt);
}

// Asked for each piece of the body.
QXBool cancelAtPiece(TQXIPIFInt* client, QXHostValue, QXHostValue, QXHostValue, QXBool*) {
  auto& cancel = QXClientHooks::ContextOf<Cancel>(client);
  return cancel.answer(++cancel.polls == kPiecesIntoIt);
}

double fromAnswerToReturn(TQXIPIFInt& client, decltype(QXClientTable::OnPoll) poll,
                          const std::function<void()>& operation) {
  Cancel cancel;
  QXClientHooks hooks(&client, &cancel);
  hooks->OnPoll = poll;
  operation();
  const Clock::time_point back = Clock::now();
  if (cancel.answered == kNotYet) throw NotDone();  // it was over before
  return std::chrono::duration<double>(back - cancel.answered).count();
}

}  // namespace

double cancelCopy(TQXIPIFInt& client, const Arguments& arguments) {
  g_began = kNotYet;
  return fromAnswerToReturn(client, &cancelInTime, [&] {
    client.FTPCpyFile(arguments.at(0).c_str(), arguments.at(1).c_str(), &noteBegin, 0, 0, 0);
  });
}

double cancelHttp(TQXIPIFInt& client, const Arguments& arguments) {
  return fromAnswerToReturn(client, &cancelAtPiece, [&] {
    client.HTTPDownloadFile(client.m_RemoteSystem, arguments.at(0).c_str(), client.m_nPort,
                            arguments.at(1).c_str(), nullptr, 0, 0);
  });
}
