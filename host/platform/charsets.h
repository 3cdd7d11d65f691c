/// \file
/// The character sets that documents may be in, and all names of theirs: the encodings and
/// labels of the web (WHATWG), and the sets that phones and gateways named beside them.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_PLATFORM_CHARSETS_H
#define VS_WML_HOST_PLATFORM_CHARSETS_H

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace vs_wml {

enum class CharsetId : std::uint8_t {
  kUtf8,
  kIbm866,
  kIso8859_2,
  kIso8859_3,
  kIso8859_4,
  kIso8859_5,
  kIso8859_6,
  kIso8859_7,
  kIso8859_8,
  kIso8859_10,
  kIso8859_13,
  kIso8859_14,
  kIso8859_15,
  kKoi8R,
  kKoi8U,
  kMacRoman,
  kMacCyrillic,
  kMacGreek,
  kMacTurkish,
  kMacCentralEurope,
  kWindows874,
  kWindows1250,
  kWindows1251,
  kWindows1252,
  kWindows1253,
  kWindows1254,
  kWindows1255,
  kWindows1256,
  kWindows1257,
  kWindows1258,
  kGb18030,
  kBig5,
  kBig5Hkscs,
  kEucJp,
  kShiftJis,
  kEucKr,
  kIso2022Jp,
  kIso2022Kr,
  kUtf16,
  kUtf16Be,
  kUtf16Le,
  kUtf32,
  kUtf32Be,
  kUtf32Le,
};

/// What the bytes of a set look like.
enum class CharsetForm : std::uint8_t {
  kUtf8,
  kAscii,      ///< bytes below 0x80 that follow no lead byte are ASCII
  kEscapes,    ///< escape sequences change what bytes below 0x80 mean
  kTwoBytes,   ///< a character has two bytes or more
  kFourBytes,  ///< a character has four bytes
};

struct Charset {
  CharsetId id;
  std::string_view name;  ///< as WHATWG has it, where it has the set
  const char *converter;  ///< ICU's name
  CharsetForm form;
};

/// All sets, by CharsetId.
inline constexpr Charset kCharsets[] = {
    {CharsetId::kUtf8, "UTF-8", "UTF-8", CharsetForm::kUtf8},
    {CharsetId::kIbm866, "IBM866", "IBM866", CharsetForm::kAscii},
    {CharsetId::kIso8859_2, "ISO-8859-2", "ISO-8859-2", CharsetForm::kAscii},
    {CharsetId::kIso8859_3, "ISO-8859-3", "ISO-8859-3", CharsetForm::kAscii},
    {CharsetId::kIso8859_4, "ISO-8859-4", "ISO-8859-4", CharsetForm::kAscii},
    {CharsetId::kIso8859_5, "ISO-8859-5", "ISO-8859-5", CharsetForm::kAscii},
    {CharsetId::kIso8859_6, "ISO-8859-6", "ISO-8859-6", CharsetForm::kAscii},
    {CharsetId::kIso8859_7, "ISO-8859-7", "ISO-8859-7", CharsetForm::kAscii},
    {CharsetId::kIso8859_8, "ISO-8859-8", "ISO-8859-8", CharsetForm::kAscii},
    {CharsetId::kIso8859_10, "ISO-8859-10", "iso-8859_10-1998", CharsetForm::kAscii},
    {CharsetId::kIso8859_13, "ISO-8859-13", "ISO-8859-13", CharsetForm::kAscii},
    {CharsetId::kIso8859_14, "ISO-8859-14", "iso-8859_14-1998", CharsetForm::kAscii},
    {CharsetId::kIso8859_15, "ISO-8859-15", "ISO-8859-15", CharsetForm::kAscii},
    {CharsetId::kKoi8R, "KOI8-R", "KOI8-R", CharsetForm::kAscii},
    {CharsetId::kKoi8U, "KOI8-U", "KOI8-U", CharsetForm::kAscii},
    {CharsetId::kMacRoman, "macintosh", "macintosh", CharsetForm::kAscii},
    {CharsetId::kMacCyrillic, "x-mac-cyrillic", "x-mac-cyrillic", CharsetForm::kAscii},
    {CharsetId::kMacGreek, "x-mac-greek", "x-mac-greek", CharsetForm::kAscii},
    {CharsetId::kMacTurkish, "x-mac-turkish", "x-mac-turkish", CharsetForm::kAscii},
    {CharsetId::kMacCentralEurope, "x-mac-ce", "x-mac-centraleurroman", CharsetForm::kAscii},
    {CharsetId::kWindows874, "windows-874", "windows-874-2000", CharsetForm::kAscii},
    {CharsetId::kWindows1250, "windows-1250", "windows-1250", CharsetForm::kAscii},
    {CharsetId::kWindows1251, "windows-1251", "windows-1251", CharsetForm::kAscii},
    {CharsetId::kWindows1252, "windows-1252", "windows-1252", CharsetForm::kAscii},
    {CharsetId::kWindows1253, "windows-1253", "windows-1253", CharsetForm::kAscii},
    {CharsetId::kWindows1254, "windows-1254", "windows-1254", CharsetForm::kAscii},
    {CharsetId::kWindows1255, "windows-1255", "windows-1255", CharsetForm::kAscii},
    {CharsetId::kWindows1256, "windows-1256", "windows-1256", CharsetForm::kAscii},
    {CharsetId::kWindows1257, "windows-1257", "windows-1257", CharsetForm::kAscii},
    {CharsetId::kWindows1258, "windows-1258", "windows-1258", CharsetForm::kAscii},
    {CharsetId::kGb18030, "GB18030", "GB18030", CharsetForm::kAscii},
    {CharsetId::kBig5, "Big5", "windows-950-2000", CharsetForm::kAscii},
    {CharsetId::kBig5Hkscs, "Big5-HKSCS", "Big5-HKSCS", CharsetForm::kAscii},
    {CharsetId::kEucJp, "EUC-JP", "EUC-JP", CharsetForm::kAscii},
    {CharsetId::kShiftJis, "Shift_JIS", "ibm-943_P15A-2003", CharsetForm::kAscii},
    {CharsetId::kEucKr, "EUC-KR", "windows-949-2000", CharsetForm::kAscii},
    {CharsetId::kIso2022Jp, "ISO-2022-JP", "ISO-2022-JP-2", CharsetForm::kEscapes},
    {CharsetId::kIso2022Kr, "ISO-2022-KR", "ISO-2022-KR", CharsetForm::kEscapes},
    {CharsetId::kUtf16, "UTF-16", "UTF-16", CharsetForm::kTwoBytes},
    {CharsetId::kUtf16Be, "UTF-16BE", "UTF-16BE", CharsetForm::kTwoBytes},
    {CharsetId::kUtf16Le, "UTF-16LE", "UTF-16LE", CharsetForm::kTwoBytes},
    {CharsetId::kUtf32, "UTF-32", "UTF-32", CharsetForm::kFourBytes},
    {CharsetId::kUtf32Be, "UTF-32BE", "UTF-32BE", CharsetForm::kFourBytes},
    {CharsetId::kUtf32Le, "UTF-32LE", "UTF-32LE", CharsetForm::kFourBytes},
};
inline constexpr std::size_t kCharsetCount = sizeof kCharsets / sizeof *kCharsets;

constexpr const Charset &CharsetOf(CharsetId id) {
  return kCharsets[static_cast<std::size_t>(id)];
}

/// The set of a name, in upper or lower case, with white space around it; null when no document
/// may name it. Names mean the supersets that documents are written in: "iso-8859-1" is
/// windows-1252, "gb2312" is GB 18030.
const Charset *FindCharset(std::string_view name);

/// The name of a set by IANA's number (MIBenum), empty when it is not known.
std::string_view CharsetOfNumber(std::uint32_t number);

/// The name of one of the filter's host character sets (HOST_CS_), empty for other codes.
std::string_view NameOfHostCharset(std::uint32_t code);

/// The set whose bytes the codes of a host character set are: windows-1252 for those that have
/// none.
const Charset &CharsetOfHost(std::uint32_t code);

}  // namespace vs_wml

#endif  // VS_WML_HOST_PLATFORM_CHARSETS_H
