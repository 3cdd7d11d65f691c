// SPDX-License-Identifier: MIT
#include "filter/elements/tag_processing.h"

#include <cassert>

#include "filter/attributes/alignment.h"
#include "filter/attributes/attribute_values.h"
#include "filter/elements/anchor.h"
#include "filter/elements/image.h"
#include "filter/format/tag_stack.h"
#include "filter/ground/callbacks.h"
#include "filter/ground/short_cuts.h"
#include "filter/tables/table_output.h"
#include "filter/text/characters.h"
#include "filter/text/paragraph.h"

namespace {

// Writes the value of the card's `title` as a paragraph of its own.
void PutTitle(WmlProc *proc) {
  char *title = StringCreate(SCRATCH_TEXT_SIZE, proc);
  if (title == nullptr) return;
  if (GetAttributeString(ATTRIB_TITLE, title, SCRATCH_TEXT_SIZE, proc)) {
    WmlPutString(title, proc);
    ForceParaBreak(proc);
  }
  StringDestroy(title, proc);
}

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
  PutTitle(proc);
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
  ProcessBeginRow(proc);
  TagStackPush(kRow, 0, proc);
}

// True when a cell was begun.
bool BeginCell(WmlProc *proc) {
  if ((proc->save.modeFlags & MODE_IN_TABLE) == 0) {
    proc->save.modeFlags &= ~MODE_IN_CELL;
    return false;
  }
  if (TagStackFind(TAG_TR, proc) < 0) BeginImpliedRow(proc);
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

void BeginOtherElement(ItemRecord item, WmlProc *proc) {
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

// What the begin tag of an element does; the style template that the element takes, 0 for none.
// The tags that select a style are most that stand between words, so that they are told from
// the others by one question, which a processor guesses right more often than a jump by tag.
uint8_t BeginElement(ItemRecord item, WmlProc *proc) {
  if (TagClass(item.tagId) & TAGF_STYLE) return InBody(proc) ? StyleClass(item.tagId) : uint8_t{0};
  if (item.tagId == TAG_TD) {
    return InBody(proc) && BeginCell(proc) ? StyleClass(TAG_TD) : uint8_t{0};
  }
  BeginOtherElement(item, proc);
  return 0;
}

// What the end of an element does, whatever ended it.
void EndElement(uint8_t tagId, WmlProc *proc) {
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

// Closes every element from the top down to `index`: pops it, then ends it.
[[gnu::noinline]] void CloseDownTo(int16_t index, WmlProc *proc) {
  assert(index >= 0);
  for (int16_t i = proc->save.tagStackTop; i >= index; --i) EndElement(TagStackPopTop(proc), proc);
}

// Closes what an end tag closes; the tag that is left to pop, TAG_NONE for a stray end tag.
uint8_t CloseElement(uint8_t tagId, WmlProc *proc) {
  const uint32_t tagClass = TagClass(tagId);
  // The end of the style begun last, the most frequent case, does nothing but pop.
  if (kShortCuts && (tagClass & TAGF_STYLE) && TagStackTop(proc).tagId == tagId) {
    return TagStackPopTop(proc);
  }
  if (tagClass & (TAGF_CONTAINER | TAGF_STYLE)) {
    const int16_t index = TagStackFind(tagId, proc);
    if (index < 0) return TAG_NONE;
    CloseDownTo(index, proc);
    return tagId;
  }
  if (tagClass & TAGF_TABLE_PART) {
    TagStackCloseParts(tagId, proc);
    return tagId;
  }
  const bool closesTop = (tagClass & TAGF_MATCH_TOP) && TagStackTop(proc).tagId == tagId;
  if (!closesTop) return TAG_NONE;
  EndElement(tagId, proc);
  return tagId;
}

}  // namespace

void ProcessBeginTag(ItemRecord item, WmlProc *proc) {
  if (item.tagId >= TAG_COUNT) item.tagId = TAG_NONE;  // from a save block
  if (TagClass(item.tagId) & TAGF_TABLE_PART) TagStackCloseParts(item.tagId, proc);
  TagStackPush(item, BeginElement(item, proc), proc);
}

// An element of the same tag right below a closed container or style is popped with it.
void ProcessEndTag(uint8_t tagId, WmlProc *proc) {
  TagStackPop(CloseElement(tagId, proc), proc);
}

void CloseAllElements(WmlProc *proc) {
  CloseDownTo(0, proc);
}
