// SPDX-License-Identifier: MIT
#include "hosts/shared/Bell.h"

#include <pthread.h>
#include <semaphore.h>

#include <csignal>
#include <utility>

namespace hosts {
namespace {

sem_t* semaphoreOf(void* handle) { return static_cast<sem_t*>(handle); }

}  // namespace

Bell::Bell() : m_handle(new sem_t) { sem_init(semaphoreOf(m_handle), 0, 0); }

Bell::~Bell() {
  sem_destroy(semaphoreOf(m_handle));
  delete semaphoreOf(m_handle);
}

void Bell::ring() noexcept { sem_post(semaphoreOf(m_handle)); }

void Bell::wait() noexcept { sem_wait(semaphoreOf(m_handle)); }

// A thread begins with the signals of the one that makes it.
std::thread threadWithoutSignals(std::function<void()> work) {
  sigset_t all;
  sigset_t before;
  sigfillset(&all);
  pthread_sigmask(SIG_SETMASK, &all, &before);
  std::thread thread(std::move(work));
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
  return thread;
}

}  // namespace hosts
