/// \file
/// What stands between the filter and a host that may throw.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_BLOCKS_GUARDED_HOST_H
#define VS_WML_HOST_BLOCKS_GUARDED_HOST_H

#include <cstdint>
#include <exception>
#include <functional>

#include "host/blocks/stream.h"

namespace vs_wml {

/// How far the filter has come.
struct ReadOutcome {
  bool ended = false;        ///< it has told the end of the document
  bool aborted = false;      ///< it has given the stream up
  std::uint32_t tables = 0;  ///< it has opened so many
};

/// A host of the filter, which exceptions must not cross. Its output routines are members
/// that take the routine's arguments without the two user words, the first of which is the
/// host's address. The first exception that one of them throws is kept; from then on none is
/// called, and nothing more is read.
class GuardedHost {
 public:
  GuardedHost() = default;
  GuardedHost(const GuardedHost &) = delete;
  GuardedHost &operator=(const GuardedHost &) = delete;

  /// The stream that the routines are called from; to be set before it reads.
  void Attach(Stream &stream) { stream_ = &stream; }
  const ReadOutcome &Outcome() const { return outcome_; }
  /// Throws what a member has thrown.
  void Rethrow() const {
    if (failure_) std::rethrow_exception(failure_);
  }

 protected:
  ~GuardedHost() = default;

  const Stream &Source() const { return *stream_; }
  ReadOutcome outcome_;

  /// The routine that calls a member of the host; a failure is answered with SO_STOP.
  template <typename Host, auto kMember, typename Class, typename... Arguments>
  static VwRoutine Routine(void (Class::* /*member*/)(Arguments...)) {
    return AsRoutine(&Call<Host, kMember, Arguments...>);
  }
  template <typename Host, auto kMember, typename... Arguments>
  [[gnu::noinline]] static std::uint32_t Call(Arguments... arguments, VwUserWord user,
                                              VwUserWord /*other*/) noexcept {
    Host &host = Of<Host>(user);
    if (host.failure_) return SO_STOP;
    try {
      std::invoke(kMember, host, arguments...);
      return 0;
    } catch (...) {
      host.failure_ = std::current_exception();
      if (host.stream_ != nullptr) host.stream_->Cut();
      return SO_STOP;
    }
  }
  template <typename Host>
  static Host &Of(VwUserWord user) {
    return *reinterpret_cast<Host *>(user);
  }

 private:
  Stream *stream_ = nullptr;
  std::exception_ptr failure_;
};

}  // namespace vs_wml

#endif  // VS_WML_HOST_BLOCKS_GUARDED_HOST_H
