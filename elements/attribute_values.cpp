#include "elements/attribute_values.h"

#include "elements/paragraph.h"
#include "filter/callbacks.h"
#include "filter/stream_position.h"
#include "lexer/name_lookup.h"
#include "lexer/tag_scan.h"
#include "lexer/word_reader.h"

namespace {

// Where the value of an attribute begins, 0 when there is none.
uint32_t ValuePosition(uint16_t attribute, const WmlProc *proc) {
  for (uint16_t i = 0; i < proc->attrCount; ++i) {
    if (proc->attrList[i].attrId == attribute) return proc->attrList[i].valuePos;
  }
  return 0;
}

void ReadValue(bool isReference, WordBuffer *value, WmlProc *proc) {
  if (!ReadingStopped(proc) && ScanQuotedWord(isReference, value, proc)) return;
  if (isReference) {
    ReadWordWithNoQuote(value, proc);
  } else {
    ReadWord(value, proc);
  }
}

}  // namespace

bool GetAttributeString(uint16_t attribute, char *buffer, uint16_t size, WmlProc *proc) {
  buffer[0] = 0;
  const uint32_t valuePos = ValuePosition(attribute, proc);
  if (valuePos == 0) return false;
  WordBuffer value = {buffer, static_cast<uint16_t>(size - 1), 0, 0};
  const uint32_t here = WMLGetFilePos(proc);
  WMLSetFilePos(valuePos, proc);
  ReadValue(attribute == ATTRIB_HREF || attribute == ATTRIB_SRC, &value, proc);
  WMLSetFilePos(here, proc);
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

// The text widened into `wide`, and its length.
uint32_t Widen(const char *text, uint16_t *wide) {
  uint32_t length = 0;
  for (; text[length] != 0; ++length) wide[length] = static_cast<uint8_t>(text[length]);
  wide[length] = 0;
  return length;
}

}  // namespace

uint32_t WMLPutPropertyString(const char *text, WmlProc *proc) {
  char *scratch = StringCreate(SCRATCH_WIDE_SIZE, proc);
  if (scratch == nullptr) return NO_STRING;
  auto *wide = reinterpret_cast<uint16_t *>(scratch);
  const uint32_t length = Widen(text, wide);
  uint32_t index = NO_STRING;
  SOStoreString(wide, length, &index, proc);
  StringDestroy(scratch, proc);
  return index;
}

void PutReference(uint32_t stringIndex, uint32_t *id, WmlProc *proc) {
  *id = 0;
  SOOpenReference(id, proc);
  SOSetProperty(PROP_REFERENCE_TARGET, 128, stringIndex, 0, proc);
  SOSetProperty(PROP_REFERENCE_END, 0, 0, 0, proc);
}
