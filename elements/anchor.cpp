#include "elements/anchor.h"

#include "elements/attribute_values.h"
#include "filter/callbacks.h"

namespace {

// Stores the title with the host; true when there is one that was stored.
bool StoreTitle(WmlProc *proc) {
  return GetAttributeString(ATTRIB_TITLE, proc->attrScratch, SCRATCH_TEXT_SIZE, proc) &&
         WMLPutPropertyString(proc->attrScratch, proc) != NO_STRING;
}

}  // namespace

[[gnu::noinline]] void ProcessBeginAnchor(WmlProc *proc) {
  WmlSave &save = proc->save;
  if (save.modeFlags & MODE_IN_ANCHOR) return;
  if (!GetAttributeString(ATTRIB_HREF, proc->attrScratch, SCRATCH_TEXT_SIZE, proc)) return;
  VwLinkRecord link = {};
  const uint32_t target = WMLPutPropertyString(proc->attrScratch, proc);
  if (StoreTitle(proc)) link.flags = SO_LINK_HAS_TITLE;
  if (target != NO_STRING) PutReference(target, &link.referenceId, proc);
  save.modeFlags |= MODE_IN_ANCHOR;
  ++save.anchorCount;
  SOOpenLink(save.anchorCount, &link, proc);
  SOSetTextColor(save.linkColor, proc);
  SOSetProperty(PROP_CHAR_ATTRIBUTE, PROP_ATTR_UNDERLINE, 1, 0, proc);
}

void ProcessEndAnchor(WmlProc *proc) {
  WmlSave &save = proc->save;
  if ((save.modeFlags & MODE_IN_ANCHOR) == 0) return;
  SOSetTextColor(save.textColor, proc);
  SOSetProperty(PROP_CHAR_ATTRIBUTE, PROP_ATTR_UNDERLINE, 0, 0, proc);
  SOCloseLink(save.anchorCount, proc);
  save.modeFlags &= ~MODE_IN_ANCHOR;
}
