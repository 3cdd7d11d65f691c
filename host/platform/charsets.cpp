// SPDX-License-Identifier: MIT
#include "host/platform/charsets.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "host/text/ascii.h"
#include "vs_wml.h"

namespace vs_wml {
namespace {

constexpr bool RowsAreById() {
  for (std::size_t row = 0; row < kCharsetCount; ++row) {
    if (kCharsets[row].id != static_cast<CharsetId>(row)) return false;
  }
  return true;
}
static_assert(RowsAreById());

struct Label {
  std::string_view label;
  CharsetId charset;
};

// In lower case, sorted.
constexpr Label kLabels[] = {
    {"866", CharsetId::kIbm866},
    {"8859_1", CharsetId::kWindows1252},
    {"8859_2", CharsetId::kIso8859_2},
    {"8859_3", CharsetId::kIso8859_3},
    {"8859_4", CharsetId::kIso8859_4},
    {"8859_5", CharsetId::kIso8859_5},
    {"8859_6", CharsetId::kIso8859_6},
    {"8859_7", CharsetId::kIso8859_7},
    {"8859_8", CharsetId::kIso8859_8},
    {"8859_9", CharsetId::kWindows1254},
    {"ansi_x3.4-1968", CharsetId::kWindows1252},
    {"arabic", CharsetId::kIso8859_6},
    {"ascii", CharsetId::kWindows1252},
    {"asmo-708", CharsetId::kIso8859_6},
    {"big5", CharsetId::kBig5},
    {"big5-hkscs", CharsetId::kBig5Hkscs},
    {"chinese", CharsetId::kGb18030},
    {"cn-big5", CharsetId::kBig5},
    {"cp1250", CharsetId::kWindows1250},
    {"cp1251", CharsetId::kWindows1251},
    {"cp1252", CharsetId::kWindows1252},
    {"cp1253", CharsetId::kWindows1253},
    {"cp1254", CharsetId::kWindows1254},
    {"cp1255", CharsetId::kWindows1255},
    {"cp1256", CharsetId::kWindows1256},
    {"cp1257", CharsetId::kWindows1257},
    {"cp1258", CharsetId::kWindows1258},
    {"cp819", CharsetId::kWindows1252},
    {"cp866", CharsetId::kIbm866},
    {"cp874", CharsetId::kWindows874},
    {"cp932", CharsetId::kShiftJis},
    {"cp936", CharsetId::kGb18030},
    {"cp949", CharsetId::kEucKr},
    {"cp950", CharsetId::kBig5},
    {"csbig5", CharsetId::kBig5},
    {"cseuckr", CharsetId::kEucKr},
    {"cseucpkdfmtjapanese", CharsetId::kEucJp},
    {"csgb2312", CharsetId::kGb18030},
    {"csibm866", CharsetId::kIbm866},
    {"csiso2022jp", CharsetId::kIso2022Jp},
    {"csiso2022jp2", CharsetId::kIso2022Jp},
    {"csiso2022kr", CharsetId::kIso2022Kr},
    {"csiso58gb231280", CharsetId::kGb18030},
    {"csiso88596e", CharsetId::kIso8859_6},
    {"csiso88596i", CharsetId::kIso8859_6},
    {"csiso88598e", CharsetId::kIso8859_8},
    {"csiso88598i", CharsetId::kIso8859_8},
    {"csisolatin1", CharsetId::kWindows1252},
    {"csisolatin2", CharsetId::kIso8859_2},
    {"csisolatin3", CharsetId::kIso8859_3},
    {"csisolatin4", CharsetId::kIso8859_4},
    {"csisolatin5", CharsetId::kWindows1254},
    {"csisolatin6", CharsetId::kIso8859_10},
    {"csisolatin9", CharsetId::kIso8859_15},
    {"csisolatinarabic", CharsetId::kIso8859_6},
    {"csisolatincyrillic", CharsetId::kIso8859_5},
    {"csisolatingreek", CharsetId::kIso8859_7},
    {"csisolatinhebrew", CharsetId::kIso8859_8},
    {"cskoi8r", CharsetId::kKoi8R},
    {"csksc56011987", CharsetId::kEucKr},
    {"csmacintosh", CharsetId::kMacRoman},
    {"csshiftjis", CharsetId::kShiftJis},
    {"csunicode", CharsetId::kUtf16},
    {"cyrillic", CharsetId::kIso8859_5},
    {"dos-874", CharsetId::kWindows874},
    {"ecma-114", CharsetId::kIso8859_6},
    {"ecma-118", CharsetId::kIso8859_7},
    {"elot_928", CharsetId::kIso8859_7},
    {"euc-cn", CharsetId::kGb18030},
    {"euc-jp", CharsetId::kEucJp},
    {"euc-kr", CharsetId::kEucKr},
    {"gb18030", CharsetId::kGb18030},
    {"gb2312", CharsetId::kGb18030},
    {"gb_2312", CharsetId::kGb18030},
    {"gb_2312-80", CharsetId::kGb18030},
    {"gbk", CharsetId::kGb18030},
    {"greek", CharsetId::kIso8859_7},
    {"greek8", CharsetId::kIso8859_7},
    {"hebrew", CharsetId::kIso8859_8},
    {"ibm819", CharsetId::kWindows1252},
    {"ibm866", CharsetId::kIbm866},
    {"iso-10646-ucs-2", CharsetId::kUtf16},
    {"iso-10646-ucs-4", CharsetId::kUtf32},
    {"iso-2022-jp", CharsetId::kIso2022Jp},
    {"iso-2022-jp-2", CharsetId::kIso2022Jp},
    {"iso-2022-kr", CharsetId::kIso2022Kr},
    {"iso-8859-1", CharsetId::kWindows1252},
    {"iso-8859-10", CharsetId::kIso8859_10},
    {"iso-8859-11", CharsetId::kWindows874},
    {"iso-8859-13", CharsetId::kIso8859_13},
    {"iso-8859-14", CharsetId::kIso8859_14},
    {"iso-8859-15", CharsetId::kIso8859_15},
    {"iso-8859-2", CharsetId::kIso8859_2},
    {"iso-8859-3", CharsetId::kIso8859_3},
    {"iso-8859-4", CharsetId::kIso8859_4},
    {"iso-8859-5", CharsetId::kIso8859_5},
    {"iso-8859-6", CharsetId::kIso8859_6},
    {"iso-8859-6-e", CharsetId::kIso8859_6},
    {"iso-8859-6-i", CharsetId::kIso8859_6},
    {"iso-8859-7", CharsetId::kIso8859_7},
    {"iso-8859-8", CharsetId::kIso8859_8},
    {"iso-8859-8-e", CharsetId::kIso8859_8},
    {"iso-8859-8-i", CharsetId::kIso8859_8},
    {"iso-8859-9", CharsetId::kWindows1254},
    {"iso-ir-100", CharsetId::kWindows1252},
    {"iso-ir-101", CharsetId::kIso8859_2},
    {"iso-ir-109", CharsetId::kIso8859_3},
    {"iso-ir-110", CharsetId::kIso8859_4},
    {"iso-ir-126", CharsetId::kIso8859_7},
    {"iso-ir-127", CharsetId::kIso8859_6},
    {"iso-ir-138", CharsetId::kIso8859_8},
    {"iso-ir-144", CharsetId::kIso8859_5},
    {"iso-ir-148", CharsetId::kWindows1254},
    {"iso-ir-149", CharsetId::kEucKr},
    {"iso-ir-157", CharsetId::kIso8859_10},
    {"iso-ir-58", CharsetId::kGb18030},
    {"iso8859-1", CharsetId::kWindows1252},
    {"iso8859-10", CharsetId::kIso8859_10},
    {"iso8859-11", CharsetId::kWindows874},
    {"iso8859-13", CharsetId::kIso8859_13},
    {"iso8859-14", CharsetId::kIso8859_14},
    {"iso8859-15", CharsetId::kIso8859_15},
    {"iso8859-2", CharsetId::kIso8859_2},
    {"iso8859-3", CharsetId::kIso8859_3},
    {"iso8859-4", CharsetId::kIso8859_4},
    {"iso8859-5", CharsetId::kIso8859_5},
    {"iso8859-6", CharsetId::kIso8859_6},
    {"iso8859-7", CharsetId::kIso8859_7},
    {"iso8859-8", CharsetId::kIso8859_8},
    {"iso8859-9", CharsetId::kWindows1254},
    {"iso88591", CharsetId::kWindows1252},
    {"iso885910", CharsetId::kIso8859_10},
    {"iso885911", CharsetId::kWindows874},
    {"iso885913", CharsetId::kIso8859_13},
    {"iso885914", CharsetId::kIso8859_14},
    {"iso885915", CharsetId::kIso8859_15},
    {"iso88592", CharsetId::kIso8859_2},
    {"iso88593", CharsetId::kIso8859_3},
    {"iso88594", CharsetId::kIso8859_4},
    {"iso88595", CharsetId::kIso8859_5},
    {"iso88596", CharsetId::kIso8859_6},
    {"iso88597", CharsetId::kIso8859_7},
    {"iso88598", CharsetId::kIso8859_8},
    {"iso88599", CharsetId::kWindows1254},
    {"iso_8859-1", CharsetId::kWindows1252},
    {"iso_8859-15", CharsetId::kIso8859_15},
    {"iso_8859-1:1987", CharsetId::kWindows1252},
    {"iso_8859-2", CharsetId::kIso8859_2},
    {"iso_8859-2:1987", CharsetId::kIso8859_2},
    {"iso_8859-3", CharsetId::kIso8859_3},
    {"iso_8859-3:1988", CharsetId::kIso8859_3},
    {"iso_8859-4", CharsetId::kIso8859_4},
    {"iso_8859-4:1988", CharsetId::kIso8859_4},
    {"iso_8859-5", CharsetId::kIso8859_5},
    {"iso_8859-5:1988", CharsetId::kIso8859_5},
    {"iso_8859-6", CharsetId::kIso8859_6},
    {"iso_8859-6:1987", CharsetId::kIso8859_6},
    {"iso_8859-7", CharsetId::kIso8859_7},
    {"iso_8859-7:1987", CharsetId::kIso8859_7},
    {"iso_8859-8", CharsetId::kIso8859_8},
    {"iso_8859-8:1988", CharsetId::kIso8859_8},
    {"iso_8859-9", CharsetId::kWindows1254},
    {"iso_8859-9:1989", CharsetId::kWindows1254},
    {"jis", CharsetId::kIso2022Jp},
    {"jis0208", CharsetId::kIso2022Jp},
    {"jis_x0201", CharsetId::kShiftJis},
    {"jis_x0208-1983", CharsetId::kIso2022Jp},
    {"jis_x0212-1990", CharsetId::kIso2022Jp},
    {"koi", CharsetId::kKoi8R},
    {"koi8", CharsetId::kKoi8R},
    {"koi8-r", CharsetId::kKoi8R},
    {"koi8-ru", CharsetId::kKoi8U},
    {"koi8-u", CharsetId::kKoi8U},
    {"koi8_r", CharsetId::kKoi8R},
    {"korean", CharsetId::kEucKr},
    {"kr2022", CharsetId::kIso2022Kr},
    {"ks_c_5601-1987", CharsetId::kEucKr},
    {"ks_c_5601-1989", CharsetId::kEucKr},
    {"ksc5601", CharsetId::kEucKr},
    {"ksc_5601", CharsetId::kEucKr},
    {"l1", CharsetId::kWindows1252},
    {"l2", CharsetId::kIso8859_2},
    {"l3", CharsetId::kIso8859_3},
    {"l4", CharsetId::kIso8859_4},
    {"l5", CharsetId::kWindows1254},
    {"l6", CharsetId::kIso8859_10},
    {"l9", CharsetId::kIso8859_15},
    {"latin-1", CharsetId::kWindows1252},
    {"latin1", CharsetId::kWindows1252},
    {"latin2", CharsetId::kIso8859_2},
    {"latin3", CharsetId::kIso8859_3},
    {"latin4", CharsetId::kIso8859_4},
    {"latin5", CharsetId::kWindows1254},
    {"latin6", CharsetId::kIso8859_10},
    {"logical", CharsetId::kIso8859_8},
    {"mac", CharsetId::kMacRoman},
    {"macintosh", CharsetId::kMacRoman},
    {"ms932", CharsetId::kShiftJis},
    {"ms_kanji", CharsetId::kShiftJis},
    {"shift-jis", CharsetId::kShiftJis},
    {"shift_jis", CharsetId::kShiftJis},
    {"sjis", CharsetId::kShiftJis},
    {"sun_eu_greek", CharsetId::kIso8859_7},
    {"tis-620", CharsetId::kWindows874},
    {"ucs-2", CharsetId::kUtf16},
    {"ucs-4", CharsetId::kUtf32},
    {"unicode", CharsetId::kUtf16},
    {"unicode-1-1-utf-8", CharsetId::kUtf8},
    {"unicode11utf8", CharsetId::kUtf8},
    {"unicode20utf8", CharsetId::kUtf8},
    {"unicodefeff", CharsetId::kUtf16Le},
    {"unicodefffe", CharsetId::kUtf16Be},
    {"us-ascii", CharsetId::kWindows1252},
    {"utf-16", CharsetId::kUtf16},
    {"utf-16be", CharsetId::kUtf16Be},
    {"utf-16le", CharsetId::kUtf16Le},
    {"utf-32", CharsetId::kUtf32},
    {"utf-32be", CharsetId::kUtf32Be},
    {"utf-32le", CharsetId::kUtf32Le},
    {"utf-8", CharsetId::kUtf8},
    {"utf8", CharsetId::kUtf8},
    {"visual", CharsetId::kIso8859_8},
    {"windows-1250", CharsetId::kWindows1250},
    {"windows-1251", CharsetId::kWindows1251},
    {"windows-1252", CharsetId::kWindows1252},
    {"windows-1253", CharsetId::kWindows1253},
    {"windows-1254", CharsetId::kWindows1254},
    {"windows-1255", CharsetId::kWindows1255},
    {"windows-1256", CharsetId::kWindows1256},
    {"windows-1257", CharsetId::kWindows1257},
    {"windows-1258", CharsetId::kWindows1258},
    {"windows-31j", CharsetId::kShiftJis},
    {"windows-874", CharsetId::kWindows874},
    {"windows-932", CharsetId::kShiftJis},
    {"windows-936", CharsetId::kGb18030},
    {"windows-949", CharsetId::kEucKr},
    {"windows-950", CharsetId::kBig5},
    {"x-cp1250", CharsetId::kWindows1250},
    {"x-cp1251", CharsetId::kWindows1251},
    {"x-cp1252", CharsetId::kWindows1252},
    {"x-cp1253", CharsetId::kWindows1253},
    {"x-cp1254", CharsetId::kWindows1254},
    {"x-cp1255", CharsetId::kWindows1255},
    {"x-cp1256", CharsetId::kWindows1256},
    {"x-cp1257", CharsetId::kWindows1257},
    {"x-cp1258", CharsetId::kWindows1258},
    {"x-euc-jp", CharsetId::kEucJp},
    {"x-gb2312-11", CharsetId::kGb18030},
    {"x-gbk", CharsetId::kGb18030},
    {"x-jisx0208-11", CharsetId::kIso2022Jp},
    {"x-mac-ce", CharsetId::kMacCentralEurope},
    {"x-mac-centraleurroman", CharsetId::kMacCentralEurope},
    {"x-mac-cyrillic", CharsetId::kMacCyrillic},
    {"x-mac-greek", CharsetId::kMacGreek},
    {"x-mac-roman", CharsetId::kMacRoman},
    {"x-mac-turkish", CharsetId::kMacTurkish},
    {"x-mac-ukrainian", CharsetId::kMacCyrillic},
    {"x-sjis", CharsetId::kShiftJis},
    {"x-unicode20utf8", CharsetId::kUtf8},
    {"x-x-big5", CharsetId::kBig5},
    {"x0201", CharsetId::kShiftJis},
    {"x0208", CharsetId::kIso2022Jp},
    {"x0212", CharsetId::kIso2022Jp},
};

constexpr bool ComesBefore(const Label &a, const Label &b) {
  return a.label < b.label;
}
static_assert(std::is_sorted(std::begin(kLabels), std::end(kLabels), ComesBefore));

constexpr std::size_t kLongestLabel = 21;

struct NumberedCharset {
  std::uint32_t number;  // MIBenum
  std::string_view name;
};

constexpr NumberedCharset kNumbers[] = {
    {3, "US-ASCII"},        {4, "ISO-8859-1"},      {5, "ISO-8859-2"},      {6, "ISO-8859-3"},
    {7, "ISO-8859-4"},      {8, "ISO-8859-5"},      {9, "ISO-8859-6"},      {10, "ISO-8859-7"},
    {11, "ISO-8859-8"},     {12, "ISO-8859-9"},     {13, "ISO-8859-10"},    {15, "JIS_X0201"},
    {17, "Shift_JIS"},      {18, "EUC-JP"},         {36, "KS_C_5601-1987"}, {37, "ISO-2022-KR"},
    {38, "EUC-KR"},         {39, "ISO-2022-JP"},    {40, "ISO-2022-JP-2"},  {57, "GB_2312-80"},
    {81, "ISO-8859-6-E"},   {82, "ISO-8859-6-I"},   {84, "ISO-8859-8-E"},   {85, "ISO-8859-8-I"},
    {106, "UTF-8"},         {109, "ISO-8859-13"},   {110, "ISO-8859-14"},   {111, "ISO-8859-15"},
    {113, "GBK"},           {114, "GB18030"},       {1000, "UTF-16BE"},  // ISO-10646-UCS-2
    {1001, "UTF-32BE"},                                                  // ISO-10646-UCS-4
    {1013, "UTF-16BE"},     {1014, "UTF-16LE"},     {1015, "UTF-16"},       {1017, "UTF-32"},
    {1018, "UTF-32BE"},     {1019, "UTF-32LE"},     {2024, "Windows-31J"},  {2025, "GB2312"},
    {2026, "Big5"},         {2027, "macintosh"},    {2084, "KOI8-R"},       {2086, "IBM866"},
    {2088, "KOI8-U"},       {2101, "Big5-HKSCS"},   {2109, "windows-874"},  {2250, "windows-1250"},
    {2251, "windows-1251"}, {2252, "windows-1252"}, {2253, "windows-1253"}, {2254, "windows-1254"},
    {2255, "windows-1255"}, {2256, "windows-1256"}, {2257, "windows-1257"}, {2258, "windows-1258"},
    {2259, "TIS-620"},
};

struct HostCharset {
  std::uint32_t code;
  std::string_view name;
  bool isBytes = true;  // codes are bytes of the set
};

constexpr HostCharset kHostCharsets[] = {
    {HOST_CS_UNICODE, "unicode", false},
    {HOST_CS_SHIFT_JIS, "shift_jis"},
    {HOST_CS_GB2312, "gb2312"},
    {HOST_CS_KSC5601, "euc-kr"},
    {HOST_CS_BIG5, "big5"},
    {HOST_CS_ISO2022_JP, "iso-2022-jp", false},
    {HOST_CS_ISO2022_KR, "iso-2022-kr", false},
    {HOST_CS_KOI8_R, "koi8-r"},
    {HOST_CS_ISO8859_1, "iso-8859-1"},
    {HOST_CS_ISO8859_1 + 1, "iso-8859-2"},
    {HOST_CS_ISO8859_1 + 2, "iso-8859-3"},
    {HOST_CS_ISO8859_1 + 3, "iso-8859-4"},
    {HOST_CS_ISO8859_1 + 4, "iso-8859-5"},
    {HOST_CS_ISO8859_1 + 5, "iso-8859-6"},
    {HOST_CS_ISO8859_1 + 6, "iso-8859-7"},
    {HOST_CS_ISO8859_1 + 7, "iso-8859-8"},
    {HOST_CS_ISO8859_1 + 8, "iso-8859-9"},
    {HOST_CS_WINDOWS_1250, "windows-1250"},
    {HOST_CS_WINDOWS_1251, "windows-1251"},
    {HOST_CS_WINDOWS_1253, "windows-1253"},
    {HOST_CS_WINDOWS_1254, "windows-1254"},
    {HOST_CS_WINDOWS_1255, "windows-1255"},
    {HOST_CS_WINDOWS_1256, "windows-1256"},
    {HOST_CS_WINDOWS_1257, "windows-1257"},
    {HOST_CS_MAC_ROMAN, "macintosh"},
    {HOST_CS_MAC_TURKISH, "x-mac-turkish"},
    {HOST_CS_MAC_GREEK, "x-mac-greek"},
    {HOST_CS_MAC_CE, "x-mac-ce"},
};

const HostCharset *FindHostCharset(std::uint32_t code) {
  const auto *row = std::find_if(std::begin(kHostCharsets), std::end(kHostCharsets),
                                 [&](const HostCharset &entry) { return entry.code == code; });
  return row == std::end(kHostCharsets) ? nullptr : row;
}

}  // namespace

const Charset *FindCharset(std::string_view name) {
  name = Trim(name);
  if (name.size() > kLongestLabel) return nullptr;
  std::array<char, kLongestLabel> lower{};
  std::transform(name.begin(), name.end(), lower.begin(), ToLower);
  const Label wanted{{lower.data(), name.size()}, {}};
  const auto *row = std::lower_bound(std::begin(kLabels), std::end(kLabels), wanted, ComesBefore);
  if (row == std::end(kLabels) || row->label != wanted.label) return nullptr;
  return &CharsetOf(row->charset);
}

std::string_view CharsetOfNumber(std::uint32_t number) {
  for (const NumberedCharset &entry : kNumbers) {
    if (entry.number == number) return entry.name;
  }
  return {};
}

std::string_view NameOfHostCharset(std::uint32_t code) {
  const HostCharset *row = FindHostCharset(code);
  return row != nullptr ? row->name : std::string_view();
}

const Charset &CharsetOfHost(std::uint32_t code) {
  const HostCharset *row = FindHostCharset(code);
  if (row == nullptr || !row->isBytes) return CharsetOf(CharsetId::kWindows1252);
  return *FindCharset(row->name);
}

}  // namespace vs_wml
