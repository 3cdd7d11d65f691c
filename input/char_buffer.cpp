#include "input/char_buffer.h"

#include <cstdlib>

VwCharBuffer *VwBlockToChar(VwHandle block) {
  auto *buffer = static_cast<VwCharBuffer *>(std::malloc(sizeof(VwCharBuffer)));
  if (buffer == nullptr) return nullptr;
  buffer->count = 0;
  buffer->length = 0;
  buffer->start = 0;
  buffer->next = buffer->data;
  buffer->block = reinterpret_cast<VwBlockHandle *>(block);
  return buffer;
}

VwHandle VwCharToBlock(VwCharBuffer *buffer) {
  const auto block = reinterpret_cast<VwHandle>(buffer->block);
  std::free(buffer);
  return block;
}

namespace {

void MoveHostTo(uint32_t position, VwBlockHandle *block, VwHandle handle) {
  uint32_t current = ~position;
  block->tell(handle, &current);
  if (current != position) block->seek(handle, SEEK_FROM_START, position);
}

}  // namespace

int vxfilbuf(VwCharBuffer *buffer) {
  buffer->start += buffer->length;
  buffer->length = 0;
  VwBlockHandle *block = buffer->block;
  if (block == nullptr) return -1;
  const auto handle = reinterpret_cast<VwHandle>(block);
  MoveHostTo(buffer->start, block, handle);
  uint32_t delivered = 0;
  if (block->read(handle, buffer->data, CHAR_BUFFER_SIZE, &delivered) != 0) return -1;
  if (delivered == 0) return -1;
  buffer->length = delivered < CHAR_BUFFER_SIZE ? delivered : CHAR_BUFFER_SIZE;
  buffer->count = static_cast<int16_t>(buffer->length - 1);
  buffer->next = buffer->data + 1;
  return buffer->data[0];
}

namespace {

// The position that lies `offset` from the end of the document.
bool HostPositionFromEnd(VwBlockHandle *block, uint32_t offset, uint32_t *position) {
  if (block == nullptr) return false;
  const auto handle = reinterpret_cast<VwHandle>(block);
  return block->seek(handle, SEEK_FROM_END, offset) == 0 && block->tell(handle, position) == 0;
}

}  // namespace

int VwCharSeek(VwCharBuffer *buffer, uint32_t offset, int16_t origin) {
  uint32_t target = offset;
  if (origin == SEEK_FROM_HERE) {
    target += VwCharTell(buffer);
  } else if (origin == SEEK_FROM_END && !HostPositionFromEnd(buffer->block, offset, &target)) {
    return -1;
  }
  const uint32_t into = target - buffer->start;
  if (into < buffer->length) {
    buffer->count = static_cast<int16_t>(buffer->length - into);
    buffer->next = buffer->data + into;
    return 0;
  }
  buffer->length = 0;
  buffer->count = 0;
  buffer->next = buffer->data;
  buffer->start = target;
  if (buffer->block == nullptr) return -1;
  return buffer->block->seek(reinterpret_cast<VwHandle>(buffer->block), SEEK_FROM_START, target) ==
                 0
             ? 0
             : -1;
}
