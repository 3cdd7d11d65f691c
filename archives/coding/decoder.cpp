// SPDX-License-Identifier: MIT
#include "archives/coding/decoder.h"

#include <brotli/decode.h>
#include <zlib.h>
#include <zstd.h>
#include <zstd_errors.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <new>

namespace vs_wml {
namespace {

class Inflater : public Decoder {
 public:
  explicit Inflater(DeflateWrapper wrapper) {
    constexpr int kWindow = 15;
    constexpr int kGzipToo = 16;  // what zlib takes for "gzip header"
    const int bits = wrapper == DeflateWrapper::kGzip   ? kWindow + kGzipToo
                     : wrapper == DeflateWrapper::kZlib ? kWindow
                                                        : -kWindow;
    if (inflateInit2(&stream_, bits) != Z_OK) throw std::bad_alloc();
  }
  ~Inflater() override { inflateEnd(&stream_); }
  Inflater(const Inflater &) = delete;
  Inflater &operator=(const Inflater &) = delete;

  void Reset() override { inflateReset(&stream_); }

 protected:
  DecodeStep Step(std::string_view input, char *out, std::size_t room) override {
    constexpr std::size_t kMost = std::numeric_limits<uInt>::max();
    // zlib's interface takes the input without const, and leaves it as it is.
    stream_.next_in = const_cast<Bytef *>(reinterpret_cast<const Bytef *>(input.data()));
    stream_.avail_in = static_cast<uInt>(std::min(input.size(), kMost));
    stream_.next_out = reinterpret_cast<Bytef *>(out);
    stream_.avail_out = static_cast<uInt>(std::min(room, kMost));
    const int result = inflate(&stream_, Z_NO_FLUSH);
    DecodeStep step;
    step.taken =
        static_cast<std::size_t>(reinterpret_cast<const char *>(stream_.next_in) - input.data());
    step.given = static_cast<std::size_t>(reinterpret_cast<char *>(stream_.next_out) - out);
    if (result == Z_STREAM_END) {
      step.state = DecodeState::kFinished;
    } else if (result == Z_MEM_ERROR) {
      throw std::bad_alloc();
    } else if (result != Z_OK && result != Z_BUF_ERROR) {
      step.state = DecodeState::kDamaged;
      fault_ = stream_.msg != nullptr ? stream_.msg : "wants a dictionary";
    }
    return step;
  }

 private:
  z_stream stream_{};
};

class ZstdDecoder : public Decoder {
 public:
  explicit ZstdDecoder(std::string_view dictionary) : context_(ZSTD_createDCtx()) {
    if (context_ == nullptr) throw std::bad_alloc();
    ZSTD_DCtx_setParameter(context_, ZSTD_d_windowLogMax, kLargestZstdWindow);
    if (!dictionary.empty()) {
      const std::size_t result =
          ZSTD_DCtx_loadDictionary(context_, dictionary.data(), dictionary.size());
      if (ZSTD_isError(result) != 0) refusal_ = ZSTD_getErrorName(result);
    }
  }
  ~ZstdDecoder() override { ZSTD_freeDCtx(context_); }
  ZstdDecoder(const ZstdDecoder &) = delete;
  ZstdDecoder &operator=(const ZstdDecoder &) = delete;

  void Reset() override { ZSTD_DCtx_reset(context_, ZSTD_reset_session_only); }

 protected:
  DecodeStep Step(std::string_view input, char *out, std::size_t room) override {
    if (!refusal_.empty()) {
      fault_ = refusal_;
      return {0, 0, DecodeState::kDamaged};
    }
    ZSTD_inBuffer in{input.data(), input.size(), 0};
    ZSTD_outBuffer to{out, room, 0};
    const std::size_t result = ZSTD_decompressStream(context_, &to, &in);
    DecodeStep step{in.pos, to.pos, DecodeState::kMore};
    if (ZSTD_isError(result) != 0) {
      step.state = DecodeState::kDamaged;
      fault_ = ZSTD_getErrorCode(result) == ZSTD_error_frameParameter_windowTooLarge
                   ? "its window is larger than " +
                         std::to_string(1U << static_cast<unsigned>(kLargestZstdWindow) >> 20U) +
                         " MiB"
                   : ZSTD_getErrorName(result);
    } else if (result == 0) {
      step.state = DecodeState::kFinished;
    }
    return step;
  }

