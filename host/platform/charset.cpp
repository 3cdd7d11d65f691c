// SPDX-License-Identifier: MIT
#include "host/platform/charset.h"

#include <unicode/ucnv.h>
#include <unicode/ucsdet.h>

#include <algorithm>
#include <memory>
#include <unordered_map>

#include "host/text/utf8.h"
#include "vs_wml.h"

namespace vs_wml {
namespace {

// Declarations stand at the start of a document; a detector needs no more than this.
constexpr std::size_t kDeclarationBytes = 4096;
constexpr std::size_t kDetectorBytes = 65536;
// Below this the detector guesses from too little.
constexpr std::int32_t kDetectorConfidence = 10;

struct Alias {
  std::string_view name;
  const char *converter;
};

// Names whose documents are written in a superset, and names that ICU does not know.
constexpr Alias kAliases[] = {
    {"ascii", "windows-1252"},
    {"us-ascii", "windows-1252"},
    {"iso-8859-1", "windows-1252"},
    {"iso8859-1", "windows-1252"},
    {"iso_8859-1", "windows-1252"},
    {"8859_1", "windows-1252"},
    {"latin1", "windows-1252"},
    {"latin-1", "windows-1252"},
    {"iso-8859-9", "windows-1254"},
    {"8859_9", "windows-1254"},
    {"unicode-1-1-utf-8", "UTF-8"},
    {"utf8", "UTF-8"},
    {"shift_jis", "ibm-943_P15A-2003"},
    {"shift-jis", "ibm-943_P15A-2003"},
    {"sjis", "ibm-943_P15A-2003"},
    {"x-sjis", "ibm-943_P15A-2003"},
    {"csshiftjis", "ibm-943_P15A-2003"},
    {"windows-31j", "ibm-943_P15A-2003"},
    {"cp932", "ibm-943_P15A-2003"},
    {"windows-932", "ibm-943_P15A-2003"},
    {"jis_x0201", "ibm-943_P15A-2003"},
    {"x0201", "ibm-943_P15A-2003"},
    {"x-euc-jp", "EUC-JP"},
    {"jis", "ISO-2022-JP"},
    {"csiso2022jp", "ISO-2022-JP"},
    {"csiso2022jp2", "ISO-2022-JP-2"},
    {"jis0208", "ISO-2022-JP"},
    {"jis_x0208-1983", "ISO-2022-JP"},
    {"x-jisx0208-11", "ISO-2022-JP"},
    {"x0208", "ISO-2022-JP"},
    {"x0212", "ISO-2022-JP-2"},
    {"jis_x0212-1990", "ISO-2022-JP-2"},
    {"iso-2022-jp", "ISO-2022-JP-2"},
    {"gb2312", "GB18030"},
    {"gb_2312-80", "GB18030"},
    {"csgb2312", "GB18030"},
    {"csiso58gb231280", "GB18030"},
    {"x-gb2312-11", "GB18030"},
    {"euc-cn", "GB18030"},
    {"gbk", "GB18030"},
    {"cp936", "GB18030"},
    {"big5", "windows-950-2000"},
    {"cn-big5", "windows-950-2000"},
    {"csbig5", "windows-950-2000"},
    {"x-x-big5", "windows-950-2000"},
    {"euc-kr", "windows-949-2000"},
    {"cseuckr", "windows-949-2000"},
    {"ks_c_5601-1987", "windows-949-2000"},
    {"csiso2022kr", "ISO-2022-KR"},
    {"kr2022", "ISO-2022-KR"},
    {"koi8", "KOI8-R"},
    {"cskoi8r", "KOI8-R"},
    {"x-cp1250", "windows-1250"},
    {"x-cp1251", "windows-1251"},
    {"x-cp1253", "windows-1253"},
    {"x-mac-roman", "macintosh"},
    {"x-mac-ce", "x-mac-centraleurroman"},
};

struct HostCharset {
  std::uint32_t code;
  const char *converter;
};

constexpr HostCharset kHostCharsets[] = {
    {HOST_CS_SHIFT_JIS, "ibm-943_P15A-2003"},
    {HOST_CS_GB2312, "GB18030"},
    {HOST_CS_KSC5601, "windows-949-2000"},
    {HOST_CS_BIG5, "windows-950-2000"},
    {HOST_CS_KOI8_R, "KOI8-R"},
    {HOST_CS_ISO8859_1, "windows-1252"},
    {HOST_CS_ISO8859_1 + 1, "ISO-8859-2"},
    {HOST_CS_ISO8859_1 + 2, "ISO-8859-3"},
    {HOST_CS_ISO8859_1 + 3, "ISO-8859-4"},
    {HOST_CS_ISO8859_1 + 4, "ISO-8859-5"},
    {HOST_CS_ISO8859_1 + 5, "ISO-8859-6"},
    {HOST_CS_ISO8859_1 + 6, "ISO-8859-7"},
    {HOST_CS_ISO8859_1 + 7, "ISO-8859-8"},
    {HOST_CS_ISO8859_1 + 8, "windows-1254"},
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
    {HOST_CS_MAC_CE, "x-mac-centraleurroman"},
};

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
    {85, "ISO-8859-8-I"},   {106, "UTF-8"},         {109, "ISO-8859-13"},   {110, "ISO-8859-14"},
    {111, "ISO-8859-15"},   {112, "ISO-8859-16"},   {113, "GBK"},           {114, "GB18030"},
    {1000, "UTF-16BE"},  // ISO-10646-UCS-2
    {1001, "UTF-32BE"},  // ISO-10646-UCS-4
    {1013, "UTF-16BE"},     {1014, "UTF-16LE"},     {1015, "UTF-16"},       {1017, "UTF-32"},
    {1018, "UTF-32BE"},     {1019, "UTF-32LE"},     {2024, "Windows-31J"},  {2025, "GB2312"},
    {2026, "Big5"},         {2027, "macintosh"},    {2084, "KOI8-R"},       {2086, "IBM866"},
    {2088, "KOI8-U"},       {2101, "Big5-HKSCS"},   {2109, "windows-874"},  {2250, "windows-1250"},
    {2251, "windows-1251"}, {2252, "windows-1252"}, {2253, "windows-1253"}, {2254, "windows-1254"},
    {2255, "windows-1255"}, {2256, "windows-1256"}, {2257, "windows-1257"}, {2258, "windows-1258"},
    {2259, "TIS-620"},
};

struct CloseConverter {
  void operator()(UConverter *converter) const { ucnv_close(converter); }
};
using Converter = std::unique_ptr<UConverter, CloseConverter>;

std::string ToLower(std::string_view text) {
  std::string lower(text);
  for (char &c : lower) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + ('a' - 'A'));
  }
  return lower;
}

