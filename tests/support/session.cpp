// SPDX-License-Identifier: MIT
#include "tests/support/session.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace vs_wml::test {
namespace {

/// The second user word of every call is this one's complement of the first.
VwUserWord Complement(const Host *host) {
  return ~reinterpret_cast<VwUserWord>(host);
}

template <typename Routine>
VwRoutine Erase(Routine routine) {
  return reinterpret_cast<VwRoutine>(routine);
}

void UncalledSlot() {
  std::fputs("a slot was called that has no name\n", stderr);
  std::abort();
}

}  // namespace

struct Host::Routines {
  static Host &From(VwUserWord user1, VwUserWord user2) {
    auto *host = reinterpret_cast<Host *>(user1);
    if (user2 != Complement(host)) std::abort();
    ++host->calls;
    if (host->watch) host->watch();
    return *host;
  }

  /// Checks a call that has no rule of its own and tells where to write it down.
  static Trace *Plain(VwUserWord user1, VwUserWord user2) {
    Host &host = From(user1, user2);
    host.checker.Any();
    return host.tracing ? &host.Log() : nullptr;
  }

  static std::uint32_t EmitChar(std::uint32_t character, VwUserWord user1, VwUserWord user2) {
    Host &host = From(user1, user2);
    host.checker.EmitChar(character);
    if (host.tracing) host.Log().EmitChar(character);
    return 0;
  }
  static std::uint32_t EmitControlCode(std::uint32_t code, VwUserWord user1, VwUserWord user2) {
    if (Trace *trace = Plain(user1, user2)) trace->EmitControlCode(code);
    return 0;
  }
  static std::uint32_t SetCharSize(std::uint32_t size, VwUserWord user1, VwUserWord user2) {
    if (Trace *trace = Plain(user1, user2)) trace->SetCharSize(size);
    return 0;
  }
  static std::uint32_t EmitBreak(std::uint32_t kind, std::uint32_t zero, VwUserWord user1,
                                 VwUserWord user2) {
    Host &host = From(user1, user2);
    const std::uint32_t answer = host.answerBreak ? host.answerBreak(kind) : 0;
    host.checker.EmitBreak(kind, zero, (answer & 0xFFFF) == SO_STOP);
    if (host.tracing) host.Log().EmitBreak(kind, zero);
    return answer;
  }
  static std::uint32_t DeclareSection(std::uint32_t zero0, std::uint32_t zero1, std::uint32_t zero2,
                                      VwUserWord user1, VwUserWord user2) {
    if (Trace *trace = Plain(user1, user2)) trace->DeclareSection(zero0, zero1, zero2);
    return 0;
  }
  static std::uint32_t AbortStream(std::uint32_t zero, VwUserWord user1, VwUserWord user2) {
    Host &host = From(user1, user2);
    host.checker.AbortStream();
    if (host.tracing) host.Log().AbortStream(zero);
    return 0;
  }
  static std::uint32_t SelectFontNumber(std::uint32_t number, VwUserWord user1, VwUserWord user2) {
    if (Trace *trace = Plain(user1, user2)) trace->SelectFontNumber(number);
    return 0;
  }
  static std::uint32_t SelectFontName(std::uint32_t one, const char *name, VwUserWord user1,
                                      VwUserWord user2) {
    if (Trace *trace = Plain(user1, user2)) trace->SelectFontName(one, name);
    return 0;
  }
  static std::uint32_t OpenFontList(VwUserWord user1, VwUserWord user2) {
    if (Trace *trace = Plain(user1, user2)) trace->OpenFontList();
    return 0;
  }
  static std::uint32_t AddFontListEntry(std::uint32_t number, std::uint32_t family,
                                        const char *name, VwUserWord user1, VwUserWord user2) {
    if (Trace *trace = Plain(user1, user2)) trace->AddFontListEntry(number, family, name);
    return 0;
  }
  static std::uint32_t CloseFontList(VwUserWord user1, VwUserWord user2) {
    if (Trace *trace = Plain(user1, user2)) trace->CloseFontList();
    return 0;
  }
  static std::uint32_t OpenTable(VwUserWord user1, VwUserWord user2) {
    Host &host = From(user1, user2);
    host.checker.OpenTable();
    if (host.tracing) host.Log().OpenTable();
    return 0;
  }
  static std::uint32_t CloseTable(VwUserWord user1, VwUserWord user2) {
    Host &host = From(user1, user2);
    host.checker.CloseTable();
    if (host.tracing) host.Log().CloseTable();
    return 0;
  }
  static std::uint32_t InsertGraphic(const GraphicRecord *graphic, VwUserWord user1,
                                     VwUserWord user2) {
    if (Trace *trace = Plain(user1, user2)) trace->InsertGraphic(*graphic);
    return 0;
  }
  static std::uint32_t OpenLink(std::uint32_t code, std::uint32_t number, const VwLinkRecord *link,
                                VwUserWord user1, VwUserWord user2) {
    Host &host = From(user1, user2);
    host.checker.OpenLink(code, number);
    if (host.tracing) host.Log().OpenLink(code, number, *link);
    return 0;
  }
  static std::uint32_t CloseLink(std::uint32_t code, std::uint32_t number, VwUserWord user1,
                                 VwUserWord user2) {
    Host &host = From(user1, user2);
    host.checker.CloseLink(code, number);
    if (host.tracing) host.Log().CloseLink(code, number);
    return 0;
  }
  static std::uint32_t StoreString(const std::uint16_t *string, std::uint32_t code,
                                   std::uint32_t length, std::uint32_t *index, VwUserWord user1,
                                   VwUserWord user2) {
    Trace *trace = Plain(user1, user2);
    Host &host = *reinterpret_cast<Host *>(user1);
    if (*index != 0xFFFFFFFF) host.checker.Fail("a string index that is preset");
    if (length > 1023 || string[length] != 0) host.checker.Fail("a string without its end");
    if (host.storing) *index = ++host.strings;
    if (trace != nullptr) trace->StoreString(string, code, length, *index);
    return 0;
  }
  static std::uint32_t DescribeRow(const RowDescription *row, VwUserWord user1, VwUserWord user2) {
    Host &host = From(user1, user2);
    host.checker.DescribeRow(*row);
    if (host.tracing) host.Log().DescribeRow(*row);
    return 0;
  }
  static std::uint32_t SetTextColor(std::uint32_t zero, std::uint32_t color, VwUserWord user1,
                                    VwUserWord user2) {
    if (Trace *trace = Plain(user1, user2)) trace->SetTextColor(zero, color);
    return 0;
  }
  static std::uint32_t SwitchCharset(std::uint32_t charset, VwUserWord user1, VwUserWord user2) {
    Host &host = From(user1, user2);
    host.checker.SwitchCharset(charset);
    if (host.tracing) host.Log().SwitchCharset(charset);
    host.announcing = false;
    return 0;
  }
  static std::uint32_t OpenReference(std::uint32_t *id, VwUserWord user1, VwUserWord user2) {
    Host &host = From(user1, user2);
    host.checker.OpenReference();
    if (*id != 0) host.checker.Fail("a reference id that is preset");
    if (host.storing) *id = ++host.references;
    if (host.tracing) host.Log().OpenReference(*id);
    return 0;
  }
  static std::uint32_t DescribeCell(const CellDescription *cell, VwUserWord user1,
                                    VwUserWord user2) {
    Host &host = From(user1, user2);
    host.checker.DescribeCell(*cell);
    if (host.tracing) host.Log().DescribeCell(*cell);
    return 0;
  }
  static std::uint32_t SetProperty(std::uint32_t code, std::uint32_t a, std::uint32_t b,
                                   std::uint32_t c, VwUserWord user1, VwUserWord user2) {
    Host &host = From(user1, user2);
    host.checker.SetProperty(code);
    if (host.tracing) host.Log().SetProperty(code, a, b, c);
    return 0;
  }
};

