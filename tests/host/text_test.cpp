// SPDX-License-Identifier: MIT
//
// Widths, lines and targets.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "host/text/utf8.h"
#include "host/writers/target.h"
#include "host/writers/text_layout.h"

namespace vs_wml {
namespace {

TEST(Utf8, IllFormedSequencesAreFoundAndReplaced) {
  const struct {
    std::string text;
    std::string repaired;
  } cases[] = {
      {"ascii é 日 😀", "ascii é 日 😀"},
      {"\x80", "\xEF\xBF\xBD"},
      {"\xC0\xAF", "\xEF\xBF\xBD\xEF\xBF\xBD"},                    // overlong
      {"\xE0\x80\x80x", "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBDx"},  // overlong
      {"\xF4\x90\x80\x80", "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"},
      {"a\xF0\x9F\x98", "a\xEF\xBF\xBD"},  // cut short: one for the longest start
      {"\xE6\x97z", "\xEF\xBF\xBDz"},
  };
  for (const auto &item : cases) {
    EXPECT_EQ(RepairUtf8(item.text), item.repaired) << item.text;
    EXPECT_EQ(IsValidUtf8(item.text), item.text == item.repaired) << item.text;
  }
}

// Every lead byte with every byte behind it, across the words that are looked at at once.
TEST(Utf8, ValidIsWhatHasNothingIllFormed) {
  for (unsigned pair = 0; pair < 0x10000; ++pair) {
    std::string text(pair % 10, 'a');
    text += static_cast<char>(pair >> 8U);
    text += static_cast<char>(pair);
    for (int following = 0; following <= 3; ++following) {
      EXPECT_EQ(IsValidUtf8(text), FindIllFormedUtf8(text) == text.size())
          << std::hex << pair << ' ' << following;
      text += '\x80';
    }
  }
}

TEST(Utf8, PartsOfATextHaveWholeEndsOrNot) {
  const std::string text = "aé日😀é";
  for (std::size_t begin = 0; begin <= text.size(); ++begin) {
    for (std::size_t end = begin; end <= text.size(); ++end) {
      const std::string part = text.substr(begin, end - begin);
      EXPECT_EQ(HasWholeEnds(part), IsValidUtf8(part)) << begin << ' ' << end;
    }
  }
}

TEST(Utf8, TheAsciiPrefixEndsWhereItEnds) {
  for (std::size_t length = 0; length <= 20; ++length) {
    std::string text(length, 'a');
    EXPECT_EQ(AsciiPrefix(text), length);
    for (std::size_t at = 0; at < length; ++at) {
      text[at] = '\x80';
      EXPECT_EQ(AsciiPrefix(text), at) << length;
      text[at] = '\x7F';
    }
  }
}

TEST(TextLayout, ColumnsAreThoseOfATerminal) {
  EXPECT_EQ(ColumnWidth("abc"), 3U);
  EXPECT_EQ(ColumnWidth("日本"), 4U);
  EXPECT_EQ(ColumnWidth("ｱｲ"), 2U);
  EXPECT_EQ(ColumnWidth("e\xCC\x81"), 1U);
  EXPECT_EQ(ColumnWidth("😀"), 2U);
  EXPECT_EQ(ColumnWidth("Жя\u0483 Ωμ"), 5U);  // with a combining mark
  EXPECT_EQ(ColumnWidth("–’…€₩\u200B\u202A"), 5U);
  // The first and the last of ranges that are told apart without a look-up.
  const struct {
    const char *characters;
    std::size_t each;
  } ranges[] = {
      {"\u02FF\u0386\u0482\u048A\u052F\u2010\u2027\u20A0\u20BF\u303F\uA4D0\uD7B0", 1},
      {"\u3041\u3096\u30A0\u30A1\u30FF\u4E00\u9FFF\uAC00\uD7A3\uFF01\uFF60\u3000", 2},
      {"\u0300\u036F\u0483\u0489\u3099\u00AD\u200B\u20D0\u20F0\u202E\uFE0F", 0},
  };
  for (const auto &[characters, each] : ranges) {
    const std::string text = characters;
    for (std::size_t at = 0; at < text.size();) {
      const std::size_t start = at;
      EXPECT_EQ(NextWidth(text, at), each) << text.substr(start, at - start);
    }
  }
}

TEST(TextLayout, NarrowTextTakesAColumnForEachCharacter) {
  for (const char *text : {"", "abc", "größer", "Ωμ Жя", "’", "5 €"}) {
    EXPECT_TRUE(IsNarrow(text)) << text;
  }
  for (char32_t character = 0x80; character < 0x30000; ++character) {
    std::string text(character % 40, 'a');
    AppendUtf8(text, character);
    EXPECT_TRUE(!IsNarrow(text) || ColumnWidth(character) == 1) << text;
    EXPECT_EQ(IsNarrow(text), IsNarrow(text + "bcd")) << text;
  }
}

TEST(TextLayout, LinesBreakWhereWordsEnd) {
  const struct {
    const char *text;
    std::size_t width;
    LongWords longWords;
    std::vector<std::string> lines;
  } cases[] = {
      {"", 10, LongWords::kKeep, {""}},
      {"one two three", 7, LongWords::kKeep, {"one two", "three"}},
      {"one two three", 8, LongWords::kKeep, {"one two", "three"}},
      {"one  two", 4, LongWords::kKeep, {"one", "two"}},
      {"a incomprehensible b", 5, LongWords::kKeep, {"a", "incomprehensible", "b"}},
      {"a incomprehensible b", 5, LongWords::kBreak, {"a", "incom", "prehe", "nsibl", "e b"}},
      {"été à là", 5, LongWords::kKeep, {"été à", "là"}},
      {"é12345 789", 6, LongWords::kKeep, {"é12345", "789"}},
      {"abcde\u0301 é", 5, LongWords::kKeep, {"abcde\u0301", "é"}},
      {"–日本 語", 5, LongWords::kKeep, {"–日本", "語"}},
      {"日本語テスト", 6, LongWords::kKeep, {"日本語", "テスト"}},
      {"日本語。続", 6, LongWords::kKeep, {"日本", "語。続"}},  // no line begins with a full stop
      {"かなかな", 4, LongWords::kKeep, {"かな", "かな"}},
      {"a\nb c", 9, LongWords::kKeep, {"a", "b c"}},
      {"word ", 4, LongWords::kKeep, {"word"}},
  };
  for (const auto &item : cases) {
    const std::string text = item.text;
    std::vector<Line> lines;
    BreakLines(text, 0, text.size(), item.width, item.longWords, lines);
    std::vector<std::string> found;
    for (const Line &line : lines) {
      found.push_back(text.substr(line.begin, line.end - line.begin));
      EXPECT_EQ(line.columns, ColumnWidth(found.back())) << text;
    }
    EXPECT_EQ(found, item.lines) << text;
  }
}

// A word is gone over once, not once a line: this would take a minute.
TEST(TextLayout, LongWordsTakeTimeInProportion) {
  const std::string word(1000000, 'x');
  for (const TextKind kind : {TextKind::kAny, TextKind::kPlain}) {
    std::vector<Line> lines;
    BreakLines(word, 0, word.size(), 1, LongWords::kBreak, lines, kind);
    EXPECT_EQ(lines.size(), word.size());
  }
}

// The lines of a text whose characters take a column each, broken one character at a time.
std::vector<std::string> SlowLines(std::u32string text, std::size_t width, bool breaks) {
  const auto trimmed = [](std::u32string line) {
    line.resize(line.find_last_not_of(U' ') + 1);
    std::string bytes;
    for (const char32_t character : line) AppendUtf8(bytes, character);
    return bytes;
  };
  text.resize(text.find_last_not_of(U' ') + 1);
  std::vector<std::string> lines;
  while (text.size() > width) {
    std::size_t next = text.find_last_of(U' ', width - 1) + 1;
    if (text[width] == U' ' || (next == 0 && !breaks)) {
      next = text.find_first_not_of(U' ', text.find(U' ', width));
      if (text.find(U' ', width) == std::u32string::npos) next = text.size();
    } else if (next == 0) {
      next = width;
    }
    lines.push_back(trimmed(text.substr(0, next)));
    text.erase(0, next);
  }
  if (!text.empty() || lines.empty()) lines.push_back(trimmed(text));
  return lines;
}

std::vector<std::string> BrokenLines(const std::string &text, std::size_t width, bool breaks,
                                     TextKind kind = TextKind::kAny) {
  std::vector<Line> lines;
  BreakLines("<" + text + ">", 1, 1 + text.size(), width,
             breaks ? LongWords::kBreak : LongWords::kKeep, lines, kind);
  std::vector<std::string> found;
  for (const Line &line : lines) {
    found.push_back(text.substr(line.begin - 1, line.end - line.begin));
    EXPECT_EQ(line.columns, ColumnWidth(found.back())) << text;
  }
  return found;
}

std::string WithoutBlanks(std::string text) {
  std::erase(text, ' ');
  return text;
}

TEST(TextLayout, LinesAreThoseOfASlowBreaker) {
  std::mt19937 random(1);
  for (int i = 0; i < 1500; ++i) {
    const TextKind kind = i % 4 == 0 ? TextKind::kPlain : TextKind::kAny;
    std::u32string characters;
    std::string text;
    for (std::size_t left = random() % 40; left > 0; --left) {
      characters += U"abcdefgh    é’я"[random() % (i % 2 == 0 ? 12 : 15)];
      AppendUtf8(text, characters.back());
    }
    std::size_t widest = 0;
    for (std::size_t at = 0; at < characters.size(); ++at) {
      const std::size_t end = std::min(characters.find(U' ', at), characters.size());
      widest = std::max(widest, end - at);
      at = end;
    }
    EXPECT_EQ(WidestWord(text, kind), widest) << text;
    EXPECT_EQ(WidestWord("a\n" + text + "\n"), std::max<std::size_t>(widest, 1)) << text;
    for (std::size_t width = 1; width < 12; ++width) {
      for (const bool breaks : {false, true}) {
        EXPECT_EQ(BrokenLines(text, width, breaks, kind), SlowLines(characters, width, breaks))
            << '"' << text << "\" " << width << breaks;
      }
    }
  }
}

TEST(TextLayout, WideTextIsKeptWholeWithinItsWidth) {
  const char *const parts[] = {"a", "b ", " ", "日", "本", "。", "（", "é", "e\u0301", "ｱ", "😀"};
  std::mt19937 random(1);
  for (int i = 0; i < 400; ++i) {
    std::string text;
    for (std::size_t left = random() % 30; left > 0; --left) text += parts[random() % 11];
    EXPECT_LE(WidestWord(text), ColumnWidth(text));
    for (std::size_t width = 1; width < 9; ++width) {
      for (const bool breaks : {false, true}) {
        std::string all;
        for (const std::string &line : BrokenLines(text, width, breaks)) {
          all += line;
          EXPECT_FALSE(line.ends_with(' ')) << text;
          EXPECT_TRUE(IsValidUtf8(line)) << text;
          if (breaks) {
            EXPECT_LE(ColumnWidth(line), std::max<std::size_t>(width, 2)) << text;
          }
        }
        EXPECT_EQ(WithoutBlanks(all), WithoutBlanks(text));
      }
    }
  }
}

TEST(Target, OnlySchemesThatRunNothingAreFollowed) {
  for (const char *target :
       {"", "a.wml", "#card", "../x?y=z:1", "http://x/", "HTTPS://x/", "mailto:a@b", "tel:1",
        "ftp:x", "sms:1", "smsto:1", "mms:x", "rtsp://x", "wtai://wp/mc;1", "a\\b:c", "//host/x",
        "a/b:c", "a?javascript:x", "a#javascript:x"}) {
    EXPECT_TRUE(IsSafeTarget(target)) << target;
  }
  for (const char *target : {"javascript:alert(1)", "JavaScript:x", " java\tscript:x",
                             "\x01javascript:x", "data:text/html,x", "vbscript:x",
                             "file:///etc/passwd", "blob:x", "java\nscript:x", ":x", "x y:z"}) {
    EXPECT_FALSE(IsSafeTarget(target)) << target;
  }
  for (const char *source : {"pics/a.wbmp", "http://x", "HttpS:x", "", "a/b:c"}) {
    EXPECT_TRUE(IsSafeSource(source)) << source;
  }
  for (const char *source : {"file:///a", "ftp:x", "mailto:x", "java script:x", "ht\xC3\xA5:x"}) {
    EXPECT_FALSE(IsSafeSource(source)) << source;
  }
  EXPECT_FALSE(IsSafeSource("data:image/svg+xml,x"));
  EXPECT_EQ(BaseName("http://h/a/b.wbmp?x=/y#z"), "b.wbmp");
}

TEST(Target, IsShownWithWhatIsSentThere) {
  const auto text = [](TaskKind kind, const std::string &target, const std::string &method,
                       const std::vector<NameValue> &fields) {
    Action action;
    action.task.kind = kind;
    action.task.details = std::make_unique<TaskDetails>();
    action.task.details->method = method;
    action.task.details->postFields = fields;
    Link link;
    link.target = target;
    link.action = &action;
    return LinkTargetText(link);
  };
  EXPECT_EQ(text(TaskKind::kGo, "u", "get", {}), "u");
  EXPECT_EQ(text(TaskKind::kGo, "u", "post", {}), "POST u");
  const std::vector<NameValue> fields = {{Value("a"), Value("b")}, {Value("c"), Value("")}};
  EXPECT_EQ(text(TaskKind::kGo, "u", "post", fields), "POST u (a=b, c=)");
  EXPECT_EQ(text(TaskKind::kGo, "u", "", {fields[0]}), "u (a=b)");
  EXPECT_EQ(text(TaskKind::kGo, "#card", "post", fields), "POST #card (a=b, c=)");
  EXPECT_EQ(text(TaskKind::kPrevious, "", "", {}), "(back)");
  EXPECT_EQ(text(TaskKind::kRefresh, "", "", {}), "(refresh)");
  EXPECT_EQ(text(TaskKind::kNothing, "", "", {}), "(nothing)");
  EXPECT_EQ(text(TaskKind::kUnset, "", "", {}), "(nothing)");
  Link plain;
  plain.target = "#x";
  EXPECT_EQ(LinkTargetText(plain), "#x");
}

TEST(Target, HasALastPart) {
  const struct {
    const char *target;
    const char *name;
  } cases[] = {{"a", "a"},  {"a/b", "b"},  {"a/b/", "b"},     {"a//", "a"},     {"/", ""},
               {"", ""},    {"?a/b", ""},  {"a#b/c", "a"},    {"a/b?c#d", "b"}, {"a/?b", "a"},
               {"/a", "a"}, {"a/b#", "b"}, {"http://h", "h"}, {"a\\b", "a\\b"}};
  for (const auto &item : cases) EXPECT_EQ(BaseName(item.target), item.name) << item.target;
  Image image;
  image.source = "a/b.wbmp?c";
  EXPECT_EQ(ImageLabel(image), "b.wbmp");
  image.alternative = "B";
  EXPECT_EQ(ImageLabel(image), "B");
}

}  // namespace
}  // namespace vs_wml
