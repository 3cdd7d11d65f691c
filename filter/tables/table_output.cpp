// SPDX-License-Identifier: MIT
#include "filter/tables/table_output.h"

#include <cassert>

#include "filter/format/tag_stack.h"
#include "filter/ground/callbacks.h"
#include "filter/ground/stream_position.h"
#include "filter/tables/table_scan.h"
#include "filter/text/paragraph.h"

static_assert(sizeof(RowDescription) == 28);
static_assert(sizeof(CellDescription) == 128);
static_assert(offsetof(CellDescription, left) == 48);

namespace {

constexpr uint32_t kCellShade = 0x00FFFFFF;

TableRecord *FindRecord(uint16_t index, const WmlProc *proc) {
  return static_cast<TableRecord *>(VAGetItem(index, &proc->tableArray));
}

uint32_t HostAlignment(uint16_t alignFlags) {
  if (alignFlags & TABLE_ALIGN_CENTER) return SO_TABLE_CENTER;
  return alignFlags & TABLE_ALIGN_RIGHT ? SO_TABLE_RIGHT : SO_TABLE_LEFT;
}

void DescribeRow(const TableRecord &table, const WmlProc *proc) {
  RowDescription row = {};
  row.one = 1;
  row.inset = table.rowInset;
  row.alignment = HostAlignment(table.alignFlags);
  row.columnCount = table.columnCount;
  SODescribeRow(&row, proc);
}

constexpr CellDescription kCell = [] {
  CellDescription cell = {};
  cell.size = sizeof cell;
  cell.constant1 = 13;
  cell.constant2 = 255;
  return cell;
}();

// What the descriptions of a table's cells have in common.
CellDescription MakeCell(const TableRecord &table, const WmlSave &save) {
  CellDescription cell = kCell;
  cell.tableShade = save.tableShade;
  const uint32_t color = ~save.backgroundColor & 0x00FFFFFF;
  cell.left = cell.right = cell.top = cell.bottom = {table.cellBorderWidth, color, 0, {}};
  return cell;
}

void DescribeCells(const TableRecord &table, const WmlProc *proc) {
  CellDescription cell = MakeCell(table, proc->save);
  for (uint16_t c = 0; c < table.columnCount; ++c) {
    const bool begun = (proc->cellFlags[c] & CELL_BEGUN) != 0;
    cell.width = table.columnWidth[c];
    cell.cellShade = begun ? proc->cellShade[c] : cell.tableShade;
    SODescribeCell(&cell, proc);
  }
}

void TableEndRow(WmlProc *proc) {
  assert(proc->currentTable != nullptr);
  const TableRecord &table = *proc->currentTable;
  assert(table.columnCount <= VW_MAX_COLUMNS);
  DescribeRow(table, proc);
  DescribeCells(table, proc);
  for (uint16_t c = 0; c < table.columnCount; ++c) proc->cellFlags[c] = 0;
  proc->save.cellIndex = 0;
  ForceRowBreak(proc);
}

// Ends the open cell and the cells that the row left empty, then the row.
void FillAndEndRow(WmlProc *proc) {
  assert(proc->currentTable != nullptr);
  const uint16_t columns = proc->currentTable->columnCount;
  const uint16_t begun = proc->save.cellIndex;
  if (begun <= columns) ForceCellBreak(columns - begun + 1u, proc);
  TableEndRow(proc);
}

void OpenTable(WmlProc *proc) {
  WmlSave &save = proc->save;
  save.modeFlags |= MODE_IN_TABLE;
  save.tableRow = 0;
  save.cellIndex = 0;
  save.tableShade = save.backgroundColor;
  for (int c = 0; c < VW_MAX_COLUMNS; ++c) {
    proc->cellFlags[c] = 0;
    proc->cellShade[c] = save.tableShade;
  }
  save.tableIndex = PreprocessTable(proc);
  proc->currentTable = FindRecord(save.tableIndex, proc);
  if (proc->currentTable == nullptr) {
    save.tableIndex = NO_INDEX;
    save.modeFlags &= ~MODE_IN_TABLE;
  }
}

}  // namespace

[[gnu::noinline]] void ProcessBeginTable(ItemRecord item, WmlProc *proc) {
  if (proc->save.modeFlags & MODE_IN_TABLE) {
    TagStackPush(item, 0, proc);
    return;
  }
  OpenTable(proc);
  if (proc->currentTable == nullptr) return;
  WMLSetFilePos(proc->currentTable->filePos, proc);
  OptionParaBreak(proc);
  ForceParaBreak(proc);
  SOSetProperty(PROP_ALIGNMENT, PROP_ALIGN_LEFT, 0, 0, proc);
  SOOpenTable(proc);
}

void ProcessBeginRow(WmlProc *proc) {
  WmlSave &save = proc->save;
  if ((save.modeFlags & MODE_IN_TABLE) == 0) return;
  ++save.tableRow;
  if (save.tableRow > 1) FillAndEndRow(proc);
}

bool ProcessBeginCell(WmlProc *proc) {
  assert(proc->currentTable != nullptr);
  const uint16_t column = proc->save.cellIndex;
  if (column >= proc->currentTable->columnCount) return false;
  ++proc->save.cellIndex;
  if (column > 0) ForceCellBreak(1, proc);
  proc->cellShade[column] = kCellShade;
  proc->cellFlags[column] |= CELL_BEGUN;
  return true;
}

void ProcessEndTable(WmlProc *proc) {
  WmlSave &save = proc->save;
  if (save.modeFlags & MODE_IN_TABLE) {
    save.modeFlags &= ~MODE_IN_TABLE;
    FillAndEndRow(proc);
    SOCloseTable(proc);
    save.tableIndex = NO_INDEX;
    proc->currentTable = nullptr;
    ForceParaBreak(proc);
  } else {
    ForceCellBreak(1, proc);
  }
  SetParaAlign(save.paraAlign, proc);
}

void TableResume(WmlProc *proc) {
  proc->currentTable = FindRecord(proc->save.tableIndex, proc);
  if (proc->currentTable == nullptr) proc->save.modeFlags &= ~MODE_IN_TABLE;
}
