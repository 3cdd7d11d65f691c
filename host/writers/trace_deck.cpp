// SPDX-License-Identifier: MIT
#include "host/blocks/block_source.h"
#include "host/blocks/guarded_host.h"
#include "host/reader.h"
#include "host/writers/trace.h"

namespace vs_wml {
namespace {

using Word = std::uint32_t;

// A host that writes down what it is told, and answers with numbers.
class Tracer : public GuardedHost, public Trace {
 public:
  using Trace::Trace;

  static std::span<const OutputRoutine> Routines();

 private:
  template <auto kMember>
  static VwRoutine Routine() {
    return GuardedHost::Routine<Tracer, kMember>(kMember);
  }

  void TakeBreak(Word kind, Word zero) {
    if (kind == SO_BREAK_DOCUMENT) outcome_.ended = true;
    EmitBreak(kind, zero);
  }
  void Abort(Word zero) {
    outcome_.aborted = true;
    AbortStream(zero);
  }
  void TakeTable() {
    ++outcome_.tables;
    OpenTable();
  }
  void TakeGraphic(const GraphicRecord *graphic) { InsertGraphic(*graphic); }
  void TakeLink(Word code, Word number, const VwLinkRecord *link) { OpenLink(code, number, *link); }
  void TakeString(const std::uint16_t *string, Word code, Word length, Word *index) {
    *index = nextString_++;
    StoreString(string, code, length, *index);
  }
  void TakeRow(const RowDescription *row) { DescribeRow(*row); }
  void TakeReference(Word *id) {
    *id = nextReference_++;
    OpenReference(*id);
  }
  void TakeCell(const CellDescription *cell) { DescribeCell(*cell); }

  Word nextString_ = 1;
  Word nextReference_ = 1;
};

std::span<const OutputRoutine> Tracer::Routines() {
  static const OutputRoutine kRoutines[] = {
      {SLOT_EMIT_CHAR, Routine<&Trace::EmitChar>()},
      {SLOT_EMIT_CONTROL_CODE, Routine<&Trace::EmitControlCode>()},
      {SLOT_SET_CHAR_SIZE, Routine<&Trace::SetCharSize>()},
      {SLOT_EMIT_BREAK, Routine<&Tracer::TakeBreak>()},
      {SLOT_DECLARE_SECTION, Routine<&Trace::DeclareSection>()},
      {SLOT_ABORT_STREAM, Routine<&Tracer::Abort>()},
      {SLOT_SELECT_FONT_NUMBER, Routine<&Trace::SelectFontNumber>()},
      {SLOT_SELECT_FONT_NAME, Routine<&Trace::SelectFontName>()},
      {SLOT_OPEN_FONT_LIST, Routine<&Trace::OpenFontList>()},
      {SLOT_ADD_FONT_LIST_ENTRY, Routine<&Trace::AddFontListEntry>()},
      {SLOT_CLOSE_FONT_LIST, Routine<&Trace::CloseFontList>()},
      {SLOT_OPEN_TABLE, Routine<&Tracer::TakeTable>()},
      {SLOT_CLOSE_TABLE, Routine<&Trace::CloseTable>()},
      {SLOT_INSERT_GRAPHIC, Routine<&Tracer::TakeGraphic>()},
      {SLOT_OPEN_LINK, Routine<&Tracer::TakeLink>()},
      {SLOT_CLOSE_LINK, Routine<&Trace::CloseLink>()},
      {SLOT_STORE_STRING, Routine<&Tracer::TakeString>()},
      {SLOT_DESCRIBE_ROW, Routine<&Tracer::TakeRow>()},
      {SLOT_SET_TEXT_COLOR, Routine<&Trace::SetTextColor>()},
      {SLOT_SWITCH_CHARSET, Routine<&Trace::SwitchCharset>()},
      {SLOT_OPEN_REFERENCE, Routine<&Tracer::TakeReference>()},
      {SLOT_DESCRIBE_CELL, Routine<&Tracer::TakeCell>()},
      {SLOT_SET_PROPERTY, Routine<&Trace::SetProperty>()},
  };
  return kRoutines;
}

}  // namespace

void TraceDeck(const Deck &deck, std::ostream &out) {
  MemorySource source(deck.bytes);
  source.SetLimit(BlockSource::SensibleLimit(deck.bytes.size()));
  Tracer tracer(out);
  {
    Stream stream(source, deck.identity, Tracer::Routines(), &tracer);
    tracer.Attach(stream);
    if (!tracer.Outcome().aborted) {
      stream.Section();
      stream.Read();
    }
  }
  tracer.Rethrow();
  tracer.Flush();
  CheckRead(source, deck, tracer.Outcome());
}

}  // namespace vs_wml
