// SPDX-License-Identifier: MIT
#include "filter/attributes/attribute_values.h"

#include <cassert>
#include <cstring>

#include "filter/ground/callbacks.h"
#include "filter/ground/short_cuts.h"
#include "filter/ground/stream_position.h"
#include "filter/lexer/word_reader.h"

namespace {

// The attribute if it has a value, else null.
const AttrRef *FindValue(uint16_t attribute, const WmlProc *proc) {
  assert(proc->attrCount <= MAX_ATTRIBUTES);
  for (uint16_t i = 0; i < proc->attrCount; ++i) {
    const AttrRef &found = proc->attrList[i];
    if (found.attrId == attribute) return found.valuePos != 0 ? &found : nullptr;
  }
  return nullptr;
}

// The first byte of a plain value that the input buffer still holds, else null. It holds the value
// whole then: what is read between a tag and its values ends behind the tag.
const uint8_t *HeldValue(const AttrRef &attribute, const WmlProc *proc) {
  if (!kShortCuts || attribute.plainLength == NOT_PLAIN) return nullptr;
  if (ReadingStopped(proc)) return nullptr;
  if (proc->save.curCharset == CHARSET_JIS_X0208) return nullptr;
  const VwCharBuffer *input = proc->input;
  const uint32_t into = attribute.valuePos + 1 - input->start;
  const auto held = static_cast<uint32_t>(input->end - input->data);
  if (into >= held) return nullptr;
  assert(attribute.plainLength < held - into);
  return input->data + into;
}

// Reads a value of any kind from the document.
void ReadValue(const AttrRef &attribute, WordBuffer *value, WmlProc *proc) {
  const uint32_t here = WMLGetFilePos(proc);
  WMLSetFilePos(attribute.valuePos, proc);
  if (attribute.attrId == ATTRIB_HREF || attribute.attrId == ATTRIB_SRC) {
    ReadWordWithNoQuote(value, proc);
  } else {
    ReadWord(value, proc);
  }
  WMLSetFilePos(here, proc);
}

}  // namespace

bool GetAttributeString(uint16_t attribute, char *buffer, uint16_t size, WmlProc *proc) {
  buffer[0] = 0;
  const AttrRef *found = FindValue(attribute, proc);
  if (found == nullptr) return false;
  const auto max = static_cast<uint16_t>(size - 1);
  if (const uint8_t *held = HeldValue(*found, proc)) {
    const size_t length = found->plainLength < max ? found->plainLength : max;
    std::memcpy(buffer, held, length);
    buffer[length] = 0;
  } else {
    WordBuffer value = {buffer, max, 0, 0};
    ReadValue(*found, &value, proc);
  }
  return true;
}

namespace {

// Widens `length` bytes and a NUL behind them, sixteen at a time: `bytes` can be read, and `wide`
// has room, up to the next multiple of sixteen.
void Widen(const uint8_t *bytes, uint32_t length, uint16_t *__restrict wide) {
  const uint32_t rounded = (length + 15u) & ~15u;
  for (uint32_t i = 0; i < rounded; ++i) wide[i] = bytes[i];
  wide[length] = 0;
}

}  // namespace

bool PutAttributeString(uint16_t attribute, uint32_t *index, WmlProc *proc) {
  *index = NO_STRING;
  const AttrRef *found = FindValue(attribute, proc);
  if (found == nullptr) return false;
  char *scratch = StringCreate(SCRATCH_WIDE_SIZE, proc);
  if (scratch == nullptr) return true;
  auto *wide = reinterpret_cast<uint16_t *>(scratch);
  uint32_t length = found->plainLength;
  const uint8_t *bytes = length <= SCRATCH_TEXT_SIZE - 1 ? HeldValue(*found, proc) : nullptr;
  if (bytes == nullptr) {
    GetAttributeString(attribute, proc->attrScratch, SCRATCH_TEXT_SIZE, proc);
    bytes = reinterpret_cast<const uint8_t *>(proc->attrScratch);
    length = static_cast<uint32_t>(std::strlen(proc->attrScratch));
  }
  Widen(bytes, length, wide);
  SOStoreString(wide, length, index, proc);
  StringDestroy(scratch, proc);
  return true;
}

void PutReference(uint32_t stringIndex, uint32_t *id, WmlProc *proc) {
  *id = 0;
  SOOpenReference(id, proc);
  SOSetProperty(PROP_REFERENCE_TARGET, 128, stringIndex, 0, proc);
  SOSetProperty(PROP_REFERENCE_END, 0, 0, 0, proc);
}
