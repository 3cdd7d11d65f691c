#include "filter/text_run.h"

#include "elements/paragraph.h"
#include "filter/callbacks.h"
#include "input/decoder.h"
#include "lexer/reference.h"

namespace {

// What each byte sends: in the first half after a character, in the second at the start
// of a paragraph and after a blank, where a blank sends nothing. 0 marks the bytes that
// need a closer look. To look a blank up like every other byte is what makes text fast:
// a branch on it would be mispredicted at every end of a word.
constexpr size_t kAfterBlank = 256;

struct SendTable {
  uint16_t of[2 * kAfterBlank];
};

enum HighBytes { HIGH_AS_THEY_ARE, HIGH_CONTROLS_MAPPED, HIGH_MULTI_BYTE };

constexpr uint16_t SentHigh(unsigned byte, HighBytes high) {
  if (high == HIGH_MULTI_BYTE) return 0;
  const bool mapped = high == HIGH_CONTROLS_MAPPED && byte <= 0x9F;
  return mapped ? uint16_t{0} : static_cast<uint16_t>(byte);
}

constexpr bool IsMarkup(unsigned byte) {
  return byte == '<' || byte == '&' || byte == '$' || byte == '/';
}

constexpr SendTable MakeTable(HighBytes high, bool preformatted) {
  SendTable table = {};
  for (unsigned byte = ' '; byte < 0x100; ++byte) {
    uint16_t sent = byte < 0x80 ? static_cast<uint16_t>(byte) : SentHigh(byte, high);
    if (IsMarkup(byte)) sent = 0;
    table.of[byte] = sent;
    table.of[byte + kAfterBlank] = byte == ' ' && !preformatted ? uint16_t{0} : sent;
  }
  if (!preformatted) table.of['\n'] = table.of['\r'] = ' ';
  return table;
}

constexpr SendTable kOrdinary[] = {MakeTable(HIGH_AS_THEY_ARE, false),
                                   MakeTable(HIGH_CONTROLS_MAPPED, false),
                                   MakeTable(HIGH_MULTI_BYTE, false)};
constexpr SendTable kPreformatted[] = {MakeTable(HIGH_AS_THEY_ARE, true),
                                       MakeTable(HIGH_CONTROLS_MAPPED, true),
                                       MakeTable(HIGH_MULTI_BYTE, true)};

HighBytes HighBytesOf(uint16_t charset, uint8_t leadSet) {
  if (leadSet != 0) return HIGH_MULTI_BYTE;
  return charset == CHARSET_DEFAULT || charset == CHARSET_UTF8 ? HIGH_CONTROLS_MAPPED
                                                               : HIGH_AS_THEY_ARE;
}

struct TextRun {
  const SendTable *table;
  uint8_t leadSet;
  bool preformatted;
  bool inTable;
};

// False where plain text is not simply sent.
bool BeginRun(const WmlProc *proc, TextRun *run) {
  const WmlSave &save = proc->save;
  const uint32_t mode = save.modeFlags;
  constexpr uint32_t kTested = MODE_IN_CARD | MODE_IN_HEAD | MODE_LITERAL;
  if ((mode & kTested) != MODE_IN_CARD || (save.charsetState & CS_SINGLE_SHIFT)) return false;
  if (save.curCharset == CHARSET_JIS_X0208) return false;
  run->preformatted = (mode & MODE_PRE) != 0;
  run->inTable = (mode & MODE_IN_TABLE) != 0;
  if (run->inTable && !run->preformatted && (mode & MODE_IN_CELL) == 0) return false;
  run->leadSet = LeadSet(save.curCharset);
  const HighBytes high = HighBytesOf(save.curCharset, run->leadSet);
  run->table = run->preformatted ? &kPreformatted[high] : &kOrdinary[high];
  return true;
}

void Send(uint16_t c, const uint8_t *behind, WmlProc *proc) {
  proc->input->next = behind;
  SOEmitChar(c, proc);
}

bool IsBlank(uint16_t c) {
  return c == 0 || c == ' ';
}

// A character that is looked at without being read is one whose pushing back leaves no
// trace.
bool CanPeek(uint8_t byte, const TextRun &run) {
  return !IsCharsetControl(byte) && (byte < 0x80 || run.leadSet == 0);
}

// White space and control bytes. A tab is white space only outside tables.
void TakeControl(const uint8_t *at, const TextRun &run, uint16_t *last, WmlProc *proc) {
  const bool sendsBlank = *at == '\t' && !run.inTable && !IsBlank(*last);
  if (sendsBlank) {
    Send(' ', at + 1, proc);
    *last = ' ';
  }
}

// Takes the byte at `at`, for which the table has nothing to send, and gives the place
// behind it; null when the item reader must take it.
const uint8_t *TakeSpecial(const uint8_t *at, const TextRun &run, uint16_t *last, WmlProc *proc) {
  const uint8_t byte = *at;
  if (byte <= ' ') {
    if (run.preformatted || IsCharsetControl(byte)) return nullptr;
    TakeControl(at, run, last, proc);
    return at + 1;
  }
  const uint8_t *behind = at + 1;
  if (byte == '&') {
    proc->input->next = behind;
    const uint16_t value = ScanReference(behind, &behind);
    proc->input->next = value != 0 ? behind : at;
    if (value == 0) return nullptr;
    PutUnicodeCharacter(value, proc);
    *last = value;
    return behind;
  }
  if (byte == '<' || behind == proc->input->end) return nullptr;
  uint16_t sent = byte;
  if (byte == '/') {
    if (*behind == '>' || !CanPeek(*behind, run)) return nullptr;
  } else if (byte == '$') {
    if (*behind != '$') return CanPeek(*behind, run) ? behind : nullptr;
    ++behind;
  } else if (IsLeadByte(run.leadSet, byte)) {
    sent = DecodePair(run.leadSet, byte, *behind++);
  } else if (run.leadSet == 0) {
    sent = WmlInit.highControls[byte - 0x80];
    if (sent == 0) return behind;
  }
  Send(sent, behind, proc);
  *last = sent;
  return behind;
}

}  // namespace

void SendTextRun(WmlProc *proc) {
  TextRun run;
  if (!BeginRun(proc, &run)) return;
  VwCharBuffer *input = proc->input;
  const uint8_t *const end = input->end;
  uint16_t last = proc->save.lastChar;
  for (const uint8_t *at = input->next; at != end;) {
    const uint16_t sent = run.table->of[*at + (IsBlank(last) ? kAfterBlank : 0)];
    if (sent != 0) [[likely]] {
      Send(sent, ++at, proc);
      last = sent;
      continue;
    }
    at = TakeSpecial(at, run, &last, proc);
    if (at == nullptr) break;
    input->next = at;
  }
  proc->save.lastChar = last;
}
