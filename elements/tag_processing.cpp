#include "elements/tag_processing.h"

#include "elements/anchor.h"
#include "elements/attribute_values.h"
#include "elements/image.h"
#include "elements/paragraph.h"
#include "filter/callbacks.h"
#include "format/style.h"
#include "format/tag_stack.h"
#include "tables/table_output.h"

namespace {

void BeginCard(WmlProc *proc) {
  WmlSave &save = proc->save;
  save.modeFlags |= MODE_IN_CARD;
  if (save.firstCardPending == 0) {
    SOEmitControlCode(SO_CONTROL_CARD, proc);
  } else {
    save.firstCardPending = 0;
  }
  SOSetTextColor(save.textColor, proc);
  PutAttributeParagraph(ATTRIB_TITLE, proc);
}

void BeginParagraph(WmlProc *proc) {
  OptionParaBreak(proc);
  uint16_t alignment = CheckJustify(proc);
  if (alignment == 0) alignment = PARA_ALIGN_LEFT;
  proc->save.paraAlign = alignment;
  TagStackApplyStyle(static_cast<uint8_t>(alignment), proc);
  SetParaAlign(alignment, proc);
}

// Opens the row that a cell outside every row belongs to.
void BeginImpliedRow(WmlProc *proc) {
  ItemRecord row = {TAG_TR, 0, NO_INDEX, 0, 0};
  ProcessBeginTag(&row, proc);
  TagStackPush(&row, proc);
}

// True when a cell was begun.
bool BeginCell(WmlProc *proc) {
  if ((proc->save.modeFlags & MODE_IN_TABLE) == 0) {
    proc->save.modeFlags &= ~MODE_IN_CELL;
    return false;
  }
  if (!TagStackHolds(TAG_TR, proc)) BeginImpliedRow(proc);
  return ProcessBeginCell(proc);
}

void SelectTagStyle(ItemRecord *item, WmlProc *proc) {
  if (item->styleClass == 0) {
    item->styleClass = static_cast<uint8_t>(WmlInit.tags[item->tagId].value >> 16);
  }
  StyleSelect(item, proc);
}

// Elements that act only inside a card.
void BeginBodyElement(ItemRecord *item, WmlProc *proc) {
  switch (item->tagId) {
    case TAG_A:
      ProcessBeginAnchor(proc);
      break;
    case TAG_BR:
      ForceParaBreak(proc);
      break;
    case TAG_IMG:
      ProcessImage(proc);
      break;
    case TAG_OPTION:
      if (proc->save.modeFlags & MODE_IN_SELECT) OptionParaBreak(proc);
      break;
    case TAG_P:
      BeginParagraph(proc);
      break;
    case TAG_SELECT:
      proc->save.modeFlags |= MODE_IN_SELECT;
      break;
    case TAG_TABLE:
      ProcessBeginTable(item, proc);
      break;
    case TAG_TD:
      if (BeginCell(proc)) SelectTagStyle(item, proc);
      break;
    case TAG_TR:
      ProcessBeginRow(proc);
      break;
    default:
      if (TagClass(item->tagId) & TAGF_STYLE) SelectTagStyle(item, proc);
      break;
  }
}

bool InBody(const WmlProc *proc) {
  return (proc->save.modeFlags & (MODE_IN_CARD | MODE_IN_HEAD)) == MODE_IN_CARD;
}

}  // namespace

void ProcessBeginTag(ItemRecord *item, WmlProc *proc) {
  switch (item->tagId) {
    case TAG_NONE:
      break;
    case TAG_HEAD:
      proc->save.modeFlags |= MODE_IN_HEAD;
      break;
    case TAG_WML:
      proc->save.modeFlags |= MODE_IN_WML;
      break;
    case TAG_CARD:
      BeginCard(proc);
      break;
    default:
      if (InBody(proc)) BeginBodyElement(item, proc);
      break;
  }
}

void ProcessEndTag(const ItemRecord &item, WmlProc *proc) {
  uint32_t &modeFlags = proc->save.modeFlags;
  if (modeFlags & MODE_IN_HEAD) {
    if (item.tagId == TAG_HEAD) modeFlags &= ~MODE_IN_HEAD;
    return;
  }
  if ((modeFlags & MODE_IN_WML) == 0) return;
  switch (item.tagId) {
    case TAG_A:
      ProcessEndAnchor(proc);
      break;
    case TAG_CARD:
      modeFlags &= ~MODE_IN_CARD;
      break;
    case TAG_SELECT:
      modeFlags &= ~MODE_IN_SELECT;
      break;
    case TAG_TABLE:
      ProcessEndTable(proc);
      break;
    case TAG_WML:
      modeFlags &= ~MODE_IN_WML;
      break;
    default:
      break;
  }
}
