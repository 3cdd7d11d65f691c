// From bytes to characters of the charset in force.
#ifndef VS_WML_INPUT_DECODER_H
#define VS_WML_INPUT_DECODER_H

#include <cstdint>

#include "filter/instance.h"
#include "input/charset.h"

inline constexpr uint16_t CHAR_END = 0xFFFF;  // WMLGetChar: the end of the input

// The next character: a byte, a two-byte code with the lead byte above, a Unicode
// value for the bytes 0x80..0x9F of the default charsets, 0 for a consumed control
// sequence, or CHAR_END, which sets STOP_END_OF_INPUT and is given from then on
// without reading.
uint16_t WMLGetChar(WmlProc *proc);

// The character of a lead byte and the byte behind it.
uint16_t DecodePair(uint8_t leadSet, int lead, int second);

// Steps back over that many bytes.
inline void PushBack(uint32_t bytes, WmlProc *proc) {
  VwCharSeek(proc->input, 0u - bytes, SEEK_FROM_HERE);
}

// True for the control bytes that act in every charset.
constexpr bool IsCharsetControl(unsigned byte) {
  return byte == 0x0E || byte == 0x0F || byte == 0x1B;
}

#endif  // VS_WML_INPUT_DECODER_H
