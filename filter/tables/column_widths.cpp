// SPDX-License-Identifier: MIT
#include "filter/tables/column_widths.h"

namespace {

constexpr int32_t kPageWidth = 9360;   // twips, 6.5 inches
constexpr int32_t kColumnLeast = 360;  // twips, a quarter of an inch
constexpr uint32_t kTwips = 460;
constexpr uint32_t kUnits = 1000;

// Products wrap at 32 bits, sums of extents are read as signed, extents of one column
// as unsigned; all divisions truncate.
int32_t SumInTwips(uint32_t units) {
  return static_cast<int32_t>(units * kTwips) / static_cast<int32_t>(kUnits);
}

uint32_t TwipsOfUnits(uint32_t units) {
  return units * kTwips / kUnits;
}

// The part of `left` that a stretch of `stretch` out of `total` gets.
uint32_t Share(uint32_t stretch, int32_t left, int32_t total) {
  const auto product = static_cast<int32_t>(stretch * static_cast<uint32_t>(left));
  return static_cast<uint32_t>(int64_t{product} / total);
}

}  // namespace

uint32_t UnitsOfTwips(uint32_t twips) {
  return static_cast<uint32_t>(static_cast<int32_t>(twips * kUnits) / static_cast<int32_t>(kTwips));
}

void DistributeWidths(const ColumnExtent *columns, uint16_t count, uint32_t *widths) {
  uint32_t lines = 0;
  uint32_t runs = 0;
  for (uint16_t c = 0; c < count; ++c) {
    lines += columns[c].lineMax;
    runs += columns[c].wordMax;
  }
  const int32_t sumMax = SumInTwips(lines);
  const int32_t sumMin = SumInTwips(runs);
  const int32_t available = count * kColumnLeast > kPageWidth ? count * kColumnLeast : kPageWidth;
  const auto left = static_cast<uint32_t>(available) - static_cast<uint32_t>(sumMin);
  const auto stretch = static_cast<uint32_t>(sumMax) - static_cast<uint32_t>(sumMin);
  for (uint16_t c = 0; c < count; ++c) {
    const ColumnExtent &column = columns[c];
    if (sumMax < available) {
      widths[c] = TwipsOfUnits(column.lineMax);
    } else if (sumMin < available) {
      widths[c] = TwipsOfUnits(column.wordMax) +
                  Share(TwipsOfUnits(column.lineMax - column.wordMax), static_cast<int32_t>(left),
                        static_cast<int32_t>(stretch));
    } else {
      widths[c] = TwipsOfUnits(column.wordMax);
    }
  }
}
