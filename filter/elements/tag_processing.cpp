#include "filter/elements/tag_processing.h"

#include "filter/attributes/attribute_values.h"
#include "filter/elements/anchor.h"
#include "filter/elements/image.h"
#include "filter/format/style.h"
#include "filter/format/tag_stack.h"
#include "filter/ground/callbacks.h"
#include "filter/tables/table_output.h"
#include "filter/text/paragraph.h"

namespace {

// Out of line, as are the other handlers of tags that need much: the frequent tags of styles
// and cells do not save and restore registers for them.
[[gnu::noinline]] void BeginCard(WmlProc *proc) {
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

[[gnu::noinline]] void BeginParagraph(WmlProc *proc) {
  OptionParaBreak(proc);
  uint16_t alignment = CheckJustify(proc);
  if (alignment == 0) alignment = PARA_ALIGN_LEFT;
  proc->save.paraAlign = alignment;
  TagStackApplyStyle(static_cast<uint8_t>(alignment), proc);
  SetParaAlign(alignment, proc);
}

// Opens the row that a cell outside every row belongs to.
void BeginImpliedRow(WmlProc *proc) {
  constexpr ItemRecord kRow = {TAG_TR, 0};
  TagStackPush(kRow, ProcessBeginTag(kRow, proc), proc);
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

uint8_t StyleClass(uint8_t tagId) {
  return static_cast<uint8_t>(WmlInit.tags[tagId].value >> 16);
}

bool InBody(const WmlProc *proc) {
  return (proc->save.modeFlags & (MODE_IN_CARD | MODE_IN_HEAD)) == MODE_IN_CARD;
}

// Elements that act only inside a card and select no style.
void BeginBodyElement(ItemRecord item, WmlProc *proc) {
  switch (item.tagId) {
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
    case TAG_TR:
      ProcessBeginRow(proc);
      break;
    default:
      break;
  }
}

[[gnu::noinline]] void BeginElement(ItemRecord item, WmlProc *proc) {
  switch (item.tagId) {
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

}  // namespace

// The tags that select a style are most that stand between words, so that they are told from
// the others by one question, which a processor guesses right more often than a jump by tag.
uint8_t ProcessBeginTag(ItemRecord item, WmlProc *proc) {
  if (TagClass(item.tagId) & TAGF_STYLE) return InBody(proc) ? StyleClass(item.tagId) : uint8_t{0};
  if (item.tagId == TAG_TD) {
    return InBody(proc) && BeginCell(proc) ? StyleClass(TAG_TD) : uint8_t{0};
  }
  BeginElement(item, proc);
  return 0;
}

void ProcessEndTag(uint8_t tagId, WmlProc *proc) {
  uint32_t &modeFlags = proc->save.modeFlags;
  if (modeFlags & MODE_IN_HEAD) {
    if (tagId == TAG_HEAD) modeFlags &= ~MODE_IN_HEAD;
    return;
  }
  if ((modeFlags & MODE_IN_WML) == 0) return;
  switch (tagId) {
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
