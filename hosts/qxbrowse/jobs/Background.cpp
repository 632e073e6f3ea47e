// SPDX-License-Identifier: MIT
#include "hosts/qxbrowse/jobs/Background.h"

#include <utility>

namespace browse {

Background::Background(qx::Exports exports, Post post, Line line)
    : m_exports(std::move(exports)),
      m_post(std::move(post)),
      m_line(std::move(line)),
      m_thread(&Background::runJobs, this) {}

Background::~Background() {
  {
    const std::lock_guard lock(m_lock);
    m_isOver = true;
    cancelRunning();
    m_changed.notify_all();
  }
  m_thread.join();
}

void Background::add(Job job) {
  const std::lock_guard lock(m_lock);
  m_jobs.push_back(std::move(job));
  m_changed.notify_all();
}

void Background::cancel() {
  const std::lock_guard lock(m_lock);
  cancelRunning();
}

void Background::cancelAll() {
  const std::lock_guard lock(m_lock);
  m_unwanted = m_jobs.size();
  cancelRunning();
}

// With the lock: the next job does not begin meanwhile.
void Background::cancelRunning() {
  if (!m_isRunning) return;
  m_isStopped = true;
  m_client.end();
}

void Background::runJobs() {
  while (std::optional<Job> job = next()) {
    Letter letter = (*job)();
    job.reset();  // what it holds ends here, not on the window's thread
    m_post(std::move(letter));
  }
  m_client.free();
}

std::optional<Background::Job> Background::next() {
  std::unique_lock lock(m_lock);
  m_isRunning = false;
  m_changed.wait(lock, [this] { return m_isOver || !m_jobs.empty(); });
  if (m_isOver) return {};
  m_isRunning = true;
  m_isStopped = m_unwanted > 0;
  if (m_unwanted > 0) --m_unwanted;
  m_client.rearm();
  Job job = std::move(m_jobs.front());
  m_jobs.pop_front();
  return job;
}

qx::Result<qx::Done> Background::logIn(const qx::Login& login) {
  m_client.free();
  m_login = login;
  return beReady();
}

qx::Result<qx::Done> Background::logOut() {
  m_login.reset();
  m_client.free();
  return {qx::Done{}, {}};
}

qx::Result<qx::Done> Background::beReady() {
  if (m_client.isThere()) return {qx::Done{}, {}};
  if (!m_login) return {std::nullopt, {true, false, 0, "there is no connection", {}}};
  qx::Lambdas lambdas;
  lambdas.line = [this](const char* line) {
    m_watch.take(line);
    if (m_line) m_line(line);
  };
  if (qx::Result<qx::Done> made = m_client.make(m_exports, std::move(lambdas)); !made) return made;
  qx::Result<qx::Done> connected = m_client.client().connect(*m_login);
  if (!connected) m_client.free();
  return connected;
}

}  // namespace browse
