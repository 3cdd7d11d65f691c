// Save blocks that no stream has written: whatever their bytes say, a read makes sense of
// what is in range and takes the rest for nothing.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cstring>
#include <span>
#include <vector>

#include "filter/ground/instance.h"
#include "tests/support/session.h"

namespace vs_wml::test {
namespace {

struct Forgery {
  const char *what;
  const char *behind;  ///< what follows the stop
  void (*change)(WmlSave &save);
  const char *calls;
};

TagStackElem &Top(WmlSave &save) {
  return save.tagStack[save.tagStackTop];
}

/// What a read calls that goes on at the first stop behind `begin` with a changed save block,
/// without the style and the character set that it tells first.
std::string ReadOn(const std::string &begin, const Forgery &forgery) {
  const std::string document = begin + forgery.behind;
  BlockSource source(document);
  Host host;
  bool stops = true;
  host.answerBreak = [&stops](std::uint32_t) { return stops ? SO_STOP : 0; };
  Session session(source, host);
  session.Open();
  session.Section();
  EXPECT_FALSE(session.Read());
  stops = false;
  SavedState state = session.Save();
  EXPECT_EQ(state.position, begin.size());
  WmlSave save;
  std::memcpy(&save, state.block.data(), sizeof save);
  forgery.change(save);
  std::memcpy(state.block.data(), &save, sizeof save);
  session.Restore(state);
  const std::size_t before = host.Text().size();
  EXPECT_TRUE(session.Read());
  return host.Text().substr(before);
}

void ExpectCalls(const std::string &begin, std::span<const Forgery> forgeries) {
  for (const Forgery &forgery : forgeries) {
    EXPECT_EQ(ReadOn(begin, forgery), std::string(forgery.calls) + "SOEmitBreak document\n")
        << forgery.what;
  }
}

// On the stack are the base element, `wml`, `card` and `b`.
TEST(SaveBlock, OutOfRangeInTextIsTakenForNothing) {
  const Forgery forgeries[] = {
      {"nothing changed", "x</b>y", [](WmlSave &) {},
       "SOEmitChar \"x\"\nSOSetProperty bold off\nSOEmitChar \"y\"\n"},
      {"`<>` opens an element of no tag, which `</>` does not close", "<>x</>y",
       [](WmlSave &save) { save.lastBeginTagId = 0xE0 + TAG_BR; },
       "SOEmitChar \"xy\"\nSOSetProperty bold off\n"},
      {"`<>` repeats the low byte of the tag", "<>x",
       [](WmlSave &save) { save.lastBeginTagId = 0x700 + TAG_BR; },
       "SOEmitBreak paragraph\nSOEmitChar \"x\"\nSOSetProperty bold off\n"},
      {"an open element of no tag has no end tag", "x</>y</b>z",
       [](WmlSave &save) { Top(save).tagId = 99; }, "SOEmitChar \"xyz\"\nSOSetProperty bold off\n"},
      {"and closes with what is below it", "x</card>y",
       [](WmlSave &save) { Top(save).tagId = 255; }, "SOEmitChar \"x\"\nSOSetProperty bold off\n"},
      {"a style that is not stored: whole styles behind it, with a break", "x<i>y</i>z",
       [](WmlSave &save) { Top(save).styleIndex = 500; },
       "SOEmitChar \"x\"\nSOSetProperty italic on\nSOSetCharSize 24\n"
       "SOSetProperty layout ordinary\nSOSelectFontNumber 1\nSOEmitBreak paragraph\n"
       "SOEmitChar \"yz\"\nSOSetCharSize 24\nSOSetProperty layout ordinary\n"
       "SOSelectFontNumber 1\nSOEmitBreak paragraph\n"},
      {"a style that is stored later", "<u>x</u><i>y<u>z",
       [](WmlSave &save) { Top(save).styleIndex = 3; },
       "SOSetProperty underline on\nSOSetCharSize 24\nSOSetProperty layout ordinary\n"
       "SOSelectFontNumber 1\nSOEmitChar \"xy\"\nSOSetProperty underline on\nSOEmitChar \"z\"\n"
       "SOSetProperty underline off\nSOSetProperty italic off\n"},
      {"an alignment stops below a style that is not stored", "<p align='right'>x",
       [](WmlSave &save) { save.tagStack[2].styleIndex = DERIVED_FROM_COUNT; },
       "SOSetProperty alignment right\nSOSetProperty alignment-done\nSOEmitChar \"x\"\n"
       "SOSetCharSize 24\nSOSetProperty layout ordinary\nSOSelectFontNumber 1\n"
       "SOEmitBreak paragraph\n"},
      {"a stack beyond its end is empty", "x</b>y", [](WmlSave &save) { save.tagStackTop = 40; },
       "SOEmitChar \"xy\"\n"},
      {"and so is one before its beginning", "x<i>y</i>",
       [](WmlSave &save) { save.tagStackTop = -2; },
       "SOEmitChar \"x\"\nSOSetProperty italic on\nSOEmitChar \"y\"\nSOSetProperty italic off\n"},
      {"the last place of the stack, and none behind it", "<i>x<u>y</u>z</i>",
       [](WmlSave &save) {
         for (; save.tagStackTop < TAG_STACK_SIZE - 2; ++save.tagStackTop) {
           save.tagStack[save.tagStackTop + 1] = Top(save);
         }
       },
       "SOSetProperty italic on\nSOEmitChar \"xyz\"\nSOSetProperty italic off\n"
       "SOSetProperty bold off\n"},
      {"`/>` gives the element's flags, of which a character comes first", "x/>y",
       [](WmlSave &save) { Top(save).itemFlags = 0xFF; },
       "SOEmitChar \"xy\"\nSOSetProperty bold off\n"},
      {"a link that was never opened", "x</a>y</card>",
       [](WmlSave &save) {
         save.modeFlags |= MODE_IN_ANCHOR;
         Top(save).tagId = TAG_A;
       },
       "SOEmitChar \"x\"\nSOSetProperty bold off\nSOSetTextColor 0x000000\n"
       "SOSetProperty underline off\nSOCloseLink 0\nSOEmitChar \"y\"\n"},
      {"a table that is not there", "<tr><td>x</td></tr></table>y",
       [](WmlSave &save) {
         save.tableIndex = 0;
         save.modeFlags |= MODE_IN_TABLE | MODE_IN_CELL;
       },
       "SOEmitChar \"xy\"\nSOSetProperty bold off\n"},
      {"the first of two alignments", "x</table>",
       [](WmlSave &save) {
         save.paraAlign = 0xFF00 | PARA_ALIGN_CENTER | PARA_ALIGN_RIGHT;
         Top(save).tagId = TAG_TABLE;
       },
       "SOEmitChar \"x\"\nSOSetProperty bold off\nSOEmitBreak cell\n"
       "SOSetProperty alignment right\nSOSetProperty alignment-done\n"},
      {"no alignment", "x</table>",
       [](WmlSave &save) {
         save.paraAlign = 0xFF00;
         Top(save).tagId = TAG_TABLE;
       },
       "SOEmitChar \"x\"\nSOSetProperty bold off\nSOEmitBreak cell\n"},
      {"a character set that is none: bytes as they are, as Unicode", "\x81\x93&eacute;",
       [](WmlSave &save) { save.curCharset = 0x6ABC; },
       "SOEmitChar \"\\{81}\\{93}\\{E9}\"\nSOSetProperty bold off\n"},
      {"a shift to a character set that is none", "\x0e\x93",
       [](WmlSave &save) { save.g1Charset = 0xAFFF; },
       "SOSwitchCharset unicode\nSOEmitChar \"\\{93}\"\nSOSetProperty bold off\n"},
      {"a single shift and a reset that wait", "x<br/>y",
       [](WmlSave &save) { save.charsetState = 0xFFFF; },
       "SOEmitChar \"x\"\nSOSwitchCharset unicode\nSOEmitBreak paragraph\nSOEmitChar \"y\"\n"
       "SOSetProperty bold off\n"},
      {"a style that is not stored: a table is measured in the base style",
       "<table columns=1><td>x</table>", [](WmlSave &save) { Top(save).styleIndex = 500; },
       "SOEmitBreak paragraph\nSOSetProperty alignment left\nSOOpenTable\n"
       "SOSetCharSize 24\nSOSetProperty layout ordinary\nSOSelectFontNumber 1\n"
       "SOEmitChar \"x\"\nSOEmitBreak cell\n"
       "SODescribeRow columns=1 align=left inset=15\n"
       "SODescribeCell width=184 shade=0xFFFFFF table=0xFFFFFF sides=15/0x000000\n"
       "SOEmitBreak row\nSOCloseTable\nSOEmitBreak paragraph\n"
       "SOSetProperty alignment left\nSOSetProperty alignment-done\n"
       "SOSetCharSize 24\nSOSetProperty layout ordinary\nSOSelectFontNumber 1\n"},
      {"a background shows in cells that did not begin, and inverted in borders",
       "<table columns=2><td>x<td>y<tr><td>z</table>",
       [](WmlSave &save) { save.backgroundColor = 0x112233; },
       "SOEmitBreak paragraph\nSOSetProperty alignment left\nSOOpenTable\n"
       "SOEmitChar \"x\"\nSOEmitBreak cell\nSOEmitChar \"y\"\nSOEmitBreak cell\n"
       "SODescribeRow columns=2 align=left inset=15\n"
       "SODescribeCell width=184 shade=0xFFFFFF table=0x112233 sides=15/0xEEDDCC\n"
       "SODescribeCell width=168 shade=0xFFFFFF table=0x112233 sides=15/0xEEDDCC\n"
       "SOEmitBreak row\nSOEmitChar \"z\"\nSOEmitBreak cell\nSOEmitBreak cell\n"
       "SODescribeRow columns=2 align=left inset=15\n"
       "SODescribeCell width=184 shade=0xFFFFFF table=0x112233 sides=15/0xEEDDCC\n"
       "SODescribeCell width=168 shade=0x112233 table=0x112233 sides=15/0xEEDDCC\n"
       "SOEmitBreak row\nSOCloseTable\nSOEmitBreak paragraph\n"
       "SOSetProperty alignment left\nSOSetProperty alignment-done\nSOSetProperty bold off\n"},
      {"a single shift that waits for longer than a reset", "<br/>x",
       [](WmlSave &save) { save.charsetState = 0xFFFF; },
       "SOEmitBreak paragraph\nSOSwitchCharset unicode\nSOEmitChar \"x\"\n"
       "SOSwitchCharset unicode\nSOSetProperty bold off\n"},
      {"a mode that no element has: tags are text, of which the '<' is lost", "x<br/>y\tz",
       [](WmlSave &save) { save.modeFlags |= MODE_LITERAL; },
       "SOEmitChar \"xbr>y\"\nSOEmitControlCode tab\nSOEmitChar \"z\"\n"
       "SOSetProperty bold off\n"},
  };
  ExpectCalls("<wml><card><b>a<br/>", forgeries);
}

constexpr char kRowAndEnd[] =
    "SODescribeRow columns=2 align=left inset=15\n"
    "SODescribeCell width=184 shade=0xFFFFFF table=0xFFFFFF sides=15/0x000000\n"
    "SODescribeCell width=0 shade=0xFFFFFF table=0xFFFFFF sides=15/0x000000\n"
    "SOEmitBreak row\nSOCloseTable\nSOEmitBreak paragraph\n"
    "SOSetProperty alignment left\nSOSetProperty alignment-done\n";
const std::string kCellsAndEnd =
    std::string("SOEmitChar \"x\"\nSOEmitBreak cell\nSOEmitBreak cell\n") + kRowAndEnd;

// The table is open, and none of its rows.
TEST(SaveBlock, OutOfRangeInTablesIsTakenForNothing) {
  const Forgery forgeries[] = {
      {"nothing changed", "<tr><td>x</table>", [](WmlSave &) {}, kCellsAndEnd.c_str()},
      {"more cells than columns: none begins, none is filled", "<tr><td>x</table>",
       [](WmlSave &save) { save.cellIndex = 5; }, kRowAndEnd},
      {"as many rows as can be counted", "<tr><td>x</table>",
       [](WmlSave &save) { save.tableRow = 0xFFFF; }, kCellsAndEnd.c_str()},
      {"a table that is not there", "<tr><td>x</table>y",
       [](WmlSave &save) { save.tableIndex = 1; },
       "SOEmitChar \"x\"\nSOEmitBreak cell\nSOSetProperty alignment left\n"
       "SOSetProperty alignment-done\nSOEmitChar \"y\"\n"},
      {"a cell outside every table, and none in the next", "x<td>y</td></table><table columns=1>z",
       [](WmlSave &save) {
         save.modeFlags &= ~MODE_IN_TABLE;
         save.modeFlags |= MODE_IN_CELL;
       },
       "SOEmitChar \"xy\"\nSOEmitBreak cell\nSOSetProperty alignment left\n"
       "SOSetProperty alignment-done\nSOEmitBreak paragraph\nSOSetProperty alignment left\n"
       "SOOpenTable\nSOEmitBreak cell\nSOEmitBreak cell\n"
       "SODescribeRow columns=1 align=left inset=15\n"
       "SODescribeCell width=0 shade=0xFFFFFF table=0xFFFFFF sides=15/0x000000\n"
       "SOEmitBreak row\nSOCloseTable\nSOEmitBreak paragraph\n"
       "SOSetProperty alignment left\nSOSetProperty alignment-done\n"},
  };
  ExpectCalls("<wml><card><table columns='2'>", forgeries);
}

// The set that a shift returns to is the one declared last, wherever the stream stands.
TEST(SaveBlock, DoesNotHoldTheDeclaredCharset) {
  BlockSource source(
      "<wml><card>a<br/>\x0F"
      "b<meta http-equiv=content-type content='charset=big5'>");
  Host host;
  bool stops = true;
  host.answerBreak = [&stops](std::uint32_t) { return stops ? SO_STOP : 0; };
  Session session(source, host);
  session.Open();
  EXPECT_FALSE(session.Read());
  stops = false;
  const SavedState state = session.Save();
  for (const char *charset : {"unicode", "big5"}) {
    const std::size_t before = host.Text().size();
    EXPECT_TRUE(session.Read());
    EXPECT_TRUE(host.Text().substr(before).starts_with(std::string("SOSwitchCharset ") + charset +
                                                       "\nSOEmitChar \"b\"\n"));
    session.Restore(state);
  }
}

// A host that jumps about in a document finds each table that it has read measured.
TEST(SaveBlock, TablesAreMeasuredOnceInWhateverOrder) {
  std::string document = "<wml><card>a<br/>";
  std::vector<std::uint32_t> begins;
  for (const char *cells : {"x<td>wide", "wider<td>y", "z<td>widest"}) {
    begins.push_back(static_cast<std::uint32_t>(document.size()));
    document += std::string("<table columns=2><tr><td>") + cells + "</table>";
  }
  BlockSource source(document);
  Host host;
  bool stops = true;
  host.answerBreak = [&stops](std::uint32_t) { return stops ? SO_STOP : 0; };
  Session session(source, host);
  session.Open();
  session.Section();
  ASSERT_FALSE(session.Read());
  stops = false;
  SavedState state = session.Save();
  std::string calls[3];
  for (const std::size_t table : {2U, 1U, 2U, 0U, 1U, 2U, 0U}) {
    state.position = begins[table];
    session.Restore(state);
    const std::size_t before = host.Text().size();
    EXPECT_TRUE(session.Read());
    const std::string told = host.Text().substr(before);
    if (calls[table].empty()) calls[table] = told;
    EXPECT_EQ(told, calls[table]);
  }
  EXPECT_TRUE(calls[0].ends_with(calls[1]) && calls[1].ends_with(calls[2]));
  EXPECT_EQ(session.Instance()->tableArray.count, 3);
}

}  // namespace
}  // namespace vs_wml::test
