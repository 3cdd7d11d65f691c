/// \file
/// What is undone when a signal ends the program.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_UNWML_SIGNALS_H
#define VS_WML_UNWML_SIGNALS_H

#include <csignal>
#include <mutex>
#include <optional>
#include <thread>

namespace unwml {

/// Something that must not be left behind. From being begun until it ends it is undone when a
/// signal ends the program.
class Undoable {
 public:
  Undoable(const Undoable &) = delete;
  Undoable &operator=(const Undoable &) = delete;

 protected:
  Undoable() = default;
  virtual ~Undoable() = default;

  /// While it is held no signal ends the program. Begin and End ask for it.
  static std::unique_lock<std::mutex> HoldSignals();
  void Begin(const std::unique_lock<std::mutex> &held);
  void End(const std::unique_lock<std::mutex> &held);

 private:
  friend class SignalWatch;
  virtual void Undo() noexcept = 0;

  bool begun_ = false;
  Undoable *next_ = nullptr;
  Undoable *previous_ = nullptr;
};

/// Waits, on a thread of its own, for the signals INT, TERM, HUP and QUIT, as far as they are not
/// ignored; one that comes undoes what is begun, and ends the program as it would have otherwise.
/// To be made before other threads. Where no thread can be started nothing is undone.
class SignalWatch {
 public:
  SignalWatch();
  ~SignalWatch();
  SignalWatch(const SignalWatch &) = delete;
  SignalWatch &operator=(const SignalWatch &) = delete;

 private:
  void Wait();

  sigset_t signals_{};
  sigset_t before_{};
  std::optional<std::thread> thread_;
};

}  // namespace unwml

#endif  // VS_WML_UNWML_SIGNALS_H