void Host::Install(WmlProc *instance, const Library &library) {
  for (std::int16_t slot = 1; slot <= VW_SLOT_COUNT; ++slot) {
    library.setSoRtn(slot, Erase(UncalledSlot), instance);
  }
  const auto set = [instance, &library](VwSlot slot, auto routine) {
    library.setSoRtn(static_cast<std::int16_t>(slot), Erase(routine), instance);
  };
  set(SLOT_EMIT_CHAR, Routines::EmitChar);
  set(SLOT_EMIT_CONTROL_CODE, Routines::EmitControlCode);
  set(SLOT_SET_CHAR_SIZE, Routines::SetCharSize);
  set(SLOT_EMIT_BREAK, Routines::EmitBreak);
  set(SLOT_DECLARE_SECTION, Routines::DeclareSection);
  set(SLOT_ABORT_STREAM, Routines::AbortStream);
  set(SLOT_SELECT_FONT_NUMBER, Routines::SelectFontNumber);
  set(SLOT_SELECT_FONT_NAME, Routines::SelectFontName);
  set(SLOT_OPEN_FONT_LIST, Routines::OpenFontList);
  set(SLOT_ADD_FONT_LIST_ENTRY, Routines::AddFontListEntry);
  set(SLOT_CLOSE_FONT_LIST, Routines::CloseFontList);
  set(SLOT_OPEN_TABLE, Routines::OpenTable);
  set(SLOT_CLOSE_TABLE, Routines::CloseTable);
  set(SLOT_INSERT_GRAPHIC, Routines::InsertGraphic);
  set(SLOT_OPEN_LINK, Routines::OpenLink);
  set(SLOT_CLOSE_LINK, Routines::CloseLink);
  set(SLOT_STORE_STRING, Routines::StoreString);
  set(SLOT_DESCRIBE_ROW, Routines::DescribeRow);
  set(SLOT_SET_TEXT_COLOR, Routines::SetTextColor);
  set(SLOT_SWITCH_CHARSET, Routines::SwitchCharset);
  set(SLOT_OPEN_REFERENCE, Routines::OpenReference);
  set(SLOT_DESCRIBE_CELL, Routines::DescribeCell);
  set(SLOT_SET_PROPERTY, Routines::SetProperty);
  library.setUser(reinterpret_cast<VwUserWord>(this), Complement(this), instance);
}

