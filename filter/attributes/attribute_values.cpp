#include "filter/attributes/attribute_values.h"

#include <cstring>

#include "filter/data/name_lookup.h"
#include "filter/ground/callbacks.h"
#include "filter/ground/short_cuts.h"
#include "filter/ground/stream_position.h"
#include "filter/lexer/word_reader.h"
#include "filter/text/paragraph.h"

namespace {

// The attribute if it has a value, else null.
const AttrRef *FindValue(uint16_t attribute, const WmlProc *proc) {
  for (uint16_t i = 0; i < proc->attrCount; ++i) {
    const AttrRef &found = proc->attrList[i];
    if (found.attrId == attribute) return found.valuePos != 0 ? &found : nullptr;
  }
  return nullptr;
}

// The first byte of a plain value that the input buffer still holds whole, else null.
const uint8_t *HeldValue(const AttrRef &attribute, const WmlProc *proc) {
  if (!kShortCuts || attribute.plainLength == NOT_PLAIN) return nullptr;
  if (ReadingStopped(proc)) return nullptr;
  if (proc->save.curCharset == CHARSET_JIS_X0208) return nullptr;
  const VwCharBuffer *input = proc->input;
  const uint32_t into = attribute.valuePos + 1 - input->start;
  const auto held = static_cast<uint32_t>(input->end - input->data);
  return into < held && attribute.plainLength < held - into ? input->data + into : nullptr;
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

bool PutAttributeParagraph(uint16_t attribute, WmlProc *proc) {
  char *text = StringCreate(SCRATCH_TEXT_SIZE, proc);
  if (text == nullptr) return false;
  const bool present = GetAttributeString(attribute, text, SCRATCH_TEXT_SIZE, proc);
  if (present) {
    WmlPutString(text, proc);
    ForceParaBreak(proc);
  }
  StringDestroy(text, proc);
  return present;
}

uint32_t IDUnits(const char *text) {
  int low = 0;
  int high = static_cast<int>(sizeof WmlInit.units / sizeof WmlInit.units[0]) - 1;
  while (low <= high) {
    const int middle = (low + high) / 2;
    const int order = ncstrcmp(text, WmlInit.units[middle].name);
    if (order == 0) return WmlInit.units[middle].number;
    if (order > 0) {
      low = middle + 1;
    } else {
      high = middle - 1;
    }
  }
  return UNIT_NONE;
}

namespace {

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

// The value of a hexadecimal digit, -1 for any other character.
int HexDigit(char c) {
  if (IsDigit(c)) return c - '0';
  const char lower = LowerAscii(c);
  return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

uint32_t HexNumber(const char *text) {
  uint32_t value = 0;
  for (int digit; (digit = HexDigit(*text)) >= 0; ++text) {
    value = value << 4 | static_cast<uint32_t>(digit);
  }
  return value;
}

uint32_t WholeNumber(const char **text) {
  uint32_t value = 0;
  for (; IsDigit(**text); ++*text) value = value * 10 + static_cast<uint32_t>(**text - '0');
  return value;
}

// What a number of a unit is multiplied and divided by, in this order, on the way
// to twips.
struct UnitScale {
  uint32_t multiplier;
  int32_t divisor;
  uint32_t multiplier2;
  int32_t divisor2;
};

UnitScale ScaleOf(uint32_t unit, const WmlProc *proc) {
  switch (unit) {
    case UNIT_PI:
      return {120, 1, 1, 1};
    case UNIT_IN:
      return {1440, 1, 1, 1};
    case UNIT_CM:
      return {5669280, 10000, 1, 1};
    case UNIT_MM:
      return {3937, 10, 1440, 10000};
    case UNIT_EM:
      return {20u * proc->save.emPointSize, 1, 1, 1};
    case UNIT_PIXELS:
      return {15, 1, 1, 1};
    default:
      return {1, 1, 1, 1};
  }
}

// Products of whole numbers wrap at 32 bits; divisions are signed and truncate.
uint32_t ConvertWhole(uint32_t number, const UnitScale &scale) {
  int32_t value = static_cast<int32_t>(number * scale.multiplier) / scale.divisor;
  value = static_cast<int32_t>(static_cast<uint32_t>(value) * scale.multiplier2) / scale.divisor2;
  return static_cast<uint32_t>(value);
}

// A number with a decimal point goes the same way in hundredths, without wrapping.
uint32_t ConvertHundredths(uint64_t hundredths, const UnitScale &scale) {
  auto value = static_cast<int64_t>(hundredths * scale.multiplier) / scale.divisor;
  value = static_cast<int64_t>(static_cast<uint64_t>(value) * scale.multiplier2) / scale.divisor2;
  return static_cast<uint32_t>(value / 100);
}

// Up to two digits behind a decimal point as hundredths; the others are skipped.
uint32_t FractionHundredths(const char **text) {
  uint32_t fraction = 0;
  uint32_t weight = 10;
  for (; IsDigit(**text); ++*text) {
    fraction += static_cast<uint32_t>(**text - '0') * weight;
    weight /= 10;
  }
  return fraction;
}

uint32_t UnitOr(const char *text, uint32_t defaultUnit) {
  const uint32_t unit = IDUnits(text);
  return unit != UNIT_NONE ? unit : defaultUnit;
}

uint32_t DecimalLength(uint32_t whole, const char *text, uint32_t defaultUnit,
                       const WmlProc *proc) {
  const uint64_t hundredths = uint64_t{whole} * 100 + FractionHundredths(&text);
  if (*text == '*') {
    return ConvertWhole(static_cast<uint32_t>(hundredths),
                        ScaleOf(UnitOr(text, defaultUnit), proc));
  }
  if (*text == '%') return 0u - static_cast<uint32_t>(hundredths / 100);
  return ConvertHundredths(hundredths, ScaleOf(UnitOr(text, defaultUnit), proc));
}

}  // namespace

uint32_t StrToLong(const char *text, uint32_t defaultUnit, const WmlProc *proc) {
  if (*text == '"') ++text;
  if (*text == '#') return HexNumber(text + 1);
  if (!IsDigit(*text)) return HexDigit(*text) >= 0 ? HexNumber(text) : 0;
  uint32_t number = WholeNumber(&text);
  if (*text == '.') return DecimalLength(number, text + 1, defaultUnit, proc);
  if (*text == '%') return 0u - number;
  if (*text == '*') number *= 100;
  return ConvertWhole(number, ScaleOf(UnitOr(text, defaultUnit), proc));
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
