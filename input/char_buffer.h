// The buffered byte reader over the host's block handle.
//
//   document   0 .......... start ............ start + length ........ end
//   data                      |  read  |  count to read  |
//                                      ^ next
//
// The position of the next byte is start + length - count. A read that finds the
// buffer exhausted takes count below 0 before it refills; at the end of the
// document count stays there, so that the position is one past the end for every
// such read, and stepping back as many bytes returns exactly to the end.
#ifndef VS_WML_INPUT_CHAR_BUFFER_H
#define VS_WML_INPUT_CHAR_BUFFER_H

#include <cstdint>

#include "filter/vs_wml.h"

inline constexpr uint32_t CHAR_BUFFER_SIZE = 2048;

struct VwCharBuffer {
  int16_t count;         // bytes to read at next; stops at -32768
  uint32_t length;       // valid bytes in data
  uint32_t start;        // document position of data[0]
  const uint8_t *next;   // the next byte to read
  VwBlockHandle *block;  // the host's handle
  uint8_t data[CHAR_BUFFER_SIZE];
};

inline constexpr int16_t SEEK_FROM_START = 0;
inline constexpr int16_t SEEK_FROM_HERE = 1;
inline constexpr int16_t SEEK_FROM_END = 2;

// A new, empty buffer over a block handle; null when the heap is exhausted.
VwCharBuffer *VwBlockToChar(VwHandle block);

// Frees the buffer and returns the block handle.
VwHandle VwCharToBlock(VwCharBuffer *buffer);

// Refills the buffer behind the bytes it holds and returns the first byte read,
// -1 at the end of the document or when the host's read fails.
int vxfilbuf(VwCharBuffer *buffer);

// The next byte, 0..255, or -1.
inline int VwCharRead(VwCharBuffer *buffer) {
  if (buffer->count > 0) {
    --buffer->count;
    return *buffer->next++;
  }
  if (buffer->count > INT16_MIN) --buffer->count;
  return vxfilbuf(buffer);
}

// Position of the next byte.
inline uint32_t VwCharTell(const VwCharBuffer *buffer) {
  return buffer->start + buffer->length - static_cast<uint32_t>(int32_t{buffer->count});
}

// Moves to an offset from the start, from here (modulo 2^32) or from the end; 0, or
// -1 when the host's seek failed.
int VwCharSeek(VwCharBuffer *buffer, uint32_t offset, int16_t origin);

// The unread bytes in the buffer: [next, VwCharEnd).
inline const uint8_t *VwCharEnd(const VwCharBuffer *buffer) {
  return buffer->count > 0 ? buffer->next + buffer->count : buffer->next;
}

// Moves next forward or back within the buffer, to a place up to VwCharEnd.
inline void VwCharAdvance(VwCharBuffer *buffer, const uint8_t *to) {
  buffer->count = static_cast<int16_t>(buffer->count - (to - buffer->next));
  buffer->next = to;
}

#endif  // VS_WML_INPUT_CHAR_BUFFER_H
