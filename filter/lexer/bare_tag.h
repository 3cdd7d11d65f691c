// SPDX-License-Identifier: MIT
// Tags that are a known name and nothing else but the mark of an empty element, which most
// are.
#ifndef VS_WML_FILTER_LEXER_BARE_TAG_H
#define VS_WML_FILTER_LEXER_BARE_TAG_H

#include <cstdint>

#include "filter/ground/instance.h"
#include "filter/lexer/name_key.h"

// True when all that differs from a name and its '>', `length` bytes, is a '/' before the '>'.
inline bool EndsEmpty(uint64_t differs, uint64_t bytes, unsigned length) {
  return differs == uint64_t{'/' ^ '>'} << 8 * (length - 1) && (bytes >> 8 * length & 0xFF) == '>';
}

// Reads such a tag at the input's next byte, its '<' included. The item's tagId is
// TAG_NONE, and the input where it was, for anything else. The end of the buffer reads as a
// NUL, which no tag holds.
inline ItemRecord ScanBareTag(const uint8_t *at, WmlProc *proc) {
  if (*at != '<' || proc->save.curCharset == CHARSET_JIS_X0208) return {};
  uint64_t bytes = LoadNameKey(at + 1, NAME_KEY_MAX);
  const size_t slash = (bytes & 0xFF) == '/' ? 1 : 0;
  bytes >>= slash * 8;
  const BareTag &tag = BARE_TAG_INDEX.Candidate(bytes);
  const uint64_t differs = ((bytes | tag.letters) & tag.mask) ^ tag.bytes;
  if (differs != 0 && !EndsEmpty(differs, bytes, tag.length)) return {};
  const size_t length = slash + tag.length + (differs != 0 ? 1 : 0);
  proc->attrCount = 0;
  proc->input->next = at + 1 + length;
  const uint8_t flags = slash != 0 ? ITEM_END : uint8_t{0};
  return {tag.tagId, static_cast<uint8_t>(differs != 0 ? flags | ITEM_EMPTY : flags)};
}

#endif  // VS_WML_FILTER_LEXER_BARE_TAG_H
