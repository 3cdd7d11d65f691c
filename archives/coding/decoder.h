/// \file
/// Decompression in steps.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_ARCHIVES_CODING_DECODER_H
#define VS_WML_ARCHIVES_CODING_DECODER_H

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace vs_wml {

/// How a compressed stream stands: an end of input is no end of the stream.
enum class DecodeState {
  kMore,      ///< wants more input or more room
  kFinished,  ///< its end was there, and its checksum right
  kDamaged,   ///< cannot go on
};

struct DecodeStep {
  std::size_t taken = 0;  ///< bytes of the input
  std::size_t given = 0;  ///< bytes put out
  DecodeState state = DecodeState::kMore;
};

/// One compressed stream: a gzip member, a zstd frame, a deflate or brotli stream.
class Decoder {
 public:
  Decoder() = default;
  virtual ~Decoder() = default;
  Decoder(const Decoder &) = delete;
  Decoder &operator=(const Decoder &) = delete;

  /// Decodes into `room` bytes at `out`. A step that has input and room and neither takes
  /// nor gives is kDamaged.
  DecodeStep Decode(std::string_view input, char *out, std::size_t room);
  /// Makes it ready for the next stream.
  virtual void Reset() = 0;
  /// Why it is damaged.
  const std::string &Fault() const { return fault_; }

 protected:
  virtual DecodeStep Step(std::string_view input, char *out, std::size_t room) = 0;
  std::string fault_;
};

/// The largest window of a zstd frame that is accepted, as a power of two: 128 MiB.
inline constexpr int kLargestZstdWindow = 27;

enum class DeflateWrapper { kGzip, kZlib, kNone };

std::unique_ptr<Decoder> MakeInflater(DeflateWrapper wrapper);
/// `dictionary`: empty for none.
std::unique_ptr<Decoder> MakeZstdDecoder(std::string_view dictionary);
std::unique_ptr<Decoder> MakeBrotliDecoder();

/// A stream, or several in a row, decoded in one go.
struct DecodedWhole {
  std::string bytes;
  std::size_t taken = 0;  ///< bytes of the input
  DecodeState state = DecodeState::kMore;
  bool over = false;  ///< stopped at `limit` bytes
  std::string fault;
};

/// `several`: streams that follow one another are joined; what follows the last one stays.
DecodedWhole DecodeWhole(Decoder &decoder, std::string_view input, std::size_t limit, bool several);

bool IsGzip(std::string_view bytes);       ///< begins a gzip member
bool IsZstdFrame(std::string_view bytes);  ///< begins a zstd frame with content
/// Begins a frame that holds no content (RFC 8878, skippable).
bool IsSkippableFrame(std::string_view bytes);

}  // namespace vs_wml

#endif  // VS_WML_ARCHIVES_CODING_DECODER_H