std::string Host::Text() {
  trace_.Flush();
  return text_.str();
}

std::string Host::Announced() {
  announced_.Flush();
  return announcedText_.str();
}

Session::Session(BlockSource &source, Host &host, const Library &library)
    : library_(library), source_(source), host_(host), instance_(library.allocProc()) {
  library.localUp(source.Handle(), &chr_, instance_);
  if (instance_ != nullptr) host.Install(instance_, library);
}

Session::~Session() {
  library_.streamClose(chr_, instance_);
  VwHandle block = 1;
  library_.localDown(chr_, &block);
  if (block != (chr_ == 0 ? 0 : source_.Handle())) std::abort();
  library_.freeProc(instance_);
}

VwFileInfo Session::Open(std::int16_t identity) {
  VwFileInfo info{};
  library_.streamOpen(chr_, identity, 0, &info, instance_);
  return info;
}

void Session::Section() {
  library_.streamSection(chr_, instance_);
}

bool Session::Read() {
  const std::uint64_t before = host_.calls;
  host_.checker.BeginRead();
  host_.announcing = resumed_;
  library_.streamRead(chr_, instance_);
  host_.announcing = false;
  host_.checker.EndRead(host_.calls - before);
  resumed_ = true;
  return host_.checker.Finished();
}

std::uint32_t Session::Tell() const {
  VwStreamPos position{};
  library_.streamTell(chr_, &position);
  return position.offset;
}

std::int32_t Session::Seek(std::uint32_t offset) const {
  const VwStreamPos position{0, offset};
  return library_.streamSeek(chr_, &position);
}

SavedState Session::Save() const {
  SavedState state;
  library_.getData(state.block.data(), instance_);
  state.position = Tell();
  return state;
}

void Session::Restore(const SavedState &state) const {
  library_.setData(state.block.data(), instance_);
  Seek(state.position);
}

std::string ReadDocument(BlockSource &source, Host &host, std::int16_t identity) {
  Session session(source, host);
  session.Open(identity);
  session.Section();
  // Every stop answers a break, and there is not more than one for each byte.
  std::uint64_t reads = 0;
  const std::uint64_t limit = 2 * std::uint64_t{source.length} + 10;
  while (!session.Read() && ++reads < limit) {
  }
  if (reads >= limit) host.checker.Fail("the document does not end");
  std::string text = host.Text();
  if (!host.checker.Fault().empty()) text += "broken rule: " + host.checker.Fault() + '\n';
  return text;
}

std::string ReadDocument(std::string_view text, std::int16_t identity) {
  BlockSource source(text);
  Host host;
  return ReadDocument(source, host, identity);
}

}  // namespace vs_wml::test
