// SPDX-License-Identifier: MIT
#include "signals.h"

#include <new>
#include <system_error>

namespace unwml {
namespace {

constexpr int kEnding[] = {SIGINT, SIGTERM, SIGHUP, SIGQUIT};
// Ends the watch itself.
constexpr int kEndOfWatch = SIGUSR2;

std::mutex lock;
Undoable *first = nullptr;

}  // namespace

std::unique_lock<std::mutex> Undoable::HoldSignals() {
  return std::unique_lock(lock);
}

void Undoable::Begin(const std::unique_lock<std::mutex> & /*held*/) {
  begun_ = true;
  next_ = first;
  if (first != nullptr) first->previous_ = this;
  first = this;
}

void Undoable::End(const std::unique_lock<std::mutex> & /*held*/) {
  if (!begun_) return;
  begun_ = false;
  (previous_ == nullptr ? first : previous_->next_) = next_;
  if (next_ != nullptr) next_->previous_ = previous_;
  next_ = nullptr;
  previous_ = nullptr;
}

SignalWatch::SignalWatch() {
  sigemptyset(&signals_);
  for (const int signal : kEnding) {
    struct sigaction action {};
    sigaction(signal, nullptr, &action);
    if (action.sa_handler != SIG_IGN) sigaddset(&signals_, signal);
  }
  sigaddset(&signals_, kEndOfWatch);
  pthread_sigmask(SIG_BLOCK, &signals_, &before_);
  try {
    thread_.emplace([this] { Wait(); });
  } catch (const std::system_error &) {
    pthread_sigmask(SIG_SETMASK, &before_, nullptr);
  } catch (const std::bad_alloc &) {
    pthread_sigmask(SIG_SETMASK, &before_, nullptr);
  }
}

SignalWatch::~SignalWatch() {
  if (!thread_) return;
  pthread_kill(thread_->native_handle(), kEndOfWatch);
  thread_->join();
  pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

void SignalWatch::Wait() {
  int signal = 0;
  while (sigwait(&signals_, &signal) != 0) continue;
  if (signal == kEndOfWatch) return;
  // Nothing new is begun from here on.
  const std::unique_lock held(lock);
  for (Undoable *begun = first; begun != nullptr; begun = begun->next_) begun->Undo();
  std::signal(signal, SIG_DFL);
  pthread_sigmask(SIG_UNBLOCK, &signals_, nullptr);
  raise(signal);
}

}  // namespace unwml