std::string ConverterName(std::string_view name) {
  const std::string lower = ToLower(name);
  const auto *alias = std::find_if(std::begin(kAliases), std::end(kAliases),
                                   [&](const Alias &entry) { return entry.name == lower; });
  return alias != std::end(kAliases) ? alias->converter : lower;
}

// ICU passes over all that is not a letter or a digit in a name, but names are told on.
bool IsCharsetName(std::string_view name) {
  return !name.empty() && std::ranges::all_of(name, [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') ||
           std::string_view("-_.:+()").find(c) != std::string_view::npos;
  });
}

// Opening a converter is slow: each thread keeps those that it has met. Null: unknown.
UConverter *FindConverter(std::string_view name) {
  thread_local std::unordered_map<std::string, Converter> converters;
  const std::string key = ConverterName(name);
  const auto found = converters.find(key);
  if (found != converters.end()) {
    if (found->second) ucnv_reset(found->second.get());
    return found->second.get();
  }
  UErrorCode status = U_ZERO_ERROR;
  Converter converter(IsCharsetName(key) ? ucnv_open(key.c_str(), &status) : nullptr);
  if (U_FAILURE(status)) converter.reset();
  // Names come from documents: only a known one is kept.
  if (!converter) return nullptr;
  return converters.emplace(key, std::move(converter)).first->second.get();
}

UConverter *Utf8Converter() {
  return FindConverter("UTF-8");
}

// Appends the conversion of `bytes` to `text`.
void Convert(std::string &text, std::string_view bytes, UConverter *from) {
  UConverter *to = Utf8Converter();
  UChar pivot[1024];
  UChar *pivotSource = pivot;
  UChar *pivotTarget = pivot;
  const char *source = bytes.data();
  const char *const sourceEnd = source + bytes.size();
  UBool reset = true;
  UErrorCode status = U_BUFFER_OVERFLOW_ERROR;
  while (status == U_BUFFER_OVERFLOW_ERROR) {
    const std::size_t used = text.size();
    text.resize(used + bytes.size() + bytes.size() / 2 + 64);
    char *target = text.data() + used;
    status = U_ZERO_ERROR;
    ucnv_convertEx(to, from, &target, text.data() + text.size(), &source, sourceEnd, pivot,
                   &pivotSource, &pivotTarget, pivot + std::size(pivot), reset, true, &status);
    reset = false;
    text.resize(static_cast<std::size_t>(target - text.data()));
  }
}

