// SPDX-License-Identifier: MIT
#include "host/blocks/block_source.h"
#include "host/blocks/stream.h"
#include "host/reader.h"
#include "host/writers/trace.h"

namespace vs_wml {
namespace {

// What the routines need: the trace, and the numbers that the host hands out.
struct Tracer {
  Trace trace;
  std::uint32_t nextString = 1;
  std::uint32_t nextReference = 1;
  bool aborted = false;
};

Tracer &Of(VwUserWord user) {
  return *reinterpret_cast<Tracer *>(user);
}

// An output routine that hands its arguments to a method of the trace.
template <auto Method, typename... Arguments>
std::uint32_t Pass(Arguments... arguments, VwUserWord user, VwUserWord) {
  (Of(user).trace.*Method)(arguments...);
  return 0;
}

using Word = std::uint32_t;

std::uint32_t Abort(Word zero, VwUserWord user, VwUserWord) {
  Of(user).aborted = true;
  Of(user).trace.AbortStream(zero);
  return 0;
}

std::uint32_t InsertGraphic(const GraphicRecord *graphic, VwUserWord user, VwUserWord) {
  Of(user).trace.InsertGraphic(*graphic);
  return 0;
}

std::uint32_t OpenLink(Word code, Word number, const VwLinkRecord *link, VwUserWord user,
                       VwUserWord) {
  Of(user).trace.OpenLink(code, number, *link);
  return 0;
}

std::uint32_t StoreString(const std::uint16_t *string, Word code, Word length, Word *index,
                          VwUserWord user, VwUserWord) {
  *index = Of(user).nextString++;
  Of(user).trace.StoreString(string, code, length, *index);
  return 0;
}

std::uint32_t DescribeRow(const RowDescription *row, VwUserWord user, VwUserWord) {
  Of(user).trace.DescribeRow(*row);
  return 0;
}

std::uint32_t OpenReference(Word *id, VwUserWord user, VwUserWord) {
  *id = Of(user).nextReference++;
  Of(user).trace.OpenReference(*id);
  return 0;
}

std::uint32_t DescribeCell(const CellDescription *cell, VwUserWord user, VwUserWord) {
  Of(user).trace.DescribeCell(*cell);
  return 0;
}

const OutputRoutine kRoutines[] = {
    {SLOT_EMIT_CHAR, AsRoutine(Pass<&Trace::EmitChar, Word>)},
    {SLOT_EMIT_CONTROL_CODE, AsRoutine(Pass<&Trace::EmitControlCode, Word>)},
    {SLOT_SET_CHAR_SIZE, AsRoutine(Pass<&Trace::SetCharSize, Word>)},
    {SLOT_EMIT_BREAK, AsRoutine(Pass<&Trace::EmitBreak, Word, Word>)},
    {SLOT_DECLARE_SECTION, AsRoutine(Pass<&Trace::DeclareSection, Word, Word, Word>)},
    {SLOT_ABORT_STREAM, AsRoutine(Abort)},
    {SLOT_SELECT_FONT_NUMBER, AsRoutine(Pass<&Trace::SelectFontNumber, Word>)},
    {SLOT_SELECT_FONT_NAME, AsRoutine(Pass<&Trace::SelectFontName, Word, const char *>)},
    {SLOT_OPEN_FONT_LIST, AsRoutine(Pass<&Trace::OpenFontList>)},
    {SLOT_ADD_FONT_LIST_ENTRY, AsRoutine(Pass<&Trace::AddFontListEntry, Word, Word, const char *>)},
    {SLOT_CLOSE_FONT_LIST, AsRoutine(Pass<&Trace::CloseFontList>)},
    {SLOT_OPEN_TABLE, AsRoutine(Pass<&Trace::OpenTable>)},
    {SLOT_CLOSE_TABLE, AsRoutine(Pass<&Trace::CloseTable>)},
    {SLOT_INSERT_GRAPHIC, AsRoutine(InsertGraphic)},
    {SLOT_OPEN_LINK, AsRoutine(OpenLink)},
    {SLOT_CLOSE_LINK, AsRoutine(Pass<&Trace::CloseLink, Word, Word>)},
    {SLOT_STORE_STRING, AsRoutine(StoreString)},
    {SLOT_DESCRIBE_ROW, AsRoutine(DescribeRow)},
    {SLOT_SET_TEXT_COLOR, AsRoutine(Pass<&Trace::SetTextColor, Word, Word>)},
    {SLOT_SWITCH_CHARSET, AsRoutine(Pass<&Trace::SwitchCharset, Word>)},
    {SLOT_OPEN_REFERENCE, AsRoutine(OpenReference)},
    {SLOT_DESCRIBE_CELL, AsRoutine(DescribeCell)},
    {SLOT_SET_PROPERTY, AsRoutine(Pass<&Trace::SetProperty, Word, Word, Word, Word>)},
};

}  // namespace

void TraceDeck(const Deck &deck, std::ostream &out) {
  MemorySource source(deck.bytes);
  source.SetLimit(BlockSource::SensibleLimit(deck.bytes.size()));
  Tracer tracer{Trace(out)};
  {
    Stream stream(source, deck.identity, kRoutines, &tracer);
    if (!tracer.aborted) {
      stream.Section();
      stream.Read();
    }
  }
  tracer.trace.Flush();
  CheckRead(source, deck.bytes.size(), tracer.aborted);
}

}  // namespace vs_wml
