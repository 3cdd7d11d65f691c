// The entry points one by one: what they write, what they leave alone, and what they do
// in the wrong state.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>
#include <vector>

#include "filter/ground/instance.h"
#include "tests/support/heap_probe.h"
#include "tests/support/session.h"

namespace vs_wml::test {
namespace {

template <typename Routine>
VwRoutine Erase(Routine *routine) {
  return reinterpret_cast<VwRoutine>(routine);
}

TEST(RoutineTable, IsFilledAsFarAsTheHostHasRoom) {
  const std::vector<VwRoutine> all = {Erase(VwStreamOpen),
                                      Erase(VwStreamSection),
                                      Erase(VwStreamRead),
                                      Erase(VwStreamTell),
                                      Erase(VwStreamSeek),
                                      Erase(VwGetInfo),
                                      Erase(VwGetData),
                                      Erase(VwSetData),
                                      Erase(VwLocalUp),
                                      Erase(VwLocalDown),
                                      Erase(VwAllocProc),
                                      Erase(VwFreeProc),
                                      Erase(VwSetUser),
                                      Erase(VwSetSoRtn),
                                      Erase(VwStreamClose),
                                      nullptr,
                                      nullptr,
                                      Erase(VwStreamReadRecord),
                                      Erase(VwDoSpecial),
                                      nullptr,
                                      nullptr,
                                      nullptr};
  const VwRoutine canary = Erase(SODummy);
  for (const std::uint16_t entries :
       std::to_array<std::uint16_t>({0, 18, 19, 20, 21, 22, 23, 65535})) {
    std::array<VwRoutine, 26> table;
    table.fill(canary);
    VwGetRtns(table.data(), entries);
    const std::size_t written = entries >= 22 ? 22 : entries >= 19 ? 19 : 18;
    for (std::size_t i = 0; i < table.size(); ++i) {
      EXPECT_EQ(table[i], i < written ? all[i] : canary) << "entry " << i << " of " << entries;
    }
  }
}

/// The bytes that an information query writes, found with two different canaries.
std::string Info(std::uint16_t query, std::uint16_t *answer = nullptr) {
  std::array<char, 64> low;
  std::array<char, 64> high;
  low.fill('\x11');
  high.fill('\xEE');
  const std::uint16_t first = VwGetInfo(low.data(), query);
  EXPECT_EQ(VwGetInfo(high.data(), query), first);
  if (answer != nullptr) *answer = first;
  std::size_t size = 0;
  while (size < low.size() && low[size] == high[size]) ++size;
  for (std::size_t i = size; i < low.size(); ++i) EXPECT_EQ(low[i], '\x11') << query;
  return {low.data(), size};
}

template <typename Word>
std::string Bytes(std::initializer_list<Word> words) {
  return {reinterpret_cast<const char *>(words.begin()), words.size() * sizeof(Word)};
}

TEST(Info, AnswersEachQueryInItsWidth) {
  using W = std::uint16_t;
  EXPECT_EQ(Info(1), Bytes<W>({516}));
  EXPECT_EQ(Info(2), Bytes<W>({1136}));
  EXPECT_EQ(Info(3), Bytes<W>({5008}));
  EXPECT_EQ(Info(4), Bytes<W>({400}));
  EXPECT_EQ(Info(5), Bytes<W>({440}));
  EXPECT_EQ(Info(6), Bytes<W>({14}));
  EXPECT_EQ(Info(7),
            Bytes<W>({1151, 1163, 1160, 1161, 1159, 1154, 1155, 1156, 1162, 1157, 1158, 0, 0, 0}));
  EXPECT_EQ(Info(8), std::string("Mar  1 2002\0", 12));
  EXPECT_EQ(Info(9), std::string("03:52:42\0", 9));
  EXPECT_EQ(Info(10), Bytes<W>({0}));
  EXPECT_EQ(Info(11), Bytes<W>({0}));
  EXPECT_EQ(Info(12), Bytes<std::uint32_t>({0x12345678}));
  EXPECT_EQ(Info(13), Bytes<std::uint32_t>({0}));
  for (std::uint16_t query = 0; query < 40; ++query) {
    std::uint16_t answer = 2;
    const std::string written = Info(query, &answer);
    EXPECT_EQ(answer, query >= 1 && query <= 13 ? 1 : 0) << query;
    if (answer == 0) {
      EXPECT_EQ(written, "") << query;
    }
  }
}

TEST(Identities, AreTheExportedTable) {
  const char *const names[] = {"Internet WML",
                               "WML - Central European",
                               "WML - Japanese ShiftJIS",
                               "WML - Japanese EUC",
                               "WML - Japanese JIS",
                               "WML - Chinese Big5",
                               "WML - Chinese EUC",
                               "WML - Chinese GB",
                               "WML - Korean Hangul",
                               "WML - Cyrillic (Ansi 1251)",
                               "WML - Cyrillic (KOI8-R)"};
  static_assert(sizeof(WmlOverlayId) == 616);
  std::string expected;
  for (std::size_t i = 0; i < std::size(names); ++i) {
    std::string record(44, '\0');
    record[0] = static_cast<char>(kIdentities[i] & 0xFF);
    record[1] = static_cast<char>(kIdentities[i] >> 8);
    record[2] = 120;
    std::memcpy(record.data() + 3, names[i], std::strlen(names[i]));
    expected += record;
  }
  expected += std::string(3 * 44, '\0');
  EXPECT_EQ(std::string(reinterpret_cast<const char *>(WmlOverlayId), sizeof(WmlOverlayId)),
            expected);
}

std::string Section(std::int16_t identity) {
  BlockSource source("");
  Host host;
  Session session(source, host);
  VwFileInfo info = session.Open(identity);
  EXPECT_EQ(info.typeCode, 120u);
  EXPECT_EQ(info.charsetCode, HOST_CS_UNICODE);
  EXPECT_STREQ(info.name, "Internet WML");
  EXPECT_EQ(session.Tell(), 0u);
  session.Section();
  return host.Text();
}

TEST(Stream, TellsTheFontsOfEachIdentity) {
  const std::string fonts =
      "SOAddFontListEntry 1 roman \"roman\"\n"
      "SOAddFontListEntry 2 helvetica \"helvetica\"\n"
      "SOAddFontListEntry 3 courier \"courier\"\n"
      "SOCloseFontList\n"
      "SOSetProperty section-end\n";
  const std::string begin = "SODeclareSection\nSOOpenFontList\n";
  for (const std::int16_t identity : kIdentities) {
    const std::string national = identity == 1151 ? "" : "SOAddFontListEntry 4 national \"\"\n";
    EXPECT_EQ(Section(identity), begin + national + fonts) << identity;
  }
}

TEST(Stream, SelectsOnlyPlainWmlFonts) {
  for (const std::int16_t identity : kIdentities) {
    const std::string text = ReadDocument("<wml><card><pre>x</pre>", identity);
    const bool plain = identity == 1151;
    EXPECT_NE(text.find(plain ? "SOSelectFontNumber 1\n" : "SOSelectFontNumber 0\n"),
              std::string::npos);
    EXPECT_EQ(text.find(plain ? "SOSelectFontNumber 0\n" : "SOSelectFontNumber 1\n"),
              std::string::npos);
    EXPECT_EQ(text.find("SOSelectFontNumber 3\n") != std::string::npos, plain);
  }
}

// Instances in one process keep their own default typeface.
TEST(Stream, SectionsOfOtherStreamsChangeNothing) {
  BlockSource plainSource("<wml><card>x");
  BlockSource nationalSource("<wml><card>x");
  Host plain;
  Host national;
  Session plainSession(plainSource, plain);
  Session nationalSession(nationalSource, national);
  plainSession.Open(1151);
  nationalSession.Open(1160);
  nationalSession.Section();
  plainSession.Section();
  plainSession.Read();
  nationalSession.Read();
  EXPECT_NE(plain.Text().find("SOSelectFontNumber 1\n"), std::string::npos);
  EXPECT_NE(national.Text().find("SOSelectFontNumber 0\n"), std::string::npos);
}

TEST(Stream, RefusesUnknownIdentities) {
  for (const int identity : {0, 1, 1150, 1152, 1153, 1164, -1, 32767, -32768}) {
    BlockSource source("<wml><card>x");
    Host host;
    Session session(source, host);
    session.Open(static_cast<std::int16_t>(identity));
    EXPECT_EQ(host.Text(), "SOAbortStream\n") << identity;
    EXPECT_EQ(source.reads, 0u);
  }
}

TEST(Stream, ReadsTheEndAgainAndAgain) {
  BlockSource source("<wml><card>x</card></wml>");
  Host host;
  Session session(source, host);
  session.Open();
  session.Section();
  ASSERT_TRUE(session.Read());
  const std::string first = host.Text();
  ASSERT_TRUE(session.Read());
  EXPECT_EQ(host.Text().substr(first.size()), "SOEmitBreak document\n");
  host.tracing = false;
  const std::uint32_t end = session.Tell();
  for (int i = 0; i < 70000; ++i) {
    ASSERT_TRUE(session.Read());
    ASSERT_GE(session.Tell(), end);
  }
  EXPECT_EQ(host.checker.Fault(), "");
}

// Whatever a stream leaves behind, the next one in the instance begins afresh.
TEST(Stream, IsOpenedAgain) {
  constexpr std::string_view kText = "y<b>z</b><table columns=1><td>t</table></card><card>";
  const std::string deck = "<wml><card>" + std::string(kText);
  for (const bool closes : {true, false}) {
    for (const std::int16_t before : std::to_array<std::int16_t>({1160, 1152})) {
      for (const bool stops : {true, false}) {
        HeapProbe heap;
        {
          BlockSource source("<wml><card><p align=right><a href=x>x<pre>y\n<table columns=9><td>");
          Host first;
          if (stops) first.answerBreak = [](std::uint32_t) { return SO_STOP; };
          Session session(source, first);
          session.Open(before);
          session.Read();
          if (closes) VwStreamClose(session.Chr(), session.Instance());

          BlockSource again(deck);
          Host host;
          host.Install(session.Instance());
          VwHandle chr = 0;
          VwHandle block = 0;
          VwLocalUp(again.Handle(), &chr, session.Instance());
          host.Install(session.Instance());
          VwFileInfo info;
          VwStreamOpen(chr, 1151, 0, &info, session.Instance());
          VwStreamSection(chr, session.Instance());
          host.checker.BeginRead();
          VwStreamRead(chr, session.Instance());
          EXPECT_EQ(host.Text(), ReadDocument(deck)) << closes << before << stops;
          VwLocalDown(chr, &block);
        }
        EXPECT_EQ(heap.blocks, 0);
      }
    }
  }
}

TEST(Stream, ReadsTheHandleThatItIsGiven) {
  BlockSource source("<wml><card>x");
  BlockSource other("<wml><card>y");
  Host host;
  Session session(source, host);
  session.Open();
  VwHandle chr = 0;
  VwLocalUp(other.Handle(), &chr, session.Instance());
  host.Install(session.Instance());
  host.checker.BeginRead();
  VwStreamRead(chr, session.Instance());
  EXPECT_NE(host.Text().find("SOEmitChar \"y\"\n"), std::string::npos);
  EXPECT_EQ(source.reads, 0u);
  VwHandle block = 0;
  VwLocalDown(chr, &block);
  EXPECT_EQ(block, other.Handle());
}

// A row or cell without an end tag is closed by the next one, so that a table of any length
// leaves room on the stack of open elements, which holds 40; outside a table none is closed.
TEST(Stack, HoldsNoClosedRowsAndCells) {
  const struct {
    const char *begin;
    const char *repeated;
    bool leavesRoom;
  } documents[] = {
      {"<table columns=1>", "<tr><td>x", true},
      {"<table columns=60><tr>", "<td>x", true},
      {"", "<td></td><tr></tr>", true},
      {"", "<td>", false},
      {"", "<tr>", false},
  };
  for (const auto &document : documents) {
    std::string text = std::string("<wml><card>") + document.begin;
    for (int i = 0; i < 60; ++i) text += document.repeated;
    const bool isBold = ReadDocument(text + "<b>y").find("bold on") != std::string::npos;
    EXPECT_EQ(isBold, document.leavesRoom) << document.begin << document.repeated;
  }
}

TEST(Slots, HaveAPlaceEachAndNoneBeyond) {
  BlockSource source("<wml><card>x");
  Host host;
  Session session(source, host);
  const auto &field = session.Instance()->routines.field;
  const auto routine = [](int slot) { return reinterpret_cast<VwRoutine>(0x1000 + slot); };
  for (int slot = 1; slot <= VW_SLOT_COUNT; ++slot) {
    VwSetSoRtn(static_cast<std::int16_t>(slot), routine(slot), session.Instance());
  }
  const std::pair<int, int> places[] = {{1, 0},     {30, 29},  {113, 30},  {109, 31},  {112, 34},
                                        {31, 35},   {35, 39},  {104, 40},  {36, 41},   {75, 80},
                                        {114, 81},  {76, 82},  {103, 109}, {105, 110}, {108, 113},
                                        {115, 114}, {118, 117}};
  for (const auto &[slot, place] : places) EXPECT_EQ(field[place], routine(slot)) << slot;
  for (int slot = 1; slot <= VW_SLOT_COUNT; ++slot) {
    EXPECT_EQ(std::ranges::count(field, routine(slot)), 1) << slot;
  }
  const std::vector<VwRoutine> before(std::begin(field), std::end(field));
  const VwUserWord user1 = session.Instance()->userData1;
  for (const int slot : {0, -1, 119, 32767, -32768}) {
    VwSetSoRtn(static_cast<std::int16_t>(slot), Erase(SODummy), session.Instance());
  }
  EXPECT_TRUE(std::ranges::equal(field, before));
  EXPECT_EQ(session.Instance()->userData1, user1);
  VwSetSoRtn(118, nullptr, session.Instance());
  EXPECT_EQ(field[117], Erase(SODummy));
}

// SODummy has the type of no slot that is called: another routine is called for it.
TEST(Slots, CallNoRoutineOfAnotherType) {
  BlockSource source("<wml><card>x");
  Host host;
  Session session(source, host);
  const WmlProc &instance = *session.Instance();
  for (const std::int16_t slot :
       {SLOT_EMIT_CHAR,           SLOT_EMIT_CONTROL_CODE, SLOT_SET_CHAR_SIZE,
        SLOT_EMIT_BREAK,          SLOT_DECLARE_SECTION,   SLOT_ABORT_STREAM,
        SLOT_SELECT_FONT_NUMBER,  SLOT_SELECT_FONT_NAME,  SLOT_OPEN_FONT_LIST,
        SLOT_ADD_FONT_LIST_ENTRY, SLOT_CLOSE_FONT_LIST,   SLOT_OPEN_TABLE,
        SLOT_CLOSE_TABLE,         SLOT_INSERT_GRAPHIC,    SLOT_OPEN_LINK,
        SLOT_CLOSE_LINK,          SLOT_STORE_STRING,      SLOT_DESCRIBE_ROW,
        SLOT_SET_TEXT_COLOR,      SLOT_SWITCH_CHARSET,    SLOT_OPEN_REFERENCE,
        SLOT_DESCRIBE_CELL,       SLOT_SET_PROPERTY}) {
    const std::uint8_t place = SLOT_FIELDS.of[slot];
    for (const VwRoutine empty : {VwRoutine{nullptr}, Erase(SODummy)}) {
      VwSetSoRtn(slot, empty, session.Instance());
      EXPECT_EQ(instance.routines.field[place], Erase(SODummy)) << slot;
      EXPECT_NE(instance.calls.field[place], Erase(SODummy)) << slot;
    }
  }
}

TEST(Slots, AreEmptiedByNull) {
  BlockSource source("<wml><card>x");
  Host host;
  Session session(source, host);
  session.Open();
  session.Section();
  VwSetSoRtn(SLOT_EMIT_CHAR, nullptr, session.Instance());
  session.Read();
  EXPECT_EQ(host.Text().find("SOEmitChar"), std::string::npos);
  EXPECT_NE(host.Text().find("SOEmitBreak document"), std::string::npos);
}

TEST(Slots, AreEmptyAfterAttaching) {
  BlockSource source("<wml><card>x");
  Host host;
  WmlProc *instance = VwAllocProc();
  VwHandle chr = 0;
  host.Install(instance);
  VwLocalUp(source.Handle(), &chr, instance);
  VwFileInfo info;
  EXPECT_EQ(VwStreamOpen(chr, 1151, 0, &info, instance), 0u);
  EXPECT_EQ(VwStreamSection(chr, instance), 0u);
  EXPECT_EQ(VwStreamRead(chr, instance), 0u);
  EXPECT_EQ(host.calls, 0u);
  EXPECT_GT(source.reads, 0u);
  VwStreamClose(chr, instance);
  VwHandle block = 0;
  VwLocalDown(chr, &block);
  EXPECT_EQ(block, source.Handle());
  VwFreeProc(instance);
}

TEST(Position, LeavesTheFirstFieldAlone) {
  BlockSource source("<wml><card>x");
  Host host;
  Session session(source, host);
  session.Open();
  VwStreamPos position{0xCAFE, 0xBEEF};
  EXPECT_EQ(VwStreamTell(session.Chr(), &position), 0);
  EXPECT_EQ(position.first, 0xCAFEu);
  EXPECT_EQ(position.offset, 0u);
}

TEST(SaveBlock, HasItsSizeAndHoldsNothingButTheState) {
  // The same open stream over two heaps of different left-overs.
  std::array<std::uint8_t, VW_SAVE_SIZE + 8> blocks[2];
  for (int i = 0; i < 2; ++i) {
    const std::uint8_t dirt = i == 0 ? 0x5A : 0xA5;
    HeapProbe heap;
    heap.fill = dirt;
    BlockSource source("<wml><card><b>x<br/>y");
    Host host;
    Session session(source, host);
    session.Open();
    blocks[i].fill(0x77);
    VwGetData(blocks[i].data() + 4, session.Instance());
    session.Section();
    host.answerBreak = [](std::uint32_t) { return SO_STOP; };
    session.Read();
    std::array<std::uint8_t, VW_SAVE_SIZE> later{};
    VwGetData(later.data(), session.Instance());
    EXPECT_EQ(std::ranges::count(later, dirt), 0) << "a byte of the heap leaves the process";
    VwSetData(later.data(), session.Instance());
    EXPECT_EQ(session.Save().block, later);
  }
  EXPECT_EQ(blocks[0], blocks[1]);
  for (const std::size_t edge : {0u, 3u, 520u, 523u}) EXPECT_EQ(blocks[0][edge], 0x77);
}

// Answers to breaks: only the low 16 bits count, and only for paragraphs and rows.
TEST(Stop, IsTheLowHalfOfTheAnswer) {
  const struct {
    std::uint32_t answer;
    bool stops;
  } answers[] = {{0, false},       {1, true},       {2, false},
                 {0xFFFF, false},  {0x10001, true}, {0xFFFF0001, true},
                 {0x10000, false}, {0x101, false},  {0xFFFFFFFF, false}};
  for (const auto &[answer, stops] : answers) {
    BlockSource source("<wml><card>a<br/>b<table columns=1><td>c<tr><td>d</table></card></wml>");
    Host host;
    host.answerBreak = [value = answer](std::uint32_t) { return value; };
    Session session(source, host);
    session.Open();
    EXPECT_EQ(session.Read(), !stops) << std::hex << answer;
    EXPECT_EQ(host.checker.Fault(), "");
  }
}

TEST(Stop, IsNotReadFromCellsAndTheEnd) {
  BlockSource source("<wml><card title='a\nb'>");
  Host host;
  std::uint32_t count = 0;
  host.answerBreak = [&count](std::uint32_t kind) -> std::uint32_t {
    // The break inside the title is the first, the one behind it the second.
    return kind == SO_BREAK_PARAGRAPH && ++count == 2 ? 0 : SO_STOP;
  };
  Session session(source, host);
  session.Open();
  host.checker.BeginRead();
  VwStreamRead(session.Chr(), session.Instance());
  EXPECT_TRUE(host.checker.Finished());
}

TEST(Null, InstancesAreIgnoredEverywhere) {
  std::array<std::uint8_t, VW_SAVE_SIZE> block{};
  VwFileInfo info{};
  BlockSource source("x");
  VwHandle chr = 7;
  VwLocalUp(source.Handle(), &chr, nullptr);
  EXPECT_EQ(chr, 0u);
  VwSetSoRtn(1, nullptr, nullptr);
  VwSetUser(1, 2, nullptr);
  VwGetData(block.data(), nullptr);
  VwSetData(block.data(), nullptr);
  EXPECT_EQ(VwStreamOpen(0, 1151, 0, &info, nullptr), 0u);
  EXPECT_EQ(VwStreamSection(0, nullptr), 0u);
  EXPECT_EQ(VwStreamRead(0, nullptr), 0u);
  VwStreamClose(0, nullptr);
  VwFreeProc(nullptr);
  EXPECT_EQ(source.reads + source.seeks + source.tells, 0u);
}

TEST(Null, HandlesReadAsEmptyDocuments) {
  VwStreamPos position{0xCAFE, 0xBEEF};
  EXPECT_EQ(VwStreamTell(0, &position), 0);
  EXPECT_EQ(position.offset, 0u);
  EXPECT_EQ(position.first, 0xCAFEu);
  EXPECT_EQ(VwStreamSeek(0, &position), -1);
  VwHandle block = 7;
  VwLocalDown(0, &block);
  EXPECT_EQ(block, 0u);

  BlockSource source("");
  VwHandle blockless = 0;
  WmlProc *instance = VwAllocProc();
  VwLocalUp(0, &blockless, instance);
  VwFreeProc(instance);
  for (const VwHandle chr : {VwHandle{0}, blockless}) {
    Host host;
    Session session(source, host);
    VwFileInfo info;
    VwStreamOpen(chr, 1151, 0, &info, session.Instance());
    VwStreamSection(chr, session.Instance());
    const std::size_t before = host.Text().size();
    host.checker.BeginRead();
    VwStreamRead(chr, session.Instance());
    EXPECT_EQ(host.Text().substr(before),
              "SOSetCharSize 24\nSOSetProperty layout ordinary\nSOSelectFontNumber 1\n"
              "SOSwitchCharset unicode\nSOEmitBreak document\n");
    EXPECT_EQ(VwStreamSeek(chr, &position), -1);
  }
  VwLocalDown(blockless, &block);
  EXPECT_EQ(block, 0u);
}

TEST(WrongState, ReadsAsNothing) {
  BlockSource source("<wml><card>x");
  Host host;
  Session session(source, host);
  const auto expectNothing = [&] {
    const std::uint64_t before = host.calls;
    session.Section();
    session.Read();
    EXPECT_EQ(host.calls, before);
    EXPECT_EQ(source.reads, 0u);
  };
  expectNothing();  // not opened yet
  session.Open();
  VwStreamClose(session.Chr(), session.Instance());
  expectNothing();
  VwStreamClose(session.Chr(), session.Instance());
}

TEST(WrongState, StepsThatAreLeftOutDoNoHarm) {
  HeapProbe heap;
  WmlProc *instance = VwAllocProc();
  VwFileInfo info;
  VwStreamOpen(0, 1151, 0, &info, instance);  // not attached: all slots are empty
  VwStreamSection(0, instance);
  VwStreamRead(0, instance);
  VwFreeProc(instance);  // not closed
  EXPECT_EQ(heap.blocks, 0);
}

TEST(Stubs, DoNothing) {
  VwStreamReadRecord();
  VwDoSpecial();
  VwGetSectionData();
  VwSetSectionData();
  EXPECT_EQ(SODummy(), 0u);
}

}  // namespace
}  // namespace vs_wml::test
