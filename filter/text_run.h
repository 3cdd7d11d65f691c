// Runs of plain text, sent straight from the input buffer.
#ifndef VS_WML_FILTER_TEXT_RUN_H
#define VS_WML_FILTER_TEXT_RUN_H

#include "filter/instance.h"

// How text is sent in a state of the stream; kept by the read loop from run to run.
struct TextRun {
  uint32_t state;  // modes, single shift and charset
  bool sends;      // false where plain text is not simply sent
  bool preformatted;
  bool inTable;
  uint8_t leadSet;        // LEAD_ bit of the charset
  const uint32_t *table;  // what each byte sends
};

// The run of the state in force.
TextRun MakeTextRun(const WmlProc *proc);

// Sends the text at the input as far as it lies in the buffer and is plain: characters,
// white space and ordinary references, up to a tag or anything that only the item
// reader can take. The host gets the calls that the items would give it. Nothing
// happens where text is not sent at all, or where a mode treats it in its own way.
void SendTextRun(TextRun *run, WmlProc *proc);

#endif  // VS_WML_FILTER_TEXT_RUN_H
