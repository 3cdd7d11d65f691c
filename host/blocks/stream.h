/// \file
/// A stream: the filter's entry points with the clean-up done for the host.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_BLOCKS_STREAM_H
#define VS_WML_HOST_BLOCKS_STREAM_H

#include <cstdint>
#include <span>

#include "host/blocks/block_source.h"
#include "vs_wml.h"

namespace vs_wml {

/// An output routine and the slot it belongs to.
struct OutputRoutine {
  std::int16_t slot;
  VwRoutine routine;
};

/// Any output routine as the type that slots store.
template <typename Result, typename... Arguments>
VwRoutine AsRoutine(Result (*routine)(Arguments...)) {
  return reinterpret_cast<VwRoutine>(routine);
}

/// A document that is open in the filter; closed and freed by the destructor.
class Stream {
 public:
  /// Opens `source`, which has to outlive the stream, with a filter identity of
  /// WmlOverlayId. Every routine gets `user` as its first user word. Throws
  /// std::bad_alloc when the filter has no memory for an instance; an identity that
  /// is not served is reported to SOAbortStream.
  Stream(BlockSource &source, std::int16_t identity, std::span<const OutputRoutine> routines,
         void *user);
  ~Stream();
  Stream(const Stream &) = delete;
  Stream &operator=(const Stream &) = delete;

  /// Tells the section: once, before the first Read.
  void Section() { VwStreamSection(handle_, instance_); }
  /// Reads until the document ends or a routine answers SO_STOP.
  void Read() { VwStreamRead(handle_, instance_); }
  /// Ends the document where it is read: the source serves nothing more.
  void Cut() { source_.SetLimit(0); }
  /// Offset of the next byte to be read; may be called by an output routine.
  std::uint32_t Offset() const;
  const VwFileInfo &Info() const { return info_; }

 private:
  BlockSource &source_;
  WmlProc *instance_;
  VwHandle handle_ = 0;
  VwFileInfo info_{};
};

}  // namespace vs_wml

#endif  // VS_WML_HOST_BLOCKS_STREAM_H
