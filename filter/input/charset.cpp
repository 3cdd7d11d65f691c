// SPDX-License-Identifier: MIT
#include "filter/input/charset.h"

#include <algorithm>
#include <iterator>

#include "filter/data/ascii.h"
#include "filter/data/name_lookup.h"
#include "filter/ground/callbacks.h"

namespace {

struct HostCode {
  uint16_t charset;
  uint32_t host;
};

// Sorted by charset id.
constexpr HostCode kHostCodes[] = {
    {CHARSET_EUC_JP, HOST_CS_SHIFT_JIS},
    {CHARSET_SJIS, HOST_CS_SHIFT_JIS},
    {CHARSET_BIG5, HOST_CS_BIG5},
    {CHARSET_GB2312, HOST_CS_GB2312},
    {CHARSET_KSC5601, HOST_CS_KSC5601},
    {CHARSET_ISO2022_KR, HOST_CS_ISO2022_KR},
    {CHARSET_JIS_X0208, HOST_CS_SHIFT_JIS},
    {CHARSET_ISO2022_KR_ESC, HOST_CS_ISO2022_KR},
    {CHARSET_ISO2022_JP, HOST_CS_ISO2022_JP},
    {CHARSET_WINDOWS_1250, HOST_CS_WINDOWS_1250},
    {CHARSET_WINDOWS_1251, HOST_CS_WINDOWS_1251},
    {CHARSET_KOI8_R, HOST_CS_KOI8_R},
    {CHARSET_ISO8859_1, HOST_CS_ISO8859_1},
    {CHARSET_ISO8859_1 + 1, HOST_CS_ISO8859_1 + 1},
    {CHARSET_ISO8859_1 + 2, HOST_CS_ISO8859_1 + 2},
    {CHARSET_ISO8859_1 + 3, HOST_CS_ISO8859_1 + 3},
    {CHARSET_ISO8859_1 + 4, HOST_CS_ISO8859_1 + 4},
    {CHARSET_ISO8859_1 + 5, HOST_CS_ISO8859_1 + 5},
    {CHARSET_ISO8859_1 + 6, HOST_CS_ISO8859_1 + 6},
    {CHARSET_ISO8859_1 + 7, HOST_CS_ISO8859_1 + 7},
    {CHARSET_ISO8859_1 + 8, HOST_CS_ISO8859_1 + 8},
    {CHARSET_WINDOWS_1253, HOST_CS_WINDOWS_1253},
    {CHARSET_WINDOWS_1254, HOST_CS_WINDOWS_1254},
    {CHARSET_WINDOWS_1254 + 1, HOST_CS_WINDOWS_1255},
    {CHARSET_WINDOWS_1254 + 2, HOST_CS_WINDOWS_1256},
    {CHARSET_WINDOWS_1254 + 3, HOST_CS_WINDOWS_1257},
    {CHARSET_MAC_ROMAN, HOST_CS_MAC_ROMAN},
    {CHARSET_MAC_TURKISH, HOST_CS_MAC_TURKISH},
    {CHARSET_MAC_5, HOST_CS_MAC_5},
    {CHARSET_MAC_GREEK, HOST_CS_MAC_GREEK},
    {CHARSET_MAC_CE, HOST_CS_MAC_CE},
    {CHARSET_MAC_8, HOST_CS_MAC_8},
    {CHARSET_MAC_9, HOST_CS_MAC_9},
    {CHARSET_MAC_10, HOST_CS_MAC_10},
};

constexpr bool ComesBefore(const HostCode &code, uint16_t charset) {
  return code.charset < charset;
}

static_assert([] {
  for (size_t i = 1; i < std::size(kHostCodes); ++i) {
    if (!ComesBefore(kHostCodes[i - 1], kHostCodes[i].charset)) return false;
  }
  return true;
}());

}  // namespace

// Out of line: with the search inside, PutUnicodeCharacter is too large for its own inlining, which
// costs a document full of references 1.4 % of its instructions.
[[gnu::noinline]] uint32_t MapCSToSO(uint16_t charset) {
  if (charset & CHARSETF_UNICODE) return HOST_CS_UNICODE;
  const HostCode *end = std::end(kHostCodes);
  const HostCode *code = std::lower_bound(kHostCodes, end, charset, ComesBefore);
  return code != end && code->charset == charset ? code->host : HOST_CS_UNICODE;
}

uint16_t QueryCharsetTable(const char *name) {
  const NameRecord *record = FindName(name, WmlInit.charsetNames, ncstrcmp);
  return record != nullptr ? static_cast<uint16_t>(record->value) : CHARSET_UTF8;
}

void SwitchCharset(uint16_t charset, WmlProc *proc) {
  proc->save.curCharset = charset;
  SOSwitchCharset(MapCSToSO(charset), proc);
}