bool IsSpace(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

// The word after `key` and an equals sign, quoted or not.
std::optional<std::string> ValueAfter(std::string_view text, std::string_view key) {
  std::size_t at = text.find(key);
  if (at == std::string_view::npos) return std::nullopt;
  at += key.size();
  while (at < text.size() && IsSpace(text[at])) ++at;
  if (at == text.size() || text[at] != '=') return std::nullopt;
  do {
    ++at;
  } while (at < text.size() && IsSpace(text[at]));
  if (at < text.size() && (text[at] == '"' || text[at] == '\'')) ++at;
  const std::size_t begin = at;
  while (at < text.size() && text[at] != '"' && text[at] != '\'' && text[at] != ';' &&
         text[at] != '>' && text[at] != '?' && text[at] != '/' && !IsSpace(text[at])) {
    ++at;
  }
  if (at == begin) return std::nullopt;
  return std::string(text.substr(begin, at - begin));
}

// The start of a document in lower case and without comments.
std::string DeclarationText(std::string_view bytes) {
  std::string text = ToLower(bytes.substr(0, kDeclarationBytes));
  for (std::size_t at = text.find("<!--"); at != std::string::npos; at = text.find("<!--", at)) {
    const std::size_t end = text.find("-->", at + 4);
    if (end == std::string::npos) break;
    text.erase(at, end + 3 - at);
  }
  return text;
}

std::optional<std::string> XmlDeclaration(std::string_view lower) {
  const std::size_t begin = lower.find("<?xml");
  if (begin == std::string_view::npos) return std::nullopt;
  const std::size_t end = lower.find("?>", begin);
  if (end == std::string_view::npos) return std::nullopt;
  return ValueAfter(lower.substr(begin, end - begin), "encoding");
}

std::optional<std::string> MetaDeclaration(std::string_view lower) {
  for (std::size_t at = lower.find("<meta"); at != std::string_view::npos;
       at = lower.find("<meta", at + 1)) {
    const std::size_t end = std::min(lower.find('>', at), lower.size());
    if (auto name = ValueAfter(lower.substr(at, end - at), "charset")) return name;
  }
  return std::nullopt;
}

std::optional<std::string> HeaderDeclaration(std::string_view lower) {
  if (!HasSavedHeaders(lower)) return std::nullopt;
  lower = lower.substr(0, lower.find('<'));
  const std::size_t type = lower.find("content-type:");
  if (type == std::string_view::npos) return std::nullopt;
  lower.remove_prefix(type);
  return ValueAfter(lower.substr(0, lower.find('\n')), "charset");
}

struct Mark {
  std::string_view bytes;
  const char *name;
};

using namespace std::string_view_literals;
constexpr Mark kMarks[] = {{"\xEF\xBB\xBF"sv, "UTF-8"},
                           {"\x00\x00\xFE\xFF"sv, "UTF-32BE"},
                           {"\xFF\xFE\x00\x00"sv, "UTF-32LE"},
                           {"\xFE\xFF"sv, "UTF-16BE"},
                           {"\xFF\xFE"sv, "UTF-16LE"}};
// The start of a document in UTF-16 that has no mark.
constexpr Mark kSixteenBit[] = {{"\0<\0"sv, "UTF-16BE"}, {"<\0"sv, "UTF-16LE"}};

std::optional<std::string> DetectByStatistics(std::string_view bytes) {
  struct CloseDetector {
    void operator()(UCharsetDetector *detector) const { ucsdet_close(detector); }
  };
  UErrorCode status = U_ZERO_ERROR;
  thread_local std::unique_ptr<UCharsetDetector, CloseDetector> detector(ucsdet_open(&status));
  if (!detector) return std::nullopt;
  const std::string_view sample = bytes.substr(0, kDetectorBytes);
  status = U_ZERO_ERROR;
  ucsdet_setText(detector.get(), sample.data(), static_cast<std::int32_t>(sample.size()), &status);
  ucsdet_enableInputFilter(detector.get(), true);
  std::int32_t count = 0;
  const UCharsetMatch **matches = ucsdet_detectAll(detector.get(), &count, &status);
  for (std::int32_t index = 0; U_SUCCESS(status) && index < count; ++index) {
    if (ucsdet_getConfidence(matches[index], &status) <= kDetectorConfidence) break;
    const std::string_view name = ucsdet_getName(matches[index], &status);
    // The bytes are not well-formed in Unicode's forms, and no phone read EBCDIC.
    if (name.starts_with("UTF-") || name.starts_with("IBM")) continue;
    if (IsKnownCharset(name)) return std::string(name);
  }
  return std::nullopt;
}

}  // namespace

