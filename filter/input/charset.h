// SPDX-License-Identifier: MIT
// Charset ids: their host codes and their names.
#ifndef VS_WML_FILTER_INPUT_CHARSET_H
#define VS_WML_FILTER_INPUT_CHARSET_H

#include <cstdint>

#include "filter/data/vsd_wml.h"

struct WmlProc;

// The HOST_CS_ code of a charset id, HOST_CS_UNICODE for every id that has none.
uint32_t MapCSToSO(uint16_t charset);

// The charset id of a name, compared whole and ignoring case; CHARSET_UTF8 when it
// is not known.
uint16_t QueryCharsetTable(const char *name);

// For each byte from 0x80 on, the sets in which it starts a two-byte code.
inline constexpr uint8_t LEAD_SJIS = 0x01;
inline constexpr uint8_t LEAD_BIG5 = 0x02;
inline constexpr uint8_t LEAD_GB2312 = 0x04;
inline constexpr uint8_t LEAD_KSC5601 = 0x08;
inline constexpr uint8_t LEAD_EUC_JP = 0x10;

struct LeadBytes {
  uint8_t of[128];
};

constexpr LeadBytes LEAD_BYTES = [] {
  constexpr struct {
    uint8_t set, first, last;
  } kRanges[] = {
      {LEAD_SJIS, 0x81, 0x9F},    {LEAD_SJIS, 0xE0, 0xFC},    {LEAD_BIG5, 0xA1, 0xC6},
      {LEAD_BIG5, 0xC9, 0xF9},    {LEAD_GB2312, 0xA1, 0xA9},  {LEAD_GB2312, 0xB0, 0xF7},
      {LEAD_KSC5601, 0xA1, 0xAC}, {LEAD_KSC5601, 0xB0, 0xC8}, {LEAD_KSC5601, 0xCA, 0xFD},
      {LEAD_EUC_JP, 0xA1, 0xFE},
  };
  LeadBytes leads = {};
  for (const auto &range : kRanges) {
    for (int b = range.first; b <= range.last; ++b) leads.of[b - 0x80] |= range.set;
  }
  return leads;
}();

// The LEAD_ bit of a charset, 0 for one without lead bytes.
inline uint8_t LeadSet(uint16_t charset) {
  switch (charset) {
    case CHARSET_SJIS:
      return LEAD_SJIS;
    case CHARSET_BIG5:
      return LEAD_BIG5;
    case CHARSET_GB2312:
      return LEAD_GB2312;
    case CHARSET_KSC5601:
      return LEAD_KSC5601;
    case CHARSET_EUC_JP:
      return LEAD_EUC_JP;
    default:
      return 0;
  }
}

inline bool IsLeadByte(uint8_t leadSet, unsigned byte) {
  return byte >= 0x80 && (LEAD_BYTES.of[byte - 0x80] & leadSet) != 0;
}

// Decodes with that charset from now on and tells the host.
void SwitchCharset(uint16_t charset, WmlProc *proc);

#endif  // VS_WML_FILTER_INPUT_CHARSET_H
