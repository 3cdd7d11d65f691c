// SPDX-License-Identifier: MIT
// From bytes to characters of the charset in force.
#ifndef VS_WML_FILTER_INPUT_DECODER_H
#define VS_WML_FILTER_INPUT_DECODER_H

#include <cstdint>

#include "filter/ground/instance.h"
#include "filter/ground/short_cuts.h"
#include "filter/input/charset.h"

inline constexpr uint16_t CHAR_END = 0xFFFF;  // WMLGetChar: the end of the input

// The next character: a byte, a two-byte code with the lead byte above, a Unicode
// value for the bytes 0x80..0x9F of the default charsets, 0 for a consumed control
// sequence, or CHAR_END, which sets STOP_END_OF_INPUT and is given from then on
// without reading.
uint16_t WMLGetChar(WmlProc *proc);

// True for the control bytes that act in every charset.
constexpr bool IsCharsetControl(unsigned byte) {
  return byte == 0x0E || byte == 0x0F || byte == 0x1B;
}

// WMLGetChar, with the printable ASCII characters of the buffer taken in place: behind its last
// byte stands a NUL, and it is empty once the end of the input was met.
inline uint16_t GetChar(WmlProc *proc) {
  if (!kShortCuts) return WMLGetChar(proc);
  const uint8_t byte = *proc->input->next;
  const bool plain = byte >= 0x20 && byte < 0x80 && proc->save.curCharset != CHARSET_JIS_X0208;
  if (!plain) return WMLGetChar(proc);
  ++proc->input->next;
  return byte;
}

// Shift_JIS code of a JIS X 0208 pair (JIS X 0208, annex 1); j1 in 0x21..0x7E.
uint16_t JisToShiftJis(int j1, int j2);

// The character of a lead byte and the byte behind it. Of a pair that the end of the
// input cuts off, the missing byte is 0xFF; in EUC-JP the whole pair is 0.
inline uint16_t DecodePair(uint8_t leadSet, int lead, int second) {
  if (leadSet != LEAD_EUC_JP) return static_cast<uint16_t>(lead << 8 | (second & 0xFF));
  return second < 0 ? uint16_t{0} : JisToShiftJis(lead - 0x80, second - 0x80);
}

// Steps back over that many bytes.
inline void PushBack(uint32_t bytes, WmlProc *proc) {
  VwCharSeek(proc->input, 0u - bytes, SEEK_FROM_HERE);
}

#endif  // VS_WML_FILTER_INPUT_DECODER_H
