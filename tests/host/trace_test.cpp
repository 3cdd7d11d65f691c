// SPDX-License-Identifier: MIT
//
// Equal traces mean equal calls: whatever differs in a call is seen in its line.
#include "host/writers/trace.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <set>
#include <sstream>

namespace vs_wml {
namespace {

std::string Traced(const std::function<void(Trace &)> &call) {
  std::ostringstream out;
  Trace trace(out);
  call(trace);
  trace.Flush();
  return out.str();
}

constexpr std::uint16_t kEmpty[] = {0};
constexpr std::uint32_t kOtherWords[] = {0, 1, 2, 3, 4, 0x7FFFFFFE, 0xFFFFFFFF};

// Puts other values into each word of a record, one at a time; no two lines are equal.
template <typename Record>
void ExpectEachWordToShow(const Record &usual, const std::function<void(Trace &, Record &)> &call) {
  std::set<std::string> lines;
  std::size_t records = 0;
  const auto add = [&](Record record) {
    lines.insert(Traced([&](Trace &trace) { call(trace, record); }));
    ++records;
  };
  add(usual);
  for (std::size_t at = 0; at < sizeof(Record); at += sizeof(std::uint32_t)) {
    std::uint32_t word;
    std::memcpy(&word, reinterpret_cast<const char *>(&usual) + at, sizeof word);
    for (const std::uint32_t other : kOtherWords) {
      if (other == word) continue;
      Record record = usual;
      std::memcpy(reinterpret_cast<char *>(&record) + at, &other, sizeof other);
      add(record);
    }
  }
  EXPECT_EQ(lines.size(), records);
}

template <std::size_t count>
struct Words {
  std::uint32_t of[count];
};

TEST(Trace, ShowsEachWordOfARecord) {
  GraphicRecord graphic{};
  graphic.size = sizeof graphic;
  graphic.count = 1;
  graphic.reserved2 = graphic.alternative = 0xFFFFFFFF;
  graphic.sizeMode = SO_GRAPHIC_UNSIZED;
  const auto insert = [](Trace &trace, GraphicRecord &record) { trace.InsertGraphic(record); };
  ExpectEachWordToShow<GraphicRecord>(graphic, insert);
  graphic.flags = SO_GRAPHIC_HAS_ALT;
  graphic.sizeMode = SO_GRAPHIC_SIZED;
  graphic.left.hidden = graphic.right.hidden = graphic.top.hidden = graphic.bottom.hidden = 1;
  ExpectEachWordToShow<GraphicRecord>(graphic, insert);

  CellDescription cell{};
  cell.size = sizeof cell;
  cell.constant1 = 13;
  cell.constant2 = 255;
  ExpectEachWordToShow<CellDescription>(
      cell, [](Trace &trace, CellDescription &record) { trace.DescribeCell(record); });

  RowDescription row{};
  row.one = 1;
  row.alignment = SO_TABLE_LEFT;
  ExpectEachWordToShow<RowDescription>(
      row, [](Trace &trace, RowDescription &record) { trace.DescribeRow(record); });

  for (const std::uint32_t flags : {0U, SO_LINK_HAS_TITLE}) {
    struct Call {
      std::uint32_t code;
      std::uint32_t number;
      VwLinkRecord link;
    };
    ExpectEachWordToShow<Call>({SO_LINK_CODE, 7, {flags, 5}}, [](Trace &trace, Call &call) {
      trace.OpenLink(call.code, call.number, call.link);
    });
  }
}

TEST(Trace, ShowsEachArgument) {
  for (const std::uint32_t code :
       {PROP_CHAR_ATTRIBUTE, PROP_ALIGNMENT, PROP_ALIGNMENT_DONE, PROP_SECTION_END, PROP_LAYOUT,
        PROP_REFERENCE_TARGET, PROP_REFERENCE_END, 1000U}) {
    ExpectEachWordToShow<Words<4>>({{code, 5, 6, 7}}, [](Trace &trace, Words<4> &words) {
      trace.SetProperty(words.of[0], words.of[1], words.of[2], words.of[3]);
    });
  }
  ExpectEachWordToShow<Words<3>>({}, [](Trace &trace, Words<3> &words) {
    trace.DeclareSection(words.of[0], words.of[1], words.of[2]);
  });
  using Two = Words<2>;
  const std::function<void(Trace &, Two &)> calls[] = {
      [](Trace &trace, Two &words) { trace.EmitBreak(words.of[0], words.of[1]); },
      [](Trace &trace, Two &words) { trace.CloseLink(words.of[0], words.of[1]); },
      [](Trace &trace, Two &words) { trace.SetTextColor(words.of[0], words.of[1]); },
      [](Trace &trace, Two &words) { trace.AddFontListEntry(words.of[0], words.of[1], "n"); },
      [](Trace &trace, Two &words) { trace.StoreString(kEmpty, words.of[0], 0, words.of[1]); },
  };
  for (const auto &call : calls) ExpectEachWordToShow<Two>({{8, 9}}, call);
  using One = Words<1>;
  const std::function<void(Trace &, One &)> short_calls[] = {
      [](Trace &trace, One &word) { trace.EmitControlCode(word.of[0]); },
      [](Trace &trace, One &word) { trace.SetCharSize(word.of[0]); },
      [](Trace &trace, One &word) { trace.AbortStream(word.of[0]); },
      [](Trace &trace, One &word) { trace.SelectFontNumber(word.of[0]); },
      [](Trace &trace, One &word) { trace.SelectFontName(word.of[0], "n"); },
      [](Trace &trace, One &word) { trace.SwitchCharset(word.of[0]); },
      [](Trace &trace, One &word) { trace.OpenReference(word.of[0]); },
      [](Trace &trace, One &word) { trace.EmitChar(word.of[0]); },
  };
  for (const auto &call : short_calls) ExpectEachWordToShow<One>({{5}}, call);
}

TEST(Trace, EscapesCharacters) {
  const std::uint16_t units[] = {'a', '"', '\\', 0x1F, ' ', '~', 0x7F, 0xE9, 0x201C, 0};
  EXPECT_EQ(Traced([&](Trace &trace) { trace.StoreString(units, SO_STRING_CODE, 9, 1); }),
            "SOStoreString \"a\\{22}\\{5C}\\{1F} ~\\{7F}\\{E9}\\{201C}\" -> 1\n");
  EXPECT_EQ(Traced([&](Trace &trace) { trace.StoreString(units, SO_STRING_CODE, 1, 1); }),
            "SOStoreString \"a\" -> 1 terminator!=0x22\n");
  EXPECT_EQ(Traced([](Trace &trace) {
              for (const char c : std::string("ab\"\\~\x7F")) {
                trace.EmitChar(static_cast<unsigned char>(c));
              }
              trace.EmitChar(0x201C);
              trace.OpenTable();
              trace.EmitChar('c');
              trace.Note("note");
              trace.EmitChar('d');
            }),
            "SOEmitChar \"ab\\{22}\\{5C}~\\{7F}\\{201C}\"\nSOOpenTable\nSOEmitChar \"c\"\nnote\n"
            "SOEmitChar \"d\"\n");
  const std::string text(80, 'x');
  EXPECT_EQ(Traced([](Trace &trace) {
              for (int i = 0; i < 81; ++i) trace.EmitChar('x');
            }),
            "SOEmitChar \"" + text + "\"\nSOEmitChar \"x\"\n");
}

}  // namespace
}  // namespace vs_wml
