// SPDX-License-Identifier: MIT
#include "filter/lexer/tag_reader.h"

#include "filter/data/ascii.h"
#include "filter/data/name_lookup.h"
#include "filter/ground/short_cuts.h"
#include "filter/ground/stream_position.h"
#include "filter/input/charset.h"
#include "filter/input/decoder.h"
#include "filter/lexer/tag_scan.h"
#include "filter/lexer/word_reader.h"

namespace {

// What a `meta` tag has said so far about the document's character set.
struct CharsetDeclaration {
  bool isContentType;
  uint16_t charset;  // 0 = none named
};

// The charset that a `content` value such as "text/vnd.wap.wml; charset=big5" names, 0
// for none. Only the first 'c' of the value can begin the word "charset".
uint16_t CharsetOfContent(const char *content) {
  constexpr char kCharset[] = "charset";
  constexpr int kLength = sizeof kCharset - 1;
  const char *at = content;
  while (*at != 0 && *at != 'c' && *at != '"') ++at;
  if (hstrcmpn(at, kCharset, kLength) != 0) return 0;
  at += kLength;
  if (*at == '=') ++at;
  return QueryCharsetTable(at);
}

void NoteMetaValue(uint16_t attrId, WordBuffer *value, CharsetDeclaration *declaration) {
  constexpr char kContentType[] = "content-type";
  if (attrId == ATTRIB_CONTENT && value->bytes[0] != 0) {
    strToLwr(value->bytes);
    if (const uint16_t charset = CharsetOfContent(value->bytes)) declaration->charset = charset;
  } else if (attrId == ATTRIB_HTTP_EQUIV) {
    strToLwr(value->bytes);
    if (hstrcmpn(value->bytes, kContentType, sizeof kContentType - 1) == 0) {
      declaration->isContentType = true;
    }
  }
}

bool IsTagEnd(uint8_t last) {
  return last == '>' || last == '<' || last == '/';
}

// The value of a `href` or `src` goes on after a single character such as a '/'.
bool ValueGoesOn(uint8_t last) {
  return last != 0 && last != ' ' && last != '>' && last != '<';
}

bool IsReference(uint16_t attrId) {
  return attrId == ATTRIB_HREF || attrId == ATTRIB_SRC;
}

// Reads the value behind an '=', and then the word behind the value, except for
// references, where the last piece of the value stands in for it.
uint8_t ReadAttributeValue(uint16_t attrId, bool isMeta, CharsetDeclaration *declaration,
                           WordBuffer *word, WmlProc *proc) {
  uint8_t last = ReadWord(word, proc);
  if (isMeta) NoteMetaValue(attrId, word, declaration);
  if (!IsReference(attrId)) return ReadWord(word, proc);
  while (ValueGoesOn(last)) last = ReadWordWithNoQuote(word, proc);
  return last;
}

// Reads attributes, the first of which is the word in hand, and gives the word that
// ends the tag.
uint8_t ReadAttributes(bool isMeta, CharsetDeclaration *declaration, WordBuffer *word,
                       WmlProc *proc) {
  uint8_t last;
  do {
    const uint16_t attrId = IDAttrib(word->bytes);
    uint32_t valuePos = 0;
    last = ReadWord(word, proc);
    if (last == '=') {
      valuePos = WMLGetFilePos(proc);
      last = ReadAttributeValue(attrId, isMeta, declaration, word, proc);
    }
    if (attrId != ATTRIB_NONE) proc->attrList[proc->attrCount++] = {attrId, NOT_PLAIN, valuePos};
  } while (!IsTagEnd(last) && !ReadingStopped(proc) && proc->attrCount < MAX_ATTRIBUTES);
  return last;
}

// Completes the tag behind its closing punctuation; false for "<<".
bool ReadTagEnd(uint8_t last, const WordBuffer *word, ItemRecord *item, WmlProc *proc) {
  if (last == '/') {
    item->itemFlags |= ITEM_EMPTY;
    const uint16_t c = WMLGetChar(proc);
    if (c != '>') PushBack(1, proc);
    return c != CHAR_END;
  }
  if (last == '<') {
    PushBack(1, proc);
    return word->sourceLength > 1;
  }
  return true;
}

bool ReadTagWords(WordBuffer *word, ItemRecord *item, WmlProc *proc) {
  CharsetDeclaration declaration = {};
  uint8_t last = ReadWord(word, proc);
  if (last == '/') {
    item->itemFlags |= ITEM_END;
    last = ReadWord(word, proc);
  } else if (ncstrcmp(word->bytes, "META") == 0) {
    item->itemFlags = ITEM_META;
  }
  const bool isMeta = item->itemFlags == ITEM_META;
  if (IsTagEnd(last)) {
    if (item->itemFlags & ITEM_END) {
      item->tagId = TagStackTop(proc).tagId;
    } else {
      item->tagId = static_cast<uint8_t>(proc->save.lastBeginTagId);
    }
  } else {
    item->tagId = IDTag(word->bytes);
    last = ReadWord(word, proc);
    if (!IsTagEnd(last)) last = ReadAttributes(isMeta, &declaration, word, proc);
    if (declaration.isContentType && declaration.charset != 0) {
      proc->docCharset = declaration.charset;
      SwitchCharset(declaration.charset, proc);
    }
  }
  const bool isTag = ReadTagEnd(last, word, item, proc);
  FinishTag(item, proc);
  return isTag;
}

}  // namespace

bool ReadTag(ItemRecord *item, WmlProc *proc) {
  if (kShortCuts && ScanTag(item, proc)) {
    FinishTag(item, proc);
    return true;
  }
  proc->attrCount = 0;
  WordBuffer word = {StringCreate(SCRATCH_TEXT_SIZE, proc), SCRATCH_TEXT_SIZE - 1, 0, 0};
  if (word.bytes == nullptr) {
    item->tagId = TAG_NONE;
    return true;
  }
  const bool isTag = ReadTagWords(&word, item, proc);
  StringDestroy(word.bytes, proc);
  return isTag;
}
