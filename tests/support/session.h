// A host for tests: it takes every call, checks it, writes it down and answers by script.
//
// SPDX-License-Identifier: MIT
#ifndef VS_WML_TESTS_SUPPORT_SESSION_H
#define VS_WML_TESTS_SUPPORT_SESSION_H

#include <array>
#include <cstdint>
#include <functional>
#include <span>
#include <sstream>
#include <string>

#include "host/writers/trace.h"
#include "tests/support/block_source.h"
#include "tests/support/call_checker.h"
#include "tests/support/library.h"
#include "vs_wml.h"

namespace vs_wml::test {

/// The eleven identities that are served.
inline constexpr std::int16_t kIdentities[] = {1151, 1163, 1160, 1161, 1159, 1154,
                                               1155, 1156, 1162, 1157, 1158};

/// The slots that the filter calls.
inline constexpr std::int16_t kCalledSlots[] = {1,  2,  3,  5,  18, 20, 31, 32, 34, 35, 36, 40,
                                                41, 45, 49, 50, 51, 85, 88, 90, 96, 98, 99};

/// The receiving end of one stream.
class Host {
 public:
  Host() = default;
  Host(const Host &) = delete;
  Host &operator=(const Host &) = delete;

  /// Puts a routine into all 118 slots and the user words of this host into the instance.
  void Install(WmlProc *instance, const Library &library = LinkedLibrary());

  /// The calls so far, one a line.
  std::string Text();
  /// What resumed reads told again before they went on.
  std::string Announced();

  /// The answer to a break of that kind.
  std::function<std::uint32_t(std::uint32_t kind)> answerBreak;
  /// Called at the start of every output routine.
  std::function<void()> watch;
  bool tracing = true;  ///< false: calls are checked and counted only
  bool storing = true;  ///< false: strings and references are not answered

  CallChecker checker;
  std::uint64_t calls = 0;
  std::uint32_t strings = 0;     ///< answered to SOStoreString: 1, 2, 3, ...
  std::uint32_t references = 0;  ///< answered to SOOpenReference: 1, 2, 3, ...
  /// The character set being told again ends what a resumed read announces.
  bool announcing = false;

 private:
  struct Routines;

  /// The trace that the next line goes to.
  Trace &Log() { return announcing ? announced_ : trace_; }

  std::ostringstream text_;
  std::ostringstream announcedText_;
  Trace trace_{text_};
  Trace announced_{announcedText_};
};

/// A save block with the position that was taken with it.
struct SavedState {
  std::array<std::uint8_t, VW_SAVE_SIZE> block{};
  std::uint32_t position = 0;
  bool operator==(const SavedState &) const = default;
};

/// An instance from VwAllocProc to VwFreeProc, of the linked library unless another is
/// given, which has to outlive it. With a heap that fails, `Attached` tells
/// how far it came; every member is safe to call all the same.
class Session {
 public:
  Session(BlockSource &source, Host &host, const Library &library = LinkedLibrary());
  ~Session();
  Session(const Session &) = delete;
  Session &operator=(const Session &) = delete;

  bool Attached() const { return instance_ != nullptr && chr_ != 0; }
  WmlProc *Instance() const { return instance_; }
  VwHandle Chr() const { return chr_; }

  VwFileInfo Open(std::int16_t identity = 1151);
  void Section();
  /// One VwStreamRead. True when the document came to its end.
  bool Read();
  std::uint32_t Tell() const;
  std::int32_t Seek(std::uint32_t offset) const;
  SavedState Save() const;
  void Restore(const SavedState &state) const;

 private:
  const Library &library_;
  BlockSource &source_;
  Host &host_;
  WmlProc *instance_;
  VwHandle chr_ = 0;
  bool resumed_ = false;
};

/// Opens, tells the section and reads to the end, going straight on after every stop.
/// Returns the host's text; a broken rule is its last line.
std::string ReadDocument(BlockSource &source, Host &host, std::int16_t identity = 1151);
/// The same with a host that never stops.
std::string ReadDocument(std::string_view text, std::int16_t identity = 1151);

}  // namespace vs_wml::test

#endif  // VS_WML_TESTS_SUPPORT_SESSION_H
