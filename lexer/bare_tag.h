// Tags that are a known name and nothing else, which most are.
#ifndef VS_WML_LEXER_BARE_TAG_H
#define VS_WML_LEXER_BARE_TAG_H

#include <bit>
#include <cstdint>

#include "filter/instance.h"
#include "lexer/name_key.h"

// The length of the name in front of the first '>' among the next eight bytes, at least
// NAME_KEY_MAX when there is none. Each byte that is a '>' becomes a zero, and the lowest
// zero byte is found by its borrow.
inline size_t BareNameLength(uint64_t bytes) {
  constexpr uint64_t kOnes = 0x0101010101010101u;
  const uint64_t differs = bytes ^ (kOnes * '>');
  const uint64_t zeros = (differs - kOnes) & ~differs & (kOnes << 7);
  return static_cast<size_t>(std::countr_zero(zeros)) / 8;
}

// Reads such a tag at the input, its '<' included; false, with the input where it was,
// for anything else. The end of the buffer reads as a NUL, which no name holds.
inline bool ScanBareTag(ItemRecord *item, WmlProc *proc) {
  VwCharBuffer *input = proc->input;
  const uint8_t *at = input->next;
  if (*at != '<' || proc->save.curCharset == CHARSET_JIS_X0208) return false;
  ++at;
  const bool isEnd = *at == '/';
  at += isEnd;
  const size_t length = BareNameLength(LoadNameKey(at, NAME_KEY_MAX));
  if (length >= NAME_KEY_MAX) return false;
  const auto tagId = static_cast<uint8_t>(TAG_INDEX.Find(LoadLowerNameKey(at, length)));
  if (tagId == TAG_NONE || tagId == TAG_META) return false;
  item->tagId = tagId;
  item->itemFlags = isEnd ? ITEM_END : 0;
  proc->attrCount = 0;
  input->next = at + length + 1;
  return true;
}

#endif  // VS_WML_LEXER_BARE_TAG_H