bool HasSavedHeaders(std::string_view document) {
  constexpr std::string_view kContentType = "content-type:";
  const std::string start = ToLower(document.substr(0, kContentType.size()));
  return start.starts_with("http/") || start == kContentType;
}

bool IsKnownCharset(std::string_view name) {
  return FindConverter(name) != nullptr;
}

std::string_view CharsetOfNumber(std::uint32_t number) {
  for (const NumberedCharset &entry : kNumbers) {
    if (entry.number == number) return entry.name;
  }
  return {};
}

std::size_t CharacterUnit(std::string_view charset) {
  const UConverter *converter = FindConverter(charset);
  return converter == nullptr ? 1 : static_cast<std::size_t>(ucnv_getMinCharSize(converter));
}

DetectedCharset DetectCharset(std::string_view bytes, std::string_view option,
                              std::vector<std::string> &warnings) {
  if (!option.empty()) return {std::string(option), CharsetOrigin::kOption, 0};
  DetectedCharset found;
  for (const Mark &mark : kMarks) {
    if (bytes.starts_with(mark.bytes)) {
      found = {mark.name, CharsetOrigin::kByteOrderMark, mark.bytes.size()};
      break;
    }
  }
  if (found.markLength != 0) return found;
  const std::size_t blanks = std::min(bytes.find_first_not_of("\0 \t\r\n"sv), bytes.size());
  for (const Mark &start : kSixteenBit) {
    if (bytes.substr(blanks / 2 * 2).starts_with(start.bytes)) {
      return {start.name, CharsetOrigin::kDetector, 0};
    }
  }

  const std::string start = DeclarationText(bytes);
  const auto believe = [&](const std::optional<std::string> &name, CharsetOrigin origin) {
    if (!name) return false;
    // A declaration that could be read as bytes is in no 16-bit or 32-bit character set.
    const bool wide = name->starts_with("utf-16") || name->starts_with("utf-32") ||
                      name->starts_with("ucs-") || name->starts_with("iso-10646-ucs");
    if (wide || !IsKnownCharset(*name)) {
      warnings.push_back("declared character set \"" + WithoutControls(RepairUtf8(*name)) +
                         (wide ? "\" is not the document's" : "\" is unknown"));
      return false;
    }
    found = {*name, origin, 0};
    return true;
  };
  if (believe(XmlDeclaration(start), CharsetOrigin::kXmlDeclaration)) return found;
  if (believe(MetaDeclaration(start), CharsetOrigin::kMeta)) return found;
  if (believe(HeaderDeclaration(start), CharsetOrigin::kHeader)) return found;
  if (IsValidUtf8(bytes)) return {"UTF-8", CharsetOrigin::kValidUtf8, 0};
  if (auto name = DetectByStatistics(bytes)) return {*name, CharsetOrigin::kDetector, 0};
  return {"windows-1252", CharsetOrigin::kFallback, 0};
}

std::string ToUtf8(std::string bytes, std::string_view charset) {
  UConverter *converter = FindConverter(charset);
  if (converter == nullptr) converter = FindConverter("windows-1252");
  const UConverterType type = ucnv_getType(converter);
  if (type == UCNV_UTF8) {
    return IsValidUtf8(bytes) ? std::move(bytes) : RepairUtf8(bytes);
  }
  // Stateless sets leave ASCII alone; the others have escapes in it.
  const bool escapes = type == UCNV_ISO_2022 || type == UCNV_HZ || type == UCNV_SCSU ||
                       type == UCNV_UTF7 || type == UCNV_EBCDIC_STATEFUL;
  const bool wide = ucnv_getMinCharSize(converter) > 1;
  if (!escapes && !wide && AsciiPrefix(bytes) == bytes.size() && ucnv_isAmbiguous(converter) == 0) {
    return bytes;
  }
  std::string text;
  Convert(text, bytes, converter);
  return text;
}

void AppendHostCharset(std::string &text, std::string_view bytes, std::uint32_t hostCharset) {
  const auto *entry =
      std::find_if(std::begin(kHostCharsets), std::end(kHostCharsets),
                   [&](const HostCharset &candidate) { return candidate.code == hostCharset; });
  // The single bytes of the others are those of ISO 8859-1.
  UConverter *converter =
      entry != std::end(kHostCharsets) ? FindConverter(entry->converter) : nullptr;
  if (converter == nullptr) converter = FindConverter("windows-1252");
  Convert(text, bytes, converter);
}

}  // namespace vs_wml
