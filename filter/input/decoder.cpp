// SPDX-License-Identifier: MIT
#include "filter/input/decoder.h"

#include <cstring>

#include "filter/ground/callbacks.h"
#include "filter/input/charset.h"

uint16_t JisToShiftJis(int j1, int j2) {
  const int s1 = ((j1 + 1) >> 1) + (j1 <= 0x5E ? 0x70 : 0xB0);
  int s2 = j2 + 0x7E;
  if (j1 & 1) s2 = j2 <= 0x5F ? j2 + 0x1F : j2 + 0x20;
  return static_cast<uint16_t>(s1 << 8 | (s2 & 0xFF));
}

namespace {

constexpr int kShiftOut = 0x0E;
constexpr int kShiftIn = 0x0F;
constexpr int kEscape = 0x1B;
constexpr uint32_t kEscapeLookAhead = 4;

// A pair that the end of the input cuts off is 0, and so is one whose first byte is
// outside the code table.
uint16_t ReadJisPair(int first, VwCharBuffer *input) {
  const int second = VwCharRead(input);
  if (second < 0 || first < 0x21 || first > 0x7E) return 0;
  return JisToShiftJis(first, second);
}

uint16_t DecodeMultiByte(int byte, WmlProc *proc) {
  const uint16_t charset = proc->save.curCharset;
  if (charset == CHARSET_JIS_X0208) return ReadJisPair(byte, proc->input);
  const uint8_t leadSet = LeadSet(charset);
  if (!IsLeadByte(leadSet, static_cast<unsigned>(byte))) return static_cast<uint16_t>(byte);
  return DecodePair(leadSet, byte, VwCharRead(proc->input));
}

// Switches to what the action names; false when that is nothing.
bool SelectDesignation(uint32_t action, WmlProc *proc) {
  WmlSave &save = proc->save;
  if (action & ESC_USE_DOC) {
    save.curCharset = proc->docCharset;
  } else if ((action & ESC_USE_G1) && save.g1Charset != 0) {
    save.curCharset = save.g1Charset;
  } else if ((action & ESC_USE_G2) && save.g2Charset != 0) {
    save.curCharset = save.g2Charset;
  } else if ((action & ESC_USE_G3) && save.g3Charset != 0) {
    save.curCharset = save.g3Charset;
  } else {
    return false;
  }
  return true;
}

void ApplyEscape(uint32_t action, WmlProc *proc) {
  WmlSave &save = proc->save;
  const auto charset = static_cast<uint16_t>(action >> 16);
  if (action & ESC_SET_G1) save.g1Charset = charset;
  if (action & ESC_SET_G2) save.g2Charset = charset;
  if (action & ESC_SET_G3) save.g3Charset = charset;
  const bool switched = SelectDesignation(action, proc);
  if (action & ESC_SINGLE_SHIFT) {
    save.charsetState |= CS_SINGLE_SHIFT;
  } else if (action & ESC_RESET_AT_BREAK) {
    save.charsetState |= CS_RESET_AT_BREAK;
  }
  if (switched) SOSwitchCharset(MapCSToSO(save.curCharset), proc);
}

// What follows an ESC byte. Look-ahead beyond the end of the input reads as 0xFF and
// is pushed back like any other byte.
void ReadEscape(WmlProc *proc) {
  char ahead[kEscapeLookAhead];
  for (char &byte : ahead) byte = static_cast<char>(VwCharRead(proc->input));
  for (const EscapeRecord &record : WmlInit.escapes) {
    const size_t length = std::strlen(record.sequence);
    if (std::memcmp(ahead, record.sequence, length) != 0) continue;
    for (size_t i = length; i < kEscapeLookAhead; ++i) PushBack(1, proc);
    ApplyEscape(record.action, proc);
    return;
  }
  PushBack(kEscapeLookAhead, proc);
}

uint16_t RunControl(int byte, WmlProc *proc) {
  if (byte == kEscape) {
    ReadEscape(proc);
  } else {
    SwitchCharset(byte == kShiftOut ? proc->save.g1Charset : proc->docCharset, proc);
  }
  return 0;
}

static_assert(IsCharsetControl(kShiftOut) && IsCharsetControl(kShiftIn) &&
              IsCharsetControl(kEscape));

}  // namespace

uint16_t WMLGetChar(WmlProc *proc) {
  if (proc->stopFlags & STOP_END_OF_INPUT) return CHAR_END;
  const int byte = VwCharRead(proc->input);
  if (byte < 0) {
    proc->stopFlags |= STOP_END_OF_INPUT;
    return CHAR_END;
  }
  if (IsCharsetControl(static_cast<unsigned>(byte))) return RunControl(byte, proc);
  const uint16_t charset = proc->save.curCharset;
  if (charset & CHARSETF_MULTI_BYTE) return DecodeMultiByte(byte, proc);
  if (byte >= 0x80 && byte <= 0x9F && (charset == CHARSET_DEFAULT || charset == CHARSET_UTF8)) {
    return WmlInit.highControls[byte - 0x80];
  }
  return static_cast<uint16_t>(byte);
}
