// SPDX-License-Identifier: MIT
#include "tests/support/call_checker.h"

#include "host/platform/charsets.h"

namespace vs_wml::test {

void CallChecker::Fail(const char *rule) {
  if (fault_.empty()) fault_ = rule;
}

void CallChecker::BeginRead() {
  reading_ = true;
  announced_ = false;
  stopped_ = false;
  finished_ = false;
  aborted_ = false;
}

void CallChecker::EndRead(std::uint64_t calls) {
  reading_ = false;
  if (calls == 0) return;
  if (!finished_ && !stopped_) Fail("a read ended neither with the document nor with a stop");
  if (rowDescribed_) Fail("a read ended inside a row description");
  if (reference_ != Reference::kNone) Fail("a read ended inside a reference");
}

void CallChecker::Any() {
  if (finished_) Fail("a call after the end of the document");
  if (rowDescribed_) Fail("a call between a row description and its break");
  if (reference_ != Reference::kNone) Fail("a call inside a reference definition");
}

void CallChecker::EmitChar(std::uint32_t character) {
  Any();
  if (!announced_) Fail("a character before its character set");
  if (character == 0 || character > 0xFFFF) Fail("a character outside 1..0xFFFF");
}

void CallChecker::EmitBreak(std::uint32_t kind, std::uint32_t zero, bool stops) {
  if (zero != 0) Fail("a break with a second argument");
  if (kind == SO_BREAK_ROW) {
    if (!rowDescribed_ || cellsDue_ != 0) Fail("a row break without its descriptions");
    rowDescribed_ = false;
  }
  Any();
  switch (kind) {
    case SO_BREAK_PARAGRAPH:
    case SO_BREAK_CELL:
      break;
    case SO_BREAK_ROW:
      if (!inTable_) Fail("a row break outside a table");
      break;
    case SO_BREAK_DOCUMENT:
      finished_ = true;
      break;
    default:
      Fail("an unknown kind of break");
  }
  if (stops && (kind == SO_BREAK_PARAGRAPH || kind == SO_BREAK_ROW)) stopped_ = true;
}

void CallChecker::AbortStream() {
  Any();
  if (aborted_) Fail("a read aborted twice");
  aborted_ = true;
}

void CallChecker::SwitchCharset(std::uint32_t hostCharset) {
  Any();
  announced_ = true;
  if (NameOfHostCharset(hostCharset).empty()) Fail("an unknown character set");
}

void CallChecker::OpenTable() {
  Any();
  if (inTable_) Fail("a table inside a table");
  inTable_ = true;
}

void CallChecker::CloseTable() {
  Any();
  if (!inTable_) Fail("the end of a table that is not open");
  inTable_ = false;
}

void CallChecker::DescribeRow(const RowDescription &row) {
  Any();
  if (!inTable_) Fail("a row outside a table");
  if (row.columnCount > VW_MAX_COLUMNS) Fail("too many columns");
  rowDescribed_ = true;
  cellsDue_ = row.columnCount;
}

void CallChecker::DescribeCell(const CellDescription & /*cell*/) {
  if (!rowDescribed_ || cellsDue_ == 0) Fail("a cell description too many");
  if (cellsDue_ != 0) --cellsDue_;
}

void CallChecker::OpenLink(std::uint32_t code, std::uint32_t number) {
  Any();
  if (code != SO_LINK_CODE) Fail("a link with another code");
  if (inLink_) Fail("a link inside a link");
  inLink_ = true;
  if (number != ++links_) Fail("a link out of sequence");
}

void CallChecker::CloseLink(std::uint32_t code, std::uint32_t number) {
  Any();
  if (code != SO_LINK_CODE) Fail("a link with another code");
  if (!inLink_ || number != links_) Fail("the end of a link that is not open");
  inLink_ = false;
}

void CallChecker::OpenReference() {
  Any();
  reference_ = Reference::kOpen;
}

void CallChecker::SetProperty(std::uint32_t code) {
  if (code == PROP_REFERENCE_TARGET) {
    if (reference_ != Reference::kOpen) Fail("a target without a reference");
    reference_ = Reference::kTargeted;
    return;
  }
  if (code == PROP_REFERENCE_END) {
    if (reference_ != Reference::kTargeted) Fail("a reference without a target");
    reference_ = Reference::kNone;
    return;
  }
  Any();
}

}  // namespace vs_wml::test
