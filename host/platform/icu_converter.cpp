// SPDX-License-Identifier: MIT
#include <unicode/ucnv.h>
#include <unicode/ucnv_err.h>
#include <unicode/ucsdet.h>

#include <array>
#include <memory>
#include <new>

#include "host/platform/converter.h"
#include "host/platform/per_thread.h"

namespace vs_wml {
namespace {

// Below this the detector guesses from too little.
constexpr std::int32_t kDetectorConfidence = 10;

struct CloseConverter {
  void operator()(UConverter *converter) const { ucnv_close(converter); }
};

/// A converter, and whether it met bytes that it could not convert.
class Converter {
 public:
  // Ready for another text. A converter that met an error is not used again: what it
  // remembers of that is not known.
  UConverter *Ready(const Charset &charset) {
    if (converter_ && !failed_) {
      ucnv_reset(converter_.get());
      return converter_.get();
    }
    UErrorCode status = U_ZERO_ERROR;
    converter_.reset(ucnv_open(charset.converter, &status));
    failed_ = false;
    if (!converter_) throw std::bad_alloc();
    ucnv_setToUCallBack(converter_.get(), Substitute, &failed_, nullptr, nullptr, &status);
    return converter_.get();
  }
  void SetFailed() { failed_ = true; }

 private:
  static void Substitute(const void *context, UConverterToUnicodeArgs *args, const char *units,
                         std::int32_t length, UConverterCallbackReason reason, UErrorCode *status) {
    if (reason <= UCNV_IRREGULAR) *static_cast<bool *>(const_cast<void *>(context)) = true;
    UCNV_TO_U_CALLBACK_SUBSTITUTE(nullptr, args, units, length, reason, status);
  }

  std::unique_ptr<UConverter, CloseConverter> converter_;
  bool failed_ = false;
};

struct CloseDetector {
  void operator()(UCharsetDetector *detector) const { ucsdet_close(detector); }
};

/// Opening a converter or detector is slow: each thread keeps those that it has met.
struct Opened {
  std::array<Converter, kCharsetCount> sources;
  Converter target;  // of UTF-8, also when the source is
  std::unique_ptr<UCharsetDetector, CloseDetector> detector;
};

Opened &OpenedHere() {
  static PerThread<Opened> opened;
  return opened.Get();
}

}  // namespace

void AppendConverted(std::string &text, std::string_view bytes, const Charset &charset) {
  Opened &opened = OpenedHere();
  Converter &source = opened.sources[static_cast<std::size_t>(charset.id)];
  UConverter *from = source.Ready(charset);
  Converter &target = opened.target;
  UConverter *to = target.Ready(CharsetOf(CharsetId::kUtf8));
  UChar pivot[1024];
  UChar *pivotSource = pivot;
  UChar *pivotTarget = pivot;
  const char *at = bytes.data();
  const char *const end = at + bytes.size();
  UBool reset = true;
  UErrorCode status = U_BUFFER_OVERFLOW_ERROR;
  while (status == U_BUFFER_OVERFLOW_ERROR) {
    const std::size_t used = text.size();
    text.resize(used + bytes.size() + bytes.size() / 2 + 64);
    char *out = text.data() + used;
    status = U_ZERO_ERROR;
    ucnv_convertEx(to, from, &out, text.data() + text.size(), &at, end, pivot, &pivotSource,
                   &pivotTarget, pivot + std::size(pivot), reset, true, &status);
    reset = false;
    text.resize(static_cast<std::size_t>(out - text.data()));
  }
  if (U_FAILURE(status)) {
    source.SetFailed();
    target.SetFailed();
    if (status == U_MEMORY_ALLOCATION_ERROR) throw std::bad_alloc();
  }
}

std::string GuessCharset(std::string_view sample) {
  UErrorCode status = U_ZERO_ERROR;
  auto &detector = OpenedHere().detector;
  if (!detector) detector.reset(ucsdet_open(&status));
  if (!detector) throw std::bad_alloc();
  status = U_ZERO_ERROR;
  ucsdet_setText(detector.get(), sample.data(), static_cast<std::int32_t>(sample.size()), &status);
  ucsdet_enableInputFilter(detector.get(), true);
  std::int32_t count = 0;
  const UCharsetMatch **matches = ucsdet_detectAll(detector.get(), &count, &status);
  for (std::int32_t index = 0; U_SUCCESS(status) && index < count; ++index) {
    if (ucsdet_getConfidence(matches[index], &status) <= kDetectorConfidence) break;
    const std::string_view name = ucsdet_getName(matches[index], &status);
    // The bytes are not well-formed in Unicode's forms.
    if (name.starts_with("UTF-")) continue;
    if (FindCharset(name) != nullptr) return std::string(name);
  }
  if (status == U_MEMORY_ALLOCATION_ERROR) throw std::bad_alloc();
  return {};
}

}  // namespace vs_wml
