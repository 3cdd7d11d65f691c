// SPDX-License-Identifier: MIT
// The buffered byte reader over the host's block handle.
//
//   document   0 ....... start .......................... end
//                        |                                |
//   data                 [ bytes read  |  bytes to read   ]
//                                      next               end
//
// The position of the next byte is start + (next - data) + past. A read that finds
// the buffer exhausted counts in `past` before it refills; at the end of the document
// it stays counted, so that every such read moves the position one further, and
// stepping back as many bytes returns exactly to the end.
#ifndef VS_WML_FILTER_GROUND_CHAR_BUFFER_H
#define VS_WML_FILTER_GROUND_CHAR_BUFFER_H

#include <cstdint>

#include "filter/vs_wml.h"

inline constexpr uint32_t CHAR_BUFFER_SIZE = 2048;
inline constexpr uint32_t CHAR_BUFFER_SLACK = 16;  // sixteen bytes can be loaded at any byte

struct VwCharBuffer {
  const uint8_t *next;   // the next byte to read
  const uint8_t *end;    // behind the last byte of data, on a NUL
  uint32_t start;        // document position of data[0]
  uint16_t past;         // reads that met the end of the document; stops at 32768
  VwBlockHandle *block;  // the host's handle
  uint8_t data[CHAR_BUFFER_SIZE + CHAR_BUFFER_SLACK];
};

inline constexpr int16_t SEEK_FROM_START = 0;
inline constexpr int16_t SEEK_FROM_HERE = 1;

// A new, empty buffer over a block handle; null when the heap is exhausted.
VwCharBuffer *VwBlockToChar(VwHandle block);

// Frees the buffer and returns the block handle.
VwHandle VwCharToBlock(VwCharBuffer *buffer);

// Refills the exhausted buffer and returns the first byte read, -1 at the end of the
// document or when the host's read fails.
int vxfilbuf(VwCharBuffer *buffer);

// The next byte, 0..255, or -1.
inline int VwCharRead(VwCharBuffer *buffer) {
  return buffer->next != buffer->end ? *buffer->next++ : vxfilbuf(buffer);
}

// Document position of a byte of the buffer.
inline uint32_t VwCharPosition(const VwCharBuffer *buffer, const uint8_t *byte) {
  return buffer->start + static_cast<uint32_t>(byte - buffer->data);
}

// Position of the next byte.
inline uint32_t VwCharTell(const VwCharBuffer *buffer) {
  return VwCharPosition(buffer, buffer->next) + buffer->past;
}

// Moves to an offset from the start or, modulo 2^32, from here; 0, or -1 when the
// host's seek failed. The host is asked only when the buffer does not hold the place.
int VwCharSeek(VwCharBuffer *buffer, uint32_t offset, int16_t origin);

#endif  // VS_WML_FILTER_GROUND_CHAR_BUFFER_H
