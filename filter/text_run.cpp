#include "filter/text_run.h"

#include "elements/paragraph.h"
#include "filter/callbacks.h"
#include "input/decoder.h"
#include "lexer/reference.h"

namespace {

// What each byte sends and which half of the table its successor is looked up in. The
// first half serves after a character, the second at the start of a paragraph and after
// a blank, where a blank sends nothing. 0 marks the bytes that need a closer look. To
// look a blank up like every other byte is what makes text fast: a branch on it would be
// mispredicted at every end of a word.
constexpr uint32_t kAfterBlank = 256;

struct SendTable {
  uint32_t of[2 * kAfterBlank];  // character, and the half above it
};

constexpr uint32_t Sends(uint16_t c) {
  return c == ' ' ? c | kAfterBlank << 16 : c;
}

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
    uint32_t sent = Sends(byte < 0x80 ? static_cast<uint16_t>(byte) : SentHigh(byte, high));
    if (IsMarkup(byte)) sent = 0;
    table.of[byte] = sent;
    table.of[byte + kAfterBlank] = byte == ' ' && !preformatted ? 0 : sent;
  }
  if (!preformatted) table.of[0x0A] = table.of[0x0D] = Sends(' ');  // line ends
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

// The modes and decoder states that the sending of text depends on.
constexpr uint32_t kModes =
    MODE_PRE | MODE_LITERAL | MODE_IN_HEAD | MODE_IN_CARD | MODE_IN_TABLE | MODE_IN_CELL;

uint32_t StateOf(const WmlSave &save) {
  static_assert((kModes & CS_SINGLE_SHIFT) == 0);
  return (save.modeFlags & kModes) | (save.charsetState & CS_SINGLE_SHIFT) |
         uint32_t{save.curCharset} << 16;
}
static_assert(kModes <= 0xFFFF);

bool SendsPlainText(const WmlSave &save) {
  const uint32_t mode = save.modeFlags;
  constexpr uint32_t kTested = MODE_IN_CARD | MODE_IN_HEAD | MODE_LITERAL;
  if ((mode & kTested) != MODE_IN_CARD || (save.charsetState & CS_SINGLE_SHIFT)) return false;
  if (save.curCharset == CHARSET_JIS_X0208) return false;
  return (mode & MODE_PRE) || (mode & (MODE_IN_TABLE | MODE_IN_CELL)) != MODE_IN_TABLE;
}

void Send(uint16_t c, const uint8_t *behind, VwCharBuffer *input, WmlProc *proc) {
  input->next = behind;
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

// Where the run stands behind a byte that was taken, and what was sent last; a null
// place means that the item reader must take the byte.
struct Taken {
  const uint8_t *at;
  uint16_t last;
};

// Sends the pair at `at` and all pairs right behind it that lie in the buffer.
[[gnu::noinline]] Taken SendPairs(const uint8_t *at, uint8_t leadSet, WmlProc *proc) {
  VwCharBuffer *const input = proc->input;
  uint16_t sent;
  do {
    sent = DecodePair(leadSet, at[0], at[1]);
    at += 2;
    Send(sent, at, input, proc);
  } while (IsLeadByte(leadSet, *at) && at + 1 != input->end);
  return {at, sent};
}

// White space and control bytes. A tab is white space only outside tables.
Taken TakeControl(const uint8_t *at, const TextRun &run, uint16_t last, WmlProc *proc) {
  if (run.preformatted || IsCharsetControl(*at)) return {nullptr, last};
  if (*at != '\t' || run.inTable || IsBlank(last)) return {at + 1, last};
  Send(' ', at + 1, proc->input, proc);
  return {at + 1, ' '};
}

Taken TakeReference(const uint8_t *at, uint16_t last, WmlProc *proc) {
  const uint8_t *behind;
  const uint16_t value = ScanReference(at + 1, &behind);
  if (value == 0) return {nullptr, last};
  proc->input->next = behind;
  PutUnicodeCharacter(value, proc);
  return {behind, value};
}

// Takes a byte for which the table has nothing to send and which leads no pair in the
// buffer.
[[gnu::noinline]] Taken TakeSpecial(const uint8_t *at, const TextRun &run, uint16_t last,
                                    WmlProc *proc) {
  const uint8_t byte = *at;
  if (byte <= ' ') return TakeControl(at, run, last, proc);
  if (byte == '&') return TakeReference(at, last, proc);
  const uint8_t *behind = at + 1;
  if (behind == proc->input->end) return {nullptr, last};
  uint16_t sent = byte;
  if (byte == '/') {
    if (*behind == '>' || !CanPeek(*behind, run)) return {nullptr, last};
  } else if (byte == '$') {
    if (*behind != '$') return {CanPeek(*behind, run) ? behind : nullptr, last};
    ++behind;
  } else if (run.leadSet == 0) {
    sent = WmlInit.highControls[byte - 0x80];
    if (sent == 0) return {behind, last};
  }
  Send(sent, behind, proc->input, proc);
  return {behind, sent};
}

}  // namespace

[[gnu::noinline]] TextRun MakeTextRun(const WmlProc *proc) {
  const WmlSave &save = proc->save;
  TextRun run = {};
  run.state = StateOf(save);
  run.sends = SendsPlainText(save);
  run.preformatted = (save.modeFlags & MODE_PRE) != 0;
  run.inTable = (save.modeFlags & MODE_IN_TABLE) != 0;
  run.leadSet = LeadSet(save.curCharset);
  const HighBytes high = HighBytesOf(save.curCharset, run.leadSet);
  run.table = (run.preformatted ? kPreformatted[high] : kOrdinary[high]).of;
  return run;
}

[[gnu::noinline]] void SendTextRun(TextRun *kept, WmlProc *proc) {
  if (kept->state != StateOf(proc->save)) *kept = MakeTextRun(proc);
  if (!kept->sends) return;
  const TextRun &run = *kept;
  VwCharBuffer *const input = proc->input;
  const uint8_t *const end = input->end;
  const uint32_t *const table = run.table;
  const uint8_t leadSet = run.leadSet;
  uint16_t last = proc->save.lastChar;
  const uint32_t *half = table + (IsBlank(last) ? kAfterBlank : 0);
  for (const uint8_t *at = input->next;;) {
    const uint32_t entry = half[*at];
    if (entry != 0) [[likely]] {
      last = static_cast<uint16_t>(entry);
      Send(last, ++at, input, proc);
      half = table + (entry >> 16);
    } else if (at == end || *at == '<') {
      break;
    } else if (IsLeadByte(leadSet, *at) && at + 1 != end) {
      const Taken taken = SendPairs(at, leadSet, proc);
      at = taken.at;
      last = taken.last;
      half = table;
    } else {
      const Taken taken = TakeSpecial(at, run, last, proc);
      if (taken.at == nullptr) break;
      input->next = at = taken.at;
      last = taken.last;
      half = table + (IsBlank(last) ? kAfterBlank : 0);
    }
  }
  proc->save.lastChar = last;
}
