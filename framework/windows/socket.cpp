// SPDX-License-Identifier: MIT
#include "framework/platform/socket.h"

#include <array>
#include <utility>

#include "framework/windows/native_handle.h"
// After the wrapper, which brings winsock2.h.
#include <ws2tcpip.h>

#include "framework/platform/native_address.h"
#include "framework/platform/process.h"
#include "framework/platform/stop_token.h"

namespace platform {

struct SocketAccess {
  static SOCKET handle(const Socket& socket) noexcept { return static_cast<SOCKET>(socket.socket_); }
  static WSAEVENT event(const Socket& socket) noexcept { return reinterpret_cast<WSAEVENT>(socket.event_); }

  // Makes `handle` the socket's, registered once for everything that will ever be waited for. A registered
  // socket does not block.
  static bool adopt(Socket& socket, SOCKET handle) noexcept {
    socket.close();
    if (handle == INVALID_SOCKET) return false;
    socket.socket_ = static_cast<std::intptr_t>(handle);
    const WSAEVENT event = WSACreateEvent();
    if (event != WSA_INVALID_EVENT) {
      socket.event_ = reinterpret_cast<std::intptr_t>(event);
      constexpr long kEvents = FD_READ | FD_WRITE | FD_ACCEPT | FD_CONNECT | FD_CLOSE;
      if (WSAEventSelect(handle, event, kEvents) == 0) return true;
    }
    socket.close();
    return false;
  }
};

const std::size_t kSendBlock = std::size_t{512} * 1024;

namespace {

IoStatus lastStatus() noexcept {
  switch (WSAGetLastError()) {
    case WSAEWOULDBLOCK:
      return IoStatus::wouldBlock;
    case WSAECONNRESET:
    case WSAECONNABORTED:
    case WSAENETRESET:
    case WSAESHUTDOWN:
      return IoStatus::reset;
    default:
      return IoStatus::failed;
  }
}

IoResult moved(int count) noexcept {
  if (count < 0) return {lastStatus(), 0};
  return {IoStatus::done, static_cast<std::size_t>(count)};
}

int bounded(std::size_t size) noexcept {
  constexpr std::size_t kMost = std::size_t{1} << 30;
  return static_cast<int>(size < kMost ? size : kMost);
}

SOCKET openSocket(bool v6) noexcept {
  if (!startSockets()) return INVALID_SOCKET;
  return WSASocketW(v6 ? AF_INET6 : AF_INET, SOCK_STREAM, IPPROTO_TCP, nullptr, 0,
                    WSA_FLAG_OVERLAPPED | WSA_FLAG_NO_HANDLE_INHERIT);
}

// Wine reports a broken connection to recv() as an orderly end. Sending nothing tells them apart.
bool brokenByPeer(SOCKET handle) noexcept {
  if (::send(handle, "", 0, 0) == 0) return false;
  const int error = WSAGetLastError();
  return error == WSAECONNRESET || error == WSAECONNABORTED;
}

template <class Value>
void setOption(SOCKET handle, int level, int name, const Value& value) noexcept {
  setsockopt(handle, level, name, reinterpret_cast<const char*>(&value), sizeof value);
}

}  // namespace

std::string addressText(const SocketAddress& address) { return nativeAddressText(address); }

Socket::~Socket() { close(); }

Socket::Socket(Socket&& other) noexcept
    : socket_(std::exchange(other.socket_, kNone)), event_(std::exchange(other.event_, 0)) {}

Socket& Socket::operator=(Socket&& other) noexcept {
  if (this != &other) {
    close();
    socket_ = std::exchange(other.socket_, kNone);
    event_ = std::exchange(other.event_, 0);
  }
  return *this;
}

IoStatus Socket::connect(const SocketAddress& peer) noexcept {
  if (!SocketAccess::adopt(*this, openSocket(peer.v6))) return IoStatus::failed;
  NativeAddress native = toNative(peer);
  if (::connect(SocketAccess::handle(*this), native.get(), native.length) == 0) return IoStatus::done;
  if (WSAGetLastError() == WSAEWOULDBLOCK) return IoStatus::wouldBlock;
  close();
  return IoStatus::failed;
}

IoStatus Socket::connectResult() noexcept {
  // Asked of the socket itself: the event's error code may have been taken by an earlier wait.
  const SOCKET handle = SocketAccess::handle(*this);
  fd_set connected;
  fd_set failed;
  FD_ZERO(&connected);
  FD_ZERO(&failed);
  connected.fd_count = failed.fd_count = 1;
  connected.fd_array[0] = failed.fd_array[0] = handle;
  timeval atOnce{};
  if (select(0, nullptr, &connected, &failed, &atOnce) < 0) return IoStatus::failed;
  if (failed.fd_count > 0) return IoStatus::failed;
  return connected.fd_count > 0 ? IoStatus::done : IoStatus::wouldBlock;
}

bool Socket::listen(const SocketAddress& local) noexcept {
  if (!SocketAccess::adopt(*this, openSocket(local.v6))) return false;
  SocketAddress anyPort = local;
  anyPort.port = 0;
  NativeAddress native = toNative(anyPort);
  const SOCKET handle = SocketAccess::handle(*this);
  // Without this another program could bind the same port and take the server's connection.
  setOption(handle, SOL_SOCKET, SO_EXCLUSIVEADDRUSE, BOOL{TRUE});
  if (bind(handle, native.get(), native.length) == 0 && ::listen(handle, 4) == 0) return true;
  close();
  return false;
}

IoStatus Socket::accept(Socket& accepted, SocketAddress& peer) noexcept {
  NativeAddress native;
  const SOCKET handle = ::accept(SocketAccess::handle(*this), native.get(), &native.length);
  if (handle == INVALID_SOCKET) {
    const int error = WSAGetLastError();
    // A connection that was broken before it was taken is not this socket's failure.
    return error == WSAEWOULDBLOCK || error == WSAECONNRESET ? IoStatus::wouldBlock : IoStatus::failed;
  }
  // An accepted socket is inherited by child processes, which would keep the connection open.
  SetHandleInformation(reinterpret_cast<HANDLE>(handle), HANDLE_FLAG_INHERIT, 0);
  const auto address = fromNative(native.get());
  // It comes with the listener's registration; adopt() gives it its own.
  if (!SocketAccess::adopt(accepted, handle) || !address) return IoStatus::failed;
  peer = *address;
  return IoStatus::done;
}

std::optional<SocketAddress> Socket::localAddress() const noexcept {
  return queriedAddress(::getsockname, SocketAccess::handle(*this));
}

std::optional<SocketAddress> Socket::peerAddress() const noexcept {
  return queriedAddress(::getpeername, SocketAccess::handle(*this));
}

IoResult Socket::receive(void* buffer, std::size_t size) noexcept {
  const IoResult result =
      moved(::recv(SocketAccess::handle(*this), static_cast<char*>(buffer), bounded(size), 0));
  if (result.status != IoStatus::done || result.bytes > 0 || size == 0) return result;
  return {brokenByPeer(SocketAccess::handle(*this)) ? IoStatus::reset : IoStatus::closed, 0};
}

IoResult Socket::send(const void* data, std::size_t size) noexcept {
  return moved(::send(SocketAccess::handle(*this), static_cast<const char*>(data), bounded(size), 0));
}

std::uint64_t Socket::deliveryMark() const noexcept {
  // TCP_INFO_v0 of Windows 10; the headers hide it from programs that also run on older systems, which
  // refuse.
  struct TcpInfo {
    int state;
    ULONG mss;
    ULONG64 connectionTimeMs;
    BOOLEAN timestampsEnabled;
    ULONG rttUs, minRttUs;
    ULONG bytesInFlight;
    ULONG congestionWindow, sendWindow, receiveWindow, receiveBuffer;
    ULONG64 bytesOut, bytesIn;
    ULONG bytesReordered;
    ULONG bytesRetransmitted;
    ULONG fastRetransmits, duplicateAcksIn, timeoutEpisodes;
    UCHAR synRetransmits;
  } info{};
  static_assert(sizeof info == 88);
  constexpr DWORD kTcpInfo = _WSAIORW(IOC_VENDOR, 39);  // SIO_TCP_INFO
  DWORD version = 0;
  DWORD returned = 0;
  if (WSAIoctl(SocketAccess::handle(*this), kTcpInfo, &version, sizeof version, &info, sizeof info, &returned,
               nullptr, nullptr) != 0) {
    return 0;
  }
  return info.bytesOut - info.bytesRetransmitted - info.bytesInFlight;
}

void Socket::shutdownSend() noexcept { shutdown(SocketAccess::handle(*this), SD_SEND); }

void Socket::keepAlive() noexcept {
  // The system's two hours are longer than a middlebox remembers an idle connection.
  struct KeepAlive {
    u_long on = 1;
    u_long idleMilliseconds = 60'000;
    u_long intervalMilliseconds = 30'000;
  } values;
  constexpr DWORD kKeepAliveValues = _WSAIOW(IOC_VENDOR, 4);  // SIO_KEEPALIVE_VALS
  const SOCKET handle = SocketAccess::handle(*this);
  DWORD returned = 0;
  if (WSAIoctl(handle, kKeepAliveValues, &values, sizeof values, nullptr, 0, &returned, nullptr, nullptr) !=
      0) {
    setOption(handle, SOL_SOCKET, SO_KEEPALIVE, BOOL{TRUE});
  }
}

void Socket::noDelay() noexcept {
  setOption(SocketAccess::handle(*this), IPPROTO_TCP, TCP_NODELAY, BOOL{TRUE});
}

void Socket::close() noexcept {
  if (isOpen()) closesocket(static_cast<SOCKET>(std::exchange(socket_, kNone)));
  if (event_) WSACloseEvent(reinterpret_cast<WSAEVENT>(std::exchange(event_, 0)));
}

void Socket::abort() noexcept {
  if (isOpen()) setOption(SocketAccess::handle(*this), SOL_SOCKET, SO_LINGER, linger{1, 0});
  close();
}

Wake waitForSockets(std::span<SocketInterest> interests, std::chrono::milliseconds limit,
                    std::intptr_t signal) noexcept {
  // The stop event comes first: of several signalled ones the first is told.
  std::array<HANDLE, kMaxWaitedSockets + 2> watched{};
  std::array<SocketInterest*, kMaxWaitedSockets + 2> owners{};
  DWORD count = 0;
  const StopToken* stop = StopToken::current();
  const std::intptr_t wakeUp = stop ? stop->nativeHandle() : StopToken::kNoHandle;
  if (wakeUp != StopToken::kNoHandle) watched[count++] = handleOf(wakeUp);
  if (signal != kNoSignal) watched[count++] = handleOf(signal);
  for (SocketInterest& interest : interests) {
    interest.ready = false;
    if (!interest.socket || !interest.socket->isOpen()) continue;
    owners[count] = &interest;
    watched[count++] = SocketAccess::event(*interest.socket);
  }
  const auto limitMs = static_cast<DWORD>(limit.count());
  DWORD woken = WAIT_TIMEOUT;
  if (count == 0) {
    // allowed: Sleep: there is nothing to wait for but the time
    Sleep(limitMs);
  } else {
    woken = WaitForMultipleObjects(count, watched.data(), FALSE, limitMs);
  }
  if (stop && stop->raised()) return Wake::stopped;
  if (woken == WAIT_TIMEOUT) return Wake::timedOut;
  for (DWORD i = woken - WAIT_OBJECT_0; i < count; ++i) {
    if (!owners[i]) continue;
    if (i != woken - WAIT_OBJECT_0 && WaitForSingleObject(watched[i], 0) != WAIT_OBJECT_0) continue;
    // Also resets the event. Whoever waits tries its call next, which arms the same signal again.
    WSANETWORKEVENTS told{};
    WSAEnumNetworkEvents(SocketAccess::handle(*owners[i]->socket), watched[i], &told);
    owners[i]->ready = true;
  }
  return Wake::ready;
}

}  // namespace platform
