// SPDX-License-Identifier: MIT
#include "filter/tables/table_scan.h"

#include "filter/attributes/alignment.h"
#include "filter/attributes/attribute_values.h"
#include "filter/attributes/length.h"
#include "filter/data/ascii.h"
#include "filter/format/style.h"
#include "filter/format/tag_stack.h"
#include "filter/format/typeface.h"
#include "filter/ground/short_cuts.h"
#include "filter/ground/stream_position.h"
#include "filter/lexer/item_reader.h"
#include "filter/tables/cell_widths.h"
#include "filter/tables/column_widths.h"

namespace {

constexpr uint32_t kTableBorder = 15;   // twips
constexpr uint32_t kUnsizedImage = 32;  // character-width units
constexpr uint16_t kImageWidthSize = 32;

// ------------------------------------------------------------ table records

// Records of one document are made in the order of their positions, so that the search
// can bisect; only a host that jumps about in the document makes it walk.
uint16_t FindTable(uint32_t filePos, const WmlProc *proc) {
  const auto *records = reinterpret_cast<const TableRecord *>(proc->tableArray.storage);
  const uint16_t count = proc->tableArray.count;
  if (!proc->tablesAscend) {
    for (uint16_t i = 0; i < count; ++i) {
      if (records[i].filePos == filePos) return i;
    }
    return NO_INDEX;
  }
  uint16_t low = 0;
  for (uint16_t high = count; low < high;) {
    const auto middle = static_cast<uint16_t>((low + high) / 2);
    if (records[middle].filePos < filePos) {
      low = static_cast<uint16_t>(middle + 1);
    } else {
      high = middle;
    }
  }
  return low < count && records[low].filePos == filePos ? low : NO_INDEX;
}

TableRecord *AddTable(uint32_t filePos, uint16_t *index, WmlProc *proc) {
  auto *record = static_cast<TableRecord *>(VAAddItem(index, &proc->tableArray, proc));
  if (record == nullptr) return nullptr;
  *record = {};
  record->filePos = filePos;
  record->cellBorderWidth = kTableBorder;
  record->rowInset = kTableBorder;
  if (*index > 0 && record[-1].filePos > filePos) proc->tablesAscend = false;
  return record;
}

uint16_t AlignFlagsOf(uint16_t alignment) {
  if (alignment == PARA_ALIGN_CENTER) return TABLE_ALIGN_CENTER;
  if (alignment == PARA_ALIGN_RIGHT) return TABLE_ALIGN_RIGHT;
  return TABLE_ALIGN_LEFT;
}

// The table's own alignment, else that of the paragraph around it.
uint16_t TableAlignment(WmlProc *proc) {
  const uint16_t own = CheckJustify(proc);
  const bool decides =
      own == PARA_ALIGN_CENTER || own == PARA_ALIGN_RIGHT || own == PARA_ALIGN_LEFT;
  return AlignFlagsOf(decides ? own : proc->save.paraAlign);
}

// ---------------------------------------------------------------- the scan

struct TableScan {
  WmlProc *proc;
  char *text;  // item text and attribute values
  TableRecord *record;
  StyleRecord style;  // every character is measured with it
  bool multiByte;     // every character is an unbreakable run of its own
  bool inRow;
  bool inCell;
  uint16_t cell;       // cells opened in the row; the current column is cell - 1
  bool afterSpace;     // the last character measured was a space
  uint32_t lineWidth;  // of the current line, in character-width units
  uint32_t wordWidth;  // of the current unbreakable run
  ColumnExtent columns[VW_MAX_COLUMNS];
};

void Raise(uint32_t value, uint32_t *maximum) {
  *maximum = value > *maximum ? value : *maximum;
}

// The column of the current cell, null before the first cell of a row and beyond the
// last column.
ColumnExtent *CurrentColumn(TableScan *scan) {
  return scan->cell >= 1 && scan->cell <= VW_MAX_COLUMNS ? &scan->columns[scan->cell - 1] : nullptr;
}

// Cells beyond the last column are not measured at all.
bool BeyondColumns(const TableScan *scan) {
  return scan->cell > VW_MAX_COLUMNS;
}

void EndRun(TableScan *scan) {
  if (ColumnExtent *column = CurrentColumn(scan)) Raise(scan->wordWidth, &column->wordMax);
  scan->wordWidth = 0;
}

void MeasureChar(uint16_t c, TableScan *scan) {
  ColumnExtent *column = CurrentColumn(scan);
  if (!scan->inCell || c == 0 || column == nullptr) return;
  const bool blank = IsBlank(c);
  if (blank && scan->afterSpace) return;
  const uint32_t width = WMLGetCharWidth(c, scan->style);
  scan->lineWidth += width;
  Raise(scan->lineWidth, &column->lineMax);
  if (blank || scan->multiByte) {
    EndRun(scan);
  } else {
    scan->wordWidth += width;
  }
  scan->afterSpace = c == ' ';
}

// A line that could wrap at 32 bits within a buffer is measured character by character.
constexpr uint32_t kLineFar = 0xF0000000;

// What MeasureChar does for the plain characters and white space from `at` on; the place
// behind them. The end of a word is no branch: it would be mispredicted.
const uint8_t *MeasurePlain(const uint8_t *at, ColumnExtent *column, TableScan *scan) {
  const uint32_t *widths = scan->proc->cellWidths.of;
  uint32_t skipped = scan->afterSpace ? CELL_WHITE : 0;
  uint32_t line = scan->lineWidth;
  uint32_t word = scan->wordWidth;
  uint32_t wordMax = column->wordMax;
  while (const uint32_t entry = widths[*at]) {
    ++at;
    if (entry & skipped) continue;
    const uint32_t width = entry & CELL_WIDTH;
    const uint32_t inWord = 0u - (entry >> 31);
    const uint32_t ended = word & ~inWord;
    wordMax = ended > wordMax ? ended : wordMax;
    word = (word + width) & inWord;
    line += width;
    skipped = CellSkippedBehind(entry);
  }
  scan->afterSpace = skipped != 0;
  scan->lineWidth = line;
  scan->wordWidth = word;
  column->wordMax = wordMax;
  Raise(line, &column->lineMax);
  return at;
}

// Measures the plain characters at the input without making items of them; outside
// cells, and in cells beyond the columns, there is nothing to measure. The place of the
// next byte.
const uint8_t *MeasureRun(TableScan *scan) {
  VwCharBuffer *input = scan->proc->input;
  const uint8_t *at = input->next;
  if (!kShortCuts || *at == '<') return at;
  if (scan->proc->save.curCharset == CHARSET_JIS_X0208) return at;
  ColumnExtent *column = CurrentColumn(scan);
  if (scan->inCell && column != nullptr) {
    if (scan->lineWidth > kLineFar) return at;
    at = MeasurePlain(at, column, scan);
  } else {
    while (scan->proc->cellWidths.of[*at] != 0) ++at;
  }
  input->next = at;
  return at;
}

void EndLine(TableScan *scan) {
  if (BeyondColumns(scan)) return;
  EndRun(scan);
  scan->lineWidth = 0;
  scan->afterSpace = true;
}

void MeasureImage(TableScan *scan) {
  if (BeyondColumns(scan)) return;
  if (GetAttributeString(ATTRIB_WIDTH, scan->text, kImageWidthSize, scan->proc)) {
    scan->lineWidth += UnitsOfTwips(StrToLong(scan->text, UNIT_PIXELS, scan->proc));
  } else {
    scan->lineWidth += kUnsizedImage;
  }
  if (ColumnExtent *column = CurrentColumn(scan)) {
    Raise(scan->lineWidth, &column->lineMax);
    column->wordMax = scan->lineWidth;
  }
  scan->afterSpace = false;
}

void BeginRow(TableScan *scan) {
  scan->inRow = true;
  scan->inCell = false;
  scan->cell = 0;
}

void BeginCell(TableScan *scan) {
  if (!scan->inRow) BeginRow(scan);
  scan->inCell = true;
  EndRun(scan);
  scan->lineWidth = 0;
  ++scan->cell;
}

// Cells are asked for first, for they are most of a table's tags.
void ScanBeginTag(uint8_t tagId, TableScan *scan) {
  if (tagId == TAG_TD) return BeginCell(scan);
  switch (tagId) {
    case TAG_BR:
    case TAG_P:
      EndLine(scan);
      break;
    case TAG_IMG:
      MeasureImage(scan);
      break;
    case TAG_TR:
      BeginRow(scan);
      break;
    default:
      break;
  }
}

void ScanEndTag(uint8_t tagId, TableScan *scan) {
  if (tagId == TAG_TD || tagId == TAG_TR) scan->inCell = false;
  if (tagId == TAG_TR) scan->inRow = false;
}

bool IsTableEnd(const ItemRecord &item) {
  return item.tagId == TAG_TABLE && (item.itemFlags & ITEM_END) != 0;
}

// Measures up to the first `table` end tag, also when it closes a nested table, or the
// end of the input.
void ScanCells(TableScan *scan) {
  uint16_t ch;
  while (!ReadingStopped(scan->proc)) {
    const uint8_t *next = MeasureRun(scan);
    ItemRecord item = ReadBareTag(next, scan->proc);
    if (item.itemFlags == 0) {
      item = ReadItem(&ch, scan->text, scan->proc);
      if (ReadingStopped(scan->proc)) return;
    }
    if (item.itemFlags & ITEM_CHAR) {
      MeasureChar(ch, scan);
    } else if (item.itemFlags & ITEM_BEGIN) {
      ScanBeginTag(item.tagId, scan);
    } else if (item.tagId == TAG_TABLE) {
      return;
    } else {
      ScanEndTag(item.tagId, scan);
    }
  }
}

// The cells of the last row can raise the column count.
void CountColumns(TableScan *scan) {
  if (scan->cell == 0) scan->cell = 1;
  EndRun(scan);
  const uint16_t cells = scan->cell < VW_MAX_COLUMNS ? scan->cell : uint16_t{VW_MAX_COLUMNS};
  if (cells > scan->record->columnCount) scan->record->columnCount = cells;
}

void MeasureTable(char *text, TableRecord *record, WmlProc *proc) {
  const StyleRecord *current = TagStackGetCurrentStyle(proc);
  TableScan scan = {};
  scan.proc = proc;
  scan.text = text;
  scan.record = record;
  scan.style = current != nullptr ? *current : BaseStyle(proc);
  scan.multiByte = (proc->save.curCharset & CHARSETF_MULTI_BYTE) != 0;
  if (kShortCuts) MakeCellWidths(scan.style, scan.multiByte, proc);
  ScanCells(&scan);
  CountColumns(&scan);
  DistributeWidths(scan.columns, record->columnCount, record->columnWidth);
}

// A table that does not say how many columns it has is passed over.
void SkipTable(char *text, WmlProc *proc) {
  uint16_t ch;
  while (!ReadingStopped(proc)) {
    const ItemRecord item = ReadNextItem(proc->input->next, &ch, text, proc);
    if (IsTableEnd(item) || proc->stopFlags != 0) return;
  }
}

uint16_t DeclaredColumns(const char *value, const WmlProc *proc) {
  const auto count = static_cast<uint16_t>(StrToLong(value, UNIT_NONE, proc));
  return count <= VW_MAX_COLUMNS ? count : uint16_t{VW_MAX_COLUMNS};
}

}  // namespace

uint16_t PreprocessTable(WmlProc *proc) {
  const uint32_t filePos = WMLGetFilePos(proc);
  uint16_t index = FindTable(filePos, proc);
  if (index != NO_INDEX) return index;
  TableRecord *record = AddTable(filePos, &index, proc);
  if (record == nullptr) return NO_INDEX;
  char *text = StringCreate(SCRATCH_TEXT_SIZE, proc);
  if (text == nullptr) return NO_INDEX;
  record->alignFlags = TableAlignment(proc);
  if (GetAttributeString(ATTRIB_COLUMNS, text, ITEM_TEXT_MAX, proc)) {
    record->columnCount = DeclaredColumns(text, proc);
    MeasureTable(text, record, proc);
  } else {
    SkipTable(text, proc);
  }
  // The end of the input is met again; an exhausted heap ends the read.
  proc->stopFlags &= STOP_NO_MEMORY;
  StringDestroy(text, proc);
  return index;
}
