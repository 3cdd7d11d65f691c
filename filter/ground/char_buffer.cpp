// SPDX-License-Identifier: MIT
#include "filter/ground/char_buffer.h"

#include <cassert>
#include <cstdlib>
#include <cstring>

namespace {

constexpr uint16_t kPastMax = 32768;

// Leaves the buffer without bytes, to be refilled from `position`.
void Empty(uint32_t position, VwCharBuffer *buffer) {
  buffer->start = position;
  buffer->past = 0;
  buffer->next = buffer->end = buffer->data;
  buffer->data[0] = 0;
}

}  // namespace

VwCharBuffer *VwBlockToChar(VwHandle block) {
  auto *buffer = static_cast<VwCharBuffer *>(std::malloc(sizeof(VwCharBuffer)));
  if (buffer == nullptr) return nullptr;
  Empty(0, buffer);
  buffer->block = reinterpret_cast<VwBlockHandle *>(block);
  std::memset(buffer->data, 0, sizeof buffer->data);
  return buffer;
}

VwHandle VwCharToBlock(VwCharBuffer *buffer) {
  const auto block = reinterpret_cast<VwHandle>(buffer->block);
  std::free(buffer);
  return block;
}

namespace {

// A handle of the host as a record and as the word that its routines take.
VwHandle HandleOf(VwBlockHandle *block) {
  return reinterpret_cast<VwHandle>(block);
}

// Asks the host for a buffer of bytes at buffer->start; how many it got.
uint32_t ReadBlock(VwCharBuffer *buffer) {
  VwBlockHandle *block = buffer->block;
  if (block == nullptr) return 0;
  uint32_t position = ~buffer->start;
  block->tell(HandleOf(block), &position);
  if (position != buffer->start) block->seek(HandleOf(block), SEEK_FROM_START, buffer->start);
  uint32_t delivered = 0;
  if (block->read(HandleOf(block), buffer->data, CHAR_BUFFER_SIZE, &delivered) != 0) return 0;
  return delivered < CHAR_BUFFER_SIZE ? delivered : CHAR_BUFFER_SIZE;
}

}  // namespace

int vxfilbuf(VwCharBuffer *buffer) {
  assert(buffer->next == buffer->end);
  const auto past = static_cast<uint16_t>(buffer->past < kPastMax ? buffer->past + 1 : kPastMax);
  Empty(VwCharPosition(buffer, buffer->end), buffer);
  const uint32_t length = ReadBlock(buffer);
  buffer->end = buffer->data + length;
  buffer->data[length] = 0;  // also when the host wrote bytes that it did not deliver
  if (length == 0) {
    buffer->past = past;
    return -1;
  }
  return *buffer->next++;
}

int VwCharSeek(VwCharBuffer *buffer, uint32_t offset, int16_t origin) {
  const uint32_t target = origin == SEEK_FROM_HERE ? offset + VwCharTell(buffer) : offset;
  assert(buffer->data <= buffer->next && buffer->next <= buffer->end);
  const uint32_t into = target - buffer->start;
  if (into < static_cast<uint32_t>(buffer->end - buffer->data)) {
    buffer->next = buffer->data + into;
    buffer->past = 0;
    return 0;
  }
  Empty(target, buffer);
  VwBlockHandle *block = buffer->block;
  const bool moved = block != nullptr && block->seek(HandleOf(block), SEEK_FROM_START, target) == 0;
  return moved ? 0 : -1;
}
