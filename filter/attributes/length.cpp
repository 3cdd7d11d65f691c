// SPDX-License-Identifier: MIT
#include "filter/attributes/length.h"

#include "filter/data/ascii.h"
#include "filter/data/name_lookup.h"

namespace {

uint32_t HexNumber(const char *text) {
  uint32_t value = 0;
  for (; DigitValue(*text) != NOT_A_DIGIT; ++text) value = value << 4 | DigitValue(*text);
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
  if (!IsDigit(*text)) return HexNumber(text);
  uint32_t number = WholeNumber(&text);
  if (*text == '.') return DecimalLength(number, text + 1, defaultUnit, proc);
  if (*text == '%') return 0u - number;
  if (*text == '*') number *= 100;
  return ConvertWhole(number, ScaleOf(UnitOr(text, defaultUnit), proc));
}
