// Tags that are a known name and nothing else, which most are.
#ifndef VS_WML_LEXER_BARE_TAG_H
#define VS_WML_LEXER_BARE_TAG_H

#include <cstdint>

#include "filter/instance.h"
#include "lexer/name_key.h"

// Reads such a tag at the input's next byte, its '<' included. The item's tagId is
// TAG_NONE, and the input where it was, for anything else. The end of the buffer reads as a
// NUL, which no tag holds.
inline ItemRecord ScanBareTag(const uint8_t *at, WmlProc *proc) {
  if (*at != '<' || proc->save.curCharset == CHARSET_JIS_X0208) return {};
  uint64_t bytes = LoadNameKey(at + 1, NAME_KEY_MAX);
  const size_t slash = (bytes & 0xFF) == '/' ? 1 : 0;
  bytes >>= slash * 8;
  const BareTag &tag = BARE_TAG_INDEX.Candidate(bytes);
  if (((bytes | tag.letters) & tag.mask) != tag.bytes) return {};
  proc->attrCount = 0;
  proc->input->next = at + 1 + slash + tag.length;
  return {tag.tagId, slash != 0 ? ITEM_END : uint8_t{0}};
}

#endif  // VS_WML_LEXER_BARE_TAG_H
