// SPDX-License-Identifier: MIT
// The limit of the interface: blocks through a block handle, tags skipped unread, and one
// call a character. Nothing is decoded, collapsed, looked up or stacked.
#include <cstring>

#include "contender.h"
#include "memory_block.h"

namespace {

constexpr uint32_t kBlockSize = 2048;

bool IsLeadByte(uint32_t byte) {
  return (byte >= 0x81 && byte <= 0x9F) || (byte >= 0xE0 && byte <= 0xFC);
}

class FloorReader {
 public:
  FloorReader(const RoutineTable *table, bool shiftJis) : table_(table), shiftJis_(shiftJis) {}

  void Feed(const uint8_t *next, const uint8_t *end) {
    while (next < end) {
      if (inTag_) {
        const auto *close =
            static_cast<const uint8_t *>(std::memchr(next, '>', static_cast<size_t>(end - next)));
        if (close == nullptr) return;
        inTag_ = false;
        next = close + 1;
      }
      next = shiftJis_ ? FeedTwoByteText(next, end) : FeedText(next, end);
    }
  }

 private:
  void Emit(uint32_t character) {
    table_->routine[SLOT_EMIT_CHAR](character, table_->user1, table_->user2);
  }

  // Both stop behind a '<'.
  const uint8_t *FeedText(const uint8_t *next, const uint8_t *end) {
    while (next < end) {
      const uint32_t byte = *next++;
      if (byte == '<') {
        inTag_ = true;
        break;
      }
      Emit(byte);
    }
    return next;
  }

  const uint8_t *FeedTwoByteText(const uint8_t *next, const uint8_t *end) {
    while (next < end) {
      const uint32_t byte = *next++;
      if (lead_ != 0) {
        Emit(lead_ << 8 | byte);
        lead_ = 0;
      } else if (byte == '<') {
        inTag_ = true;
        break;
      } else if (IsLeadByte(byte)) {
        lead_ = byte;
      } else {
        Emit(byte);
      }
    }
    return next;
  }

  const RoutineTable *table_;
  bool shiftJis_;
  bool inTag_ = false;
  uint32_t lead_ = 0;  // a lead byte whose trail byte has not come yet
};

}  // namespace

bool ReadFloor(const Document &document, Tally *tally) {
  MemoryBlock block(document.bytes);
  const RoutineTable table = MakeRoutineTable(tally);
  FloorReader reader(&table, document.shiftJis);
  uint8_t buffer[kBlockSize];
  uint32_t delivered = 0;
  while (block.Routines().read(block.Handle(), buffer, kBlockSize, &delivered) == 0 &&
         delivered > 0) {
    reader.Feed(buffer, buffer + delivered);
  }
  return true;
}
