// SPDX-License-Identifier: MIT
#include "filter/elements/anchor.h"

#include "filter/attributes/attribute_values.h"
#include "filter/ground/callbacks.h"

[[gnu::noinline]] void ProcessBeginAnchor(WmlProc *proc) {
  WmlSave &save = proc->save;
  if (save.modeFlags & MODE_IN_ANCHOR) return;
  uint32_t target;
  if (!PutAttributeString(ATTRIB_HREF, &target, proc)) return;
  VwLinkRecord link = {};
  uint32_t title;
  PutAttributeString(ATTRIB_TITLE, &title, proc);
  if (title != NO_STRING) link.flags = SO_LINK_HAS_TITLE;
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
