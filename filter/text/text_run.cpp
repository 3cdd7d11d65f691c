// SPDX-License-Identifier: MIT
#include "filter/text/text_run.h"

#include "filter/input/decoder.h"
#include "filter/lexer/reference.h"

namespace {

constexpr SendEntry Sends(uint16_t c) {
  return {c, c == ' ' ? SENDS_AFTER_BLANK : uint16_t{0}};
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
    if (IsMarkup(byte)) continue;
    const auto ascii = static_cast<uint16_t>(byte);
    table.of[byte] = Sends(byte < 0x80 ? ascii : SentHigh(byte, high));
    const bool dropped = byte == ' ' && !preformatted;
    table.of[byte + SENDS_AFTER_BLANK] = dropped ? SendEntry{} : table.of[byte];
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

// A character that is looked at without being read is one whose pushing back leaves no
// trace.
bool CanPeek(uint8_t byte, const TextRun &run) {
  return !IsCharsetControl(byte) && (byte < 0x80 || run.leadSet == 0);
}

// Sends the pair at `at` and all pairs right behind it that lie in the buffer.
Taken SendPairs(const uint8_t *at, uint8_t leadSet, WmlProc *proc) {
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
  if (*at != '\t' || run.inTable || DropsBlank(last)) return {at + 1, last};
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

}  // namespace

[[gnu::noinline]] Taken TakeSpecial(const uint8_t *at, const TextRun &run, uint16_t last,
                                    WmlProc *proc) {
  const uint8_t byte = *at;
  const uint8_t *behind = at + 1;
  if (byte <= ' ') return TakeControl(at, run, last, proc);
  if (byte == '&') return TakeReference(at, last, proc);
  if (behind == proc->input->end) return {nullptr, last};
  if (IsLeadByte(run.leadSet, byte)) return SendPairs(at, run.leadSet, proc);
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

TextRun MakeTextRun(const WmlProc *proc) {
  const WmlSave &save = proc->save;
  TextRun run = {};
  run.state = TextRunState(save);
  run.sends = SendsPlainText(save);
  run.preformatted = (save.modeFlags & MODE_PRE) != 0;
  run.inTable = (save.modeFlags & MODE_IN_TABLE) != 0;
  run.leadSet = LeadSet(save.curCharset);
  const HighBytes high = HighBytesOf(save.curCharset, run.leadSet);
  run.table = (run.preformatted ? kPreformatted[high] : kOrdinary[high]).of;
  return run;
}
