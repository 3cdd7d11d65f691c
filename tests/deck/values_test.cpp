// SPDX-License-Identifier: MIT
//
// Variables, the values of attributes, and what a document is read through for.
#include "host/deck/value_reader.h"

#include <gtest/gtest.h>

namespace vs_wml {
namespace {

// "name:conversion:length" of the reference at the start; conversions d, e, u and v.
std::string Read(std::string_view text) {
  const VariableReference reference = ReadVariable(text);
  return std::string(reference.name) + ':' +
         "deuv"[static_cast<std::size_t>(reference.conversion)] + ':' +
         std::to_string(reference.length);
}

TEST(Variables, AreReferredTo) {
  const struct {
    const char *text;
    const char *reference;
  } cases[] = {
      {"$a", "a:d:2"},
      {"$a_1-", "a_1:d:4"},
      {"$_", "_:d:2"},
      {"$A:e", "A:d:2"},
      {"$$", ":d:2"},
      {"$$a", ":d:2"},
      {"$", ":d:0"},
      {"$1", ":d:0"},
      {"$ a", ":d:0"},
      {"$(a)b", "a:d:4"},
      {"$(a1)", "a1:d:5"},
      {"$(a:e)", "a:e:6"},
      {"$(a:E)", "a:e:6"},
      {"$(a:escape)", "a:e:11"},
      {"$(a:u)", "a:u:6"},
      {"$(a:UNESC)x", "a:u:10"},
      {"$(a:n)", "a:v:6"},
      {"$(a:noesc)", "a:v:10"},
      {"$(a:escapes)", ":d:0"},
      {"$(a:)", ":d:0"},
      {"$(a:x)", ":d:0"},
      {"$(a:e", ":d:0"},
      {"$(a", ":d:0"},
      {"$(a b)", ":d:0"},
      {"$(a.b)", "a.b:d:6"},
      {"$a.b", "a:d:2"},
      {"$()", ":d:0"},
      {"$(1)", ":d:0"},
      {"$(", ":d:0"},
  };
  for (const auto &item : cases) EXPECT_EQ(Read(item.text), item.reference) << item.text;
}

TEST(Variables, ArePercentEncodedAndDecoded) {
  EXPECT_EQ(PercentEncode("aZ09-._~ /%\xC3\xA5\n"), "aZ09-._~%20%2F%25%C3%A5%0A");
  const struct {
    const char *text;
    const char *decoded;
  } cases[] = {
      {"", ""},         {"a%20b", "a b"},     {"%41", "A"},   {"%4a%4A", "JJ"},
      {"%c3%A5", "å"},  {"%", "%"},           {"%4", "%4"},   {"a%4", "a%4"},
      {"%4g", "%4g"},   {"%g4", "%g4"},       {"%%41", "%A"}, {"%2541", "%41"},
      {"%c3", "%c3"},   {"%41%ff", "%41%ff"}, {"%0A", "%0A"}, {"%C2%9B", "%C2%9B"},
      {"%00x", "%00x"}, {"%7F", "%7F"},       {"%20", " "},   {"%C2%A0", "\u00A0"},
  };
  for (const auto &item : cases) EXPECT_EQ(PercentDecode(item.text), item.decoded) << item.text;
}

TEST(Variables, AreKnownWhereTheCardSetsThemToTheirOneValue) {
  const std::string longest(Variables::kLongestValue, 'x');
  const std::string longer = longest + 'x';
  Variables variables({{"given", "g"}, {"empty", ""}, {"long", longest}, {"longer", longer}});
  const auto value = [&](std::string_view name, std::size_t card = 1) {
    const std::string *found = variables.Find(name, card);
    return found == nullptr ? "(unknown)" : *found;
  };
  EXPECT_EQ(value("given"), "g");
  EXPECT_EQ(value("given", 0), "g");
  EXPECT_EQ(value("empty"), "");
  EXPECT_EQ(value("long"), longest);
  EXPECT_EQ(value("longer"), "(unknown)");
  variables.Suggest("given", "other", 1);
  variables.Unsettle("given");
  EXPECT_EQ(value("given"), "g");
  variables.Suggest("a", "1", 0);
  EXPECT_EQ(value("a"), "(unknown)") << "on the way between cards";
  EXPECT_EQ(value("a", 0), "(unknown)");
  variables.Suggest("a", "1", 1);
  variables.Suggest("a", "", 2);
  variables.Suggest("a", "1", 3);
  EXPECT_EQ(value("a"), "1");
  EXPECT_EQ(value("a", 2), "(unknown)");
  EXPECT_EQ(value("a", 3), "1");
  variables.Suggest("a", "2", 0);
  EXPECT_EQ(value("a"), "(unknown)");
  variables.Suggest("a", "1", 4);
  EXPECT_EQ(value("a", 4), "(unknown)");
  variables.Suggest("b", longest, 1);
  EXPECT_EQ(value("b"), longest);
  variables.Unsettle("b");
  EXPECT_EQ(value("b"), "(unknown)");
  variables.Suggest("c", longer, 1);
  EXPECT_EQ(value("c"), "(unknown)");
  for (const char *name : {"", "1a", "a b", "a-"}) {
    variables.Suggest(name, "x", 1);
    EXPECT_EQ(value(name), "(unknown)") << name;
  }
}

// A replacement may add what is left; `{name}` is always affordable.
TEST(Variables, AreReplacedWithinABudget) {
  const Variables variables({{"a", "12345678"}, {"b", "x y"}});
  const auto replaced = [&](std::string_view text, std::size_t budget) {
    const auto [result, resolved] = variables.Substitute(text, Conversion::kEscape, 1, budget);
    return result + (resolved ? '|' : '?') + std::to_string(budget);
  };
  EXPECT_EQ(replaced("a$a$$b$", 100), "a12345678$b$|92");
  EXPECT_EQ(replaced("$b$(b:n)$(none)", 100), "x%20yx y{none}?86");
  EXPECT_EQ(replaced("$a", 4), "12345678|0");
  EXPECT_EQ(replaced("$a", 3), "{a}?0");
  EXPECT_EQ(replaced("$(a)", 2), "12345678|0");
  EXPECT_EQ(replaced("$(a)", 1), "{a}?0");
  EXPECT_EQ(replaced("$a$a", 12), "1234567812345678|0");
  EXPECT_EQ(replaced("$a$a", 11), "12345678{a}?0");
}

// What `read` gives for a value.
template <typename Read>
auto ValueOf(std::string_view raw, const Read &read) {
  DeckSurvey survey("<card><input name='x' value='a b'/>", {});
  TextArena texts;
  ValueReader values(survey, texts, 1000);
  values.EnterCard();
  return read(values, &raw);
}

TEST(Values, AreNumbersFlagsAndWords) {
  const auto number = [](std::string_view raw) { return ValueReader::Number(&raw); };
  EXPECT_EQ(number("12"), 12U);
  EXPECT_EQ(number(" 7 "), 7U);
  EXPECT_EQ(number("7px"), 7U);
  EXPECT_EQ(number("&#55;"), 7U);
  EXPECT_EQ(number("4294967295"), 4294967295U);
  EXPECT_EQ(ValueReader::Number(nullptr), 0U);
  for (const char *none : {"", "x7", "-7", "4294967296", "$x"}) EXPECT_EQ(number(none), 0U);
  for (const bool missing : {false, true}) {
    const auto flag = [missing](std::string_view raw) { return ValueReader::Flag(&raw, missing); };
    EXPECT_TRUE(flag("TRUE"));
    EXPECT_FALSE(flag("False"));
    EXPECT_EQ(ValueReader::Flag(nullptr, missing), missing);
    for (const char *none : {"", "1", "yes", "truest"}) EXPECT_EQ(flag(none), missing);
  }
  const auto word = [](const std::string &value) {
    const std::string document = "<b v=\"" + value + "\">";
    MarkupReader reader(document, nullptr);
    Token token;
    EXPECT_TRUE(reader.Next(token));
    return ValueReader::Word(token, "v");
  };
  EXPECT_EQ(word("20%"), " v=\"20%\"");
  EXPECT_EQ(word("LCR.1"), " v=\"LCR.1\"");
  EXPECT_EQ(word("abcdefghijklmnop"), " v=\"abcdefghijklmnop\"");
  for (const char *none : {"", "abcdefghijklmnopq", "a b", "a'", "&lt;", "$x", "a-b"}) {
    EXPECT_EQ(word(none), "") << none;
  }
}

TEST(Values, AreTextsAndTargets) {
  const struct {
    const char *value;
    const char *text;
    const char *target;
    const char *written;
    const char *variable = "";
  } cases[] = {
      {"a &amp; b", "a & b", "a & b", "a & b"},
      {" a\n", " a ", "a", " a "},
      {"a\r\nb&#9;c&#10;", "a  b c ", "abc", "a  b c "},
      {"$x", "a b", "a%20b", "$x", "x"},
      {"$(x)", "a b", "a%20b", "$(x)", "x"},
      {"$(x:e)", "a%20b", "a%20b", "$(x:e)", "x"},
      {"$(x:n)", "a b", "a b", "$(x:n)", "x"},
      {" $x ", " a b ", "a%20b", " $x "},
      {"$x$x", "a ba b", "a%20ba%20b", "$x$x"},
      {"$y", "{y}", "{y}", "$y", "y"},
      {"$$x", "$x", "$x", "$$x"},
      {"$$", "$", "$", "$$"},
      {"$", "$", "$", "$"},
      {"&#36;x", "a b", "a%20b", "$x", "x"},
      {"$(&#x78;)", "a b", "a%20b", "$(x)", "x"},
      {"", "", "", ""},
  };
  for (const auto &item : cases) {
    SCOPED_TRACE(item.value);
    ValueOf(item.value, [&](ValueReader &values, const std::string_view *raw) {
      const Value text = values.Text(raw);
      EXPECT_TRUE(text.IsGiven());
      EXPECT_EQ(text.shown, item.text);
      EXPECT_EQ(text.written, item.written);
      EXPECT_EQ(SoleVariable(text), item.variable);
      EXPECT_EQ(text.resolved, text.shown.find('{') == std::string_view::npos);
      EXPECT_EQ(values.Target(raw).shown, item.target);
      return 0;
    });
  }
  ValueOf("", [](ValueReader &values, const std::string_view *) {
    EXPECT_FALSE(values.Text(nullptr).IsGiven());
    EXPECT_FALSE(values.Target(nullptr).IsGiven());
    EXPECT_EQ(values.Plain(nullptr).data(), nullptr);
    return 0;
  });
}

TEST(Survey, CountsTheColumnsOfTables) {
  const struct {
    const char *document;
    std::vector<std::size_t> columns;  ///< of the first tables, and 0 behind them
  } cases[] = {
      {"", {0}},
      {"<table></table>", {0, 0}},
      {"<table><tr><td>a<td>b<tr><td>c</table><table><td>d</table>", {2, 1, 0}},
      {"<TABLE><TR><TD/><TH/></TABLE>", {2}},
      {"<table><td>a<td>b<td>c</table>", {3}},
      {"<table/><table><td>a</table>", {1, 0}},
      {"<td>a<table></table><td>b", {0}},
      {"<table><tr><td>a<table><tr><td>b<td>c<td>d</table><td>e</table>", {2, 0}},
      {"<table><tr><td>a<table></table><td>b<td>c<tr><td>d</table>", {3, 0}},
      {"</table><table><td>a</table>", {1}},
      {"<card><table><td>a<card><table><td>b<td>c", {1, 2, 0}},
  };
  for (const auto &item : cases) {
    DeckSurvey survey(item.document, {});
    for (std::size_t table = 0; table < item.columns.size(); ++table) {
      EXPECT_EQ(survey.TableColumns(table), item.columns[table]) << item.document << table;
    }
  }
  for (const std::size_t cells : {63U, 64U, 65U, 70000U}) {
    std::string document = "<table>";
    for (std::size_t i = 0; i < cells; ++i) document += "<td>";
    DeckSurvey survey(document, {});
    EXPECT_EQ(survey.TableColumns(0), std::min<std::size_t>(cells, 64));
  }
}

TEST(Survey, FindsCardsAndValues) {
  const auto hasCards = [](std::string_view document) {
    return DeckSurvey(document, {}).HasCards();
  };
  EXPECT_TRUE(hasCards("<wml><Card/>"));
  EXPECT_FALSE(hasCards("<wml></card><cards>&lt;card><!-- <card> -->"));
  DeckSurvey survey(
      "<template><input name='t' value='x'/></template><card>"
      "<onevent type='onenterforward'><refresh><setvar name='a' value='1'/></refresh></onevent>"
      "<input name='b' value='$a&amp;'/><setvar name='c' value='x'/>"
      "<onevent type='onenterbackward'><refresh><setvar name='d' value='x'/></refresh></onevent>"
      "<onevent type='onenterforward'><go href='#e'><setvar name='e' value='x'/></go></onevent>"
      "<INPUT KEY='f' DEFAULT='v'/><input name='g' value='$later'/>"
      "<select name='s'/><input name='s' value='x'/><timer name='m'/><input name='m' value='x'/>"
      "</card><card><input name='n' value='2'/></card>",
      {{"h", "given"}});
  const auto value = [&](std::string_view name, std::size_t card) {
    const std::string *found = survey.KnownVariables().Find(name, card);
    return found == nullptr ? "(unknown)" : *found;
  };
  EXPECT_EQ(value("a", 1), "1");
  EXPECT_EQ(value("a", 2), "(unknown)");
  EXPECT_EQ(value("b", 1), "1&");
  EXPECT_EQ(value("f", 1), "v");
  EXPECT_EQ(value("h", 2), "given");
  EXPECT_EQ(value("n", 2), "2");
  for (const char *name : {"c", "d", "e", "g", "s", "m", "n", "t", ""}) {
    EXPECT_EQ(value(name, 1), "(unknown)") << name;
  }
}

}  // namespace
}  // namespace vs_wml