 private:
  ZSTD_DCtx *context_;
  std::string refusal_;
};

class BrotliDecoder : public Decoder {
 public:
  BrotliDecoder() { Reset(); }
  ~BrotliDecoder() override { BrotliDecoderDestroyInstance(state_); }
  BrotliDecoder(const BrotliDecoder &) = delete;
  BrotliDecoder &operator=(const BrotliDecoder &) = delete;

  void Reset() final {
    if (state_ != nullptr) BrotliDecoderDestroyInstance(state_);
    state_ = BrotliDecoderCreateInstance(nullptr, nullptr, nullptr);
    if (state_ == nullptr) throw std::bad_alloc();
  }

 protected:
  DecodeStep Step(std::string_view input, char *out, std::size_t room) override {
    const auto *from = reinterpret_cast<const std::uint8_t *>(input.data());
    auto *to = reinterpret_cast<std::uint8_t *>(out);
    std::size_t left = input.size();
    std::size_t free = room;
    const BrotliDecoderResult result =
        BrotliDecoderDecompressStream(state_, &left, &from, &free, &to, nullptr);
    DecodeStep step{input.size() - left, room - free, DecodeState::kMore};
    if (result == BROTLI_DECODER_RESULT_SUCCESS) {
      step.state = DecodeState::kFinished;
    } else if (result == BROTLI_DECODER_RESULT_ERROR) {
      step.state = DecodeState::kDamaged;
      fault_ = BrotliDecoderErrorString(BrotliDecoderGetErrorCode(state_));
    }
    return step;
  }

 private:
  BrotliDecoderState *state_ = nullptr;
};

std::uint32_t FirstWord(std::string_view bytes) {
  std::uint32_t word = 0;
  for (std::size_t i = 4; i-- != 0;) word = word << 8U | static_cast<unsigned char>(bytes[i]);
  return word;
}

}  // namespace

DecodeStep Decoder::Decode(std::string_view input, char *out, std::size_t room) {
  DecodeStep step = Step(input, out, room);
  if (step.state == DecodeState::kMore && step.taken == 0 && step.given == 0 && !input.empty() &&
      room != 0) {
    step.state = DecodeState::kDamaged;
    fault_ = "does not go on";
  }
  return step;
}

std::unique_ptr<Decoder> MakeInflater(DeflateWrapper wrapper) {
  return std::make_unique<Inflater>(wrapper);
}

std::unique_ptr<Decoder> MakeZstdDecoder(std::string_view dictionary) {
  return std::make_unique<ZstdDecoder>(dictionary);
}

std::unique_ptr<Decoder> MakeBrotliDecoder() {
  return std::make_unique<BrotliDecoder>();
}

DecodedWhole DecodeWhole(Decoder &decoder, std::string_view input, std::size_t limit,
                         bool several) {
  constexpr std::size_t kPiece = 32768;
  DecodedWhole whole;
  std::size_t used = 0;
  while (true) {
    // One byte more than the limit, so that what goes over it is seen.
    const std::size_t room = std::min(std::max(kPiece, used), limit + 1 - used);
    whole.bytes.resize(used + room);
    const DecodeStep step =
        decoder.Decode(input.substr(whole.taken), whole.bytes.data() + used, room);
    used += step.given;
    whole.taken += step.taken;
    whole.state = step.state;
    whole.over = used > limit;
    const bool again = several && step.state == DecodeState::kFinished &&
                       whole.taken < input.size() && !whole.over;
    if (again && (IsGzip(input.substr(whole.taken)) || IsZstdFrame(input.substr(whole.taken)))) {
      decoder.Reset();
      continue;
    }
    const bool starved = whole.taken == input.size() && step.given < room;
    if (step.state != DecodeState::kMore || whole.over || starved) break;
  }
  whole.bytes.resize(std::min(used, limit));
  if (whole.state == DecodeState::kDamaged) whole.fault = decoder.Fault();
  return whole;
}

bool IsGzip(std::string_view bytes) {
  constexpr unsigned kReservedFlags = 0xE0;
  return bytes.starts_with("\x1F\x8B\x08") &&
         (bytes.size() < 4 || (static_cast<unsigned char>(bytes[3]) & kReservedFlags) == 0);
}

bool IsZstdFrame(std::string_view bytes) {
  return bytes.starts_with("\x28\xB5\x2F\xFD");
}

bool IsSkippableFrame(std::string_view bytes) {
  return bytes.size() >= 4 && (FirstWord(bytes) & 0xFFFFFFF0U) == 0x184D2A50U;
}

}  // namespace vs_wml
