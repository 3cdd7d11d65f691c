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

TEST(Variables, AreKnownWhenTheyHaveOneValue) {
  const std::string longest(Variables::kLongestValue, 'x');
  const std::string longer = longest + 'x';
  Variables variables({{"given", "g"}, {"empty", ""}, {"long", longest}, {"longer", longer}});
  const auto value = [&](std::string_view name) {
    const std::string *found = variables.Find(name);
    return found == nullptr ? "(unknown)" : *found;
  };
  EXPECT_EQ(value("given"), "g");
  EXPECT_EQ(value("empty"), "");
  EXPECT_EQ(value("long"), longest);
  EXPECT_EQ(value("longer"), "(unknown)");
  variables.Suggest("given", "other");
  EXPECT_EQ(value("given"), "g");
  variables.Suggest("a", "1");
  EXPECT_EQ(value("a"), "1");
  variables.Suggest("a", "");
  variables.Suggest("a", "1");
  EXPECT_EQ(value("a"), "1");
  variables.Suggest("a", "2");
  EXPECT_EQ(value("a"), "(unknown)");
  variables.Suggest("a", "1");
  EXPECT_EQ(value("a"), "(unknown)");
  variables.Suggest("b", longest);
  EXPECT_EQ(value("b"), longest);
  variables.Suggest("c", longer);
  EXPECT_EQ(value("c"), "(unknown)");
  for (const char *name : {"", "1a", "a b", "a-"}) {
    variables.Suggest(name, "x");
    EXPECT_EQ(value(name), "(unknown)") << name;
  }
}

// A replacement may add what is left; `{name}` is always affordable.
TEST(Variables, AreReplacedWithinABudget) {
  const Variables variables({{"a", "12345678"}, {"b", "x y"}});
  const auto replaced = [&](std::string_view text, std::size_t budget) {
    const std::string result = variables.Substitute(text, Conversion::kEscape, budget);
    return result + '|' + std::to_string(budget);
  };
  EXPECT_EQ(replaced("a$a$$b$", 100), "a12345678$b$|92");
  EXPECT_EQ(replaced("$b$(b:n)$(none)", 100), "x%20yx y{none}|86");
  EXPECT_EQ(replaced("$a", 4), "12345678|0");
  EXPECT_EQ(replaced("$a", 3), "{a}|0");
  EXPECT_EQ(replaced("$(a)", 2), "12345678|0");
  EXPECT_EQ(replaced("$(a)", 1), "{a}|0");
  EXPECT_EQ(replaced("$a$a", 12), "1234567812345678|0");
  EXPECT_EQ(replaced("$a$a", 11), "12345678{a}|0");
}

// What `read` gives for a tag with the attribute v="value".
template <typename Read>
auto Value(const std::string &value, const Read &read) {
  const std::string document = "<b v=\"" + value + "\" value=\"" + value + "\" name='n&lt;'>";
  MarkupReader reader(document, nullptr);
  Token token;
  EXPECT_TRUE(reader.Next(token));
  DeckSurvey survey("<setvar name='x' value='a b'/>", {});
  ValueReader values(survey, 1000);
  return read(values, token);
}

TEST(Values, AreNumbersFlagsAndWords) {
  const auto number = [](ValueReader &values, const Token &token) {
    return values.Number(token, "v");
  };
  EXPECT_EQ(Value("12", number), 12U);
  EXPECT_EQ(Value(" 7 ", number), 7U);
  EXPECT_EQ(Value("7px", number), 7U);
  EXPECT_EQ(Value("&#55;", number), 7U);
  EXPECT_EQ(Value("4294967295", number), 4294967295U);
  for (const char *none : {"", "x7", "-7", "4294967296", "$x"}) EXPECT_EQ(Value(none, number), 0U);
  for (const bool missing : {false, true}) {
    const auto flag = [missing](ValueReader &values, const Token &token) {
      return values.Flag(token, "v", missing);
    };
    EXPECT_TRUE(Value("TRUE", flag));
    EXPECT_FALSE(Value("False", flag));
    for (const char *none : {"", "1", "yes", "truest"}) EXPECT_EQ(Value(none, flag), missing);
  }
  const auto word = [](ValueReader &, const Token &token) { return ValueReader::Word(token, "v"); };
  EXPECT_EQ(Value("20%", word), " v=\"20%\"");
  EXPECT_EQ(Value("LCR.1", word), " v=\"LCR.1\"");
  EXPECT_EQ(Value("abcdefghijklmnop", word), " v=\"abcdefghijklmnop\"");
  for (const char *none : {"", "abcdefghijklmnopq", "a b", "a'", "&lt;", "$x", "a-b"}) {
    EXPECT_EQ(Value(none, word), "") << none;
  }
}

TEST(Values, AreTextsTargetsAndPairs) {
  const struct {
    const char *value;
    const char *text;
    const char *target;
    const char *variable = "";
  } cases[] = {
      {"a &amp; b", "a & b", "a & b"},
      {" a\n", " a ", "a"},
      {"$x", "a b", "a%20b", "x"},
      {"$(x)", "a b", "a%20b", "x"},
      {"$(x:e)", "a%20b", "a%20b", "x"},
      {"$(x:n)", "a b", "a b", "x"},
      {" $x ", " a b ", "a%20b"},
      {"$x$x", "a ba b", "a%20ba%20b"},
      {"$y", "{y}", "{y}", "y"},
      {"$$x", "$x", "$x"},
      {"$$", "$", "$"},
      {"$", "$", "$"},
      {"&#36;x", "a b", "a%20b"},
      {"", "", ""},
  };
  for (const auto &item : cases) {
    SCOPED_TRACE(item.value);
    EXPECT_EQ(Value(item.value, [](ValueReader &values,
                                   const Token &token) { return values.Text(token, "v"); }),
              item.text);
    EXPECT_EQ(Value(item.value, [](ValueReader &values,
                                   const Token &token) { return values.Target(token, "v"); }),
              item.target);
    const NameValue pair = Value(
        item.value, [](ValueReader &values, const Token &token) { return values.Pair(token); });
    EXPECT_EQ(pair.name, "n<");
    EXPECT_EQ(pair.value, item.text);
    EXPECT_EQ(pair.variable, item.variable);
  }
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
      "<setvar name='a' value='1'/><input name='b' value='$a&amp;'/><setvar name='c'/>"
      "<select name='d' value='x'/><setvar value='x'/><postfield name='e' value='x'/>"
      "<INPUT NAME='f' VALUE='$g'/><setvar name='g' value='later'/>",
      {{"h", "given"}});
  const auto value = [&](std::string_view name) {
    const std::string *found = survey.KnownVariables().Find(name);
    return found == nullptr ? "(unknown)" : *found;
  };
  EXPECT_EQ(value("a"), "1");
  EXPECT_EQ(value("b"), "1&");
  for (const char *name : {"c", "d", "e", ""}) EXPECT_EQ(value(name), "(unknown)");
  EXPECT_EQ(value("f"), "{g}");
  EXPECT_EQ(value("g"), "later");
  EXPECT_EQ(value("h"), "given");
}

}  // namespace
}  // namespace vs_wml
