// Tags that are a known name and nothing else, which most are.
#ifndef VS_WML_LEXER_BARE_TAG_H
#define VS_WML_LEXER_BARE_TAG_H

#include <bit>
#include <cstdint>

#include "filter/instance.h"
#include "lexer/name_key.h"

inline constexpr uint64_t kEachByte = 0x0101010101010101u;

// The bytes of a word in front of its first '>' as a mask; 0 also when there is no '>'.
// Each byte that is a '>' becomes a zero, and the lowest zero byte is found by its borrow.
inline uint64_t MaskBeforeTagEnd(uint64_t bytes) {
  const uint64_t differs = bytes ^ (kEachByte * '>');
  const uint64_t zeros = (differs - kEachByte) & ~differs & (kEachByte << 7);
  return zeros != 0 ? (zeros ^ (zeros - 1)) >> 8 : 0;
}

// Reads such a tag at the input's next byte, its '<' included, or one that also has a '/' behind its
// name. The item's tagId is TAG_NONE, and the input where it was, for anything else. The
// end of the buffer reads as a NUL, which no name holds.
inline ItemRecord ScanBareTag(const uint8_t *at, WmlProc *proc) {
  if (*at != '<' || proc->save.curCharset == CHARSET_JIS_X0208) return {};
  uint64_t bytes = LoadNameKey(++at, NAME_KEY_MAX);
  const bool isEnd = (bytes & 0xFF) == '/';
  bytes >>= isEnd * 8;
  const uint64_t mask = MaskBeforeTagEnd(bytes);
  const uint64_t name = LowerNameKey(bytes) & mask;
  uint8_t itemFlags = isEnd ? ITEM_END : 0;
  auto tagId = static_cast<uint8_t>(TAG_INDEX.Find(name));
  if (tagId == TAG_NONE) {
    const uint64_t lastByte = mask & ~(mask >> 8);
    if ((bytes & lastByte) != (kEachByte * '/' & lastByte)) return {};
    itemFlags |= ITEM_EMPTY;
    tagId = static_cast<uint8_t>(TAG_INDEX.Find(name & ~lastByte));
  }
  if (tagId == TAG_NONE || tagId == TAG_META) return {};
  proc->attrCount = 0;
  proc->input->next = at + isEnd + std::countr_one(mask) / 8 + 1;
  return {tagId, itemFlags};
}

#endif  // VS_WML_LEXER_BARE_TAG_H
