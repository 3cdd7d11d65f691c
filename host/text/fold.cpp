// SPDX-License-Identifier: MIT
#include "host/text/fold.h"

#include <unicode/normalizer2.h>
#include <unicode/unistr.h>

#include "host/text/utf8.h"

namespace vs_wml {
namespace {

std::string FoldAscii(std::string_view name) {
  std::string folded(name);
  for (char &c : folded) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + ('a' - 'A'));
  }
  return folded;
}

}  // namespace

std::string FoldName(std::string_view name) {
  if (AsciiPrefix(name) == name.size() || !IsValidUtf8(name)) return FoldAscii(name);
  UErrorCode status = U_ZERO_ERROR;
  const icu::Normalizer2 *const normalizer = icu::Normalizer2::getNFKCCasefoldInstance(status);
  if (U_FAILURE(status)) return FoldAscii(name);
  const auto text = icu::UnicodeString::fromUTF8(
      icu::StringPiece(name.data(), static_cast<std::int32_t>(name.size())));
  const icu::UnicodeString normal = normalizer->normalize(text, status);
  if (U_FAILURE(status)) return FoldAscii(name);
  std::string folded;
  normal.toUTF8String(folded);
  return folded;
}

}  // namespace vs_wml
