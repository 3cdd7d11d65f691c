// SPDX-License-Identifier: MIT
// Runs of plain text, sent straight from the input buffer.
#ifndef VS_WML_FILTER_TEXT_TEXT_RUN_H
#define VS_WML_FILTER_TEXT_TEXT_RUN_H

#include "filter/ground/callbacks.h"
#include "filter/ground/instance.h"
#include "filter/ground/short_cuts.h"
#include "filter/text/characters.h"

// What a byte sends, and which half of the table its successor is looked up in.
struct SendEntry {
  uint16_t character;  // 0 = needs a closer look
  uint16_t half;       // 0 or SENDS_AFTER_BLANK
};

// The first half serves after a character, the second at the start of a paragraph and after
// a blank, where a blank sends nothing. To look a blank up like every other byte is what
// makes text fast: a branch on it would be mispredicted at every end of a word.
inline constexpr uint16_t SENDS_AFTER_BLANK = 256;
struct SendTable {
  SendEntry of[2 * SENDS_AFTER_BLANK];
};

// How text is sent in a state of the stream; kept by the read loop from run to run.
struct TextRun {
  uint32_t state;  // modes, single shift and charset
  bool sends;      // false where plain text is not simply sent
  bool preformatted;
  bool inTable;
  uint8_t leadSet;         // LEAD_ bit of the charset
  const SendEntry *table;  // of a SendTable
};

// The modes and decoder states that the sending of text depends on, but for MODE_LITERAL, which
// does not change within a read.
inline uint32_t TextRunState(const WmlSave &save) {
  constexpr uint32_t kModes = MODE_PRE | MODE_IN_HEAD | MODE_IN_CARD | MODE_IN_TABLE | MODE_IN_CELL;
  static_assert(kModes <= 0xFFFF && (kModes & CS_SINGLE_SHIFT) == 0);
  return (save.modeFlags & kModes) | (save.charsetState & CS_SINGLE_SHIFT) |
         uint32_t{save.curCharset} << 16;
}

// The run of the state in force.
TextRun MakeTextRun(const WmlProc *proc);

// Where a run stands behind what was taken, and what was sent last; a null place means
// that the item reader must take the byte.
struct Taken {
  const uint8_t *at;
  uint16_t last;
};

// Takes a byte for which the table has nothing to send.
Taken TakeSpecial(const uint8_t *at, const TextRun &run, uint16_t last, WmlProc *proc);

inline const SendEntry *TableHalf(const TextRun &run, uint16_t last) {
  return run.table + (DropsBlank(last) ? SENDS_AFTER_BLANK : 0);
}

// Sends the text at the input as far as it lies in the buffer and is plain: characters,
// white space and ordinary references, up to a tag or anything that only the item reader
// can take; gives the place of the next byte. The host gets the calls that the items would
// give it. Nothing happens where text is not sent at all, or where a mode treats it in its
// own way.
inline const uint8_t *SendTextRun(TextRun *kept, WmlProc *proc) {
  VwCharBuffer *const input = proc->input;
  const uint8_t *at = input->next;
  if (!kShortCuts || *at == '<') return at;
  if (kept->state != TextRunState(proc->save)) *kept = MakeTextRun(proc);
  if (!kept->sends) return at;
  uint16_t &lastChar = proc->save.lastChar;
  const SendEntry *last = nullptr;  // what was sent since lastChar was set
  const SendEntry *half = TableHalf(*kept, lastChar);
  for (;;) {
    const SendEntry *entry = half + *at;
    const uint32_t character = entry->character;
    if (character != 0) [[likely]] {
      last = entry;
      input->next = ++at;
      SOEmitChar(character, proc);
      half = kept->table + last->half;
      continue;
    }
    if (last != nullptr) lastChar = last->character;
    if (entry == half + '<' || at == input->end) return at;
    const Taken taken = TakeSpecial(at, *kept, lastChar, proc);
    if (taken.at == nullptr) return at;
    input->next = at = taken.at;
    lastChar = taken.last;
    last = nullptr;
    half = TableHalf(*kept, lastChar);
  }
}

#endif  // VS_WML_FILTER_TEXT_TEXT_RUN_H
