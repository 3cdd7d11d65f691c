// Documents that could cost more than their length: the host's bytes and calls are
// counted, from n to 4 n. Nothing here measures seconds.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "tests/support/session.h"

namespace vs_wml::test {
namespace {

struct Work {
  std::uint64_t bytes = 0;     ///< served to the filter
  std::uint64_t requests = 0;  ///< reads, seeks and tells of the filter
  std::uint64_t calls = 0;     ///< of output routines
};

/// Stops serving after `limit` bytes, as a host does that opens documents of strangers.
Work Measure(const std::string &text, bool stop = false, std::uint64_t limit = 0) {
  BlockSource source(text);
  Host host;
  host.tracing = false;
  if (stop) host.answerBreak = [](std::uint32_t) { return SO_STOP; };
  source.budget = limit;
  ReadDocument(source, host);
  EXPECT_EQ(host.checker.Fault(), "");
  EXPECT_TRUE(host.checker.Finished());
  return {source.bytes, source.reads + source.seeks + source.tells, host.calls};
}

/// n times `body` between a head and a foot.
struct Family {
  const char *name;
  const char *body;
  const char *head = "<wml><card>";
  const char *foot = "</card></wml>";
  bool stop = false;

  std::string Text(std::size_t n) const {
    std::string text = head;
    for (std::size_t i = 0; i < n; ++i) text += body;
    return text + foot;
  }
};

std::ostream &operator<<(std::ostream &out, const Family &family) {
  return out << family.name;
}

constexpr const char *kPad100 =
    "xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx"
    "xx";

// Everything the filter does for these is in proportion to their length.
const Family kLinear[] = {
    {"small tables", "<table columns=1><tr><td>x</td></tr></table>"},
    {"tables in tables", "<table columns=1>"},
    {"rows of 64 cells", "<tr>", "<wml><card><table columns=64>"},
    {"one row of many cells", "<td>x", "<wml><card><table columns=2><tr>"},
    {"one endless cell", "word ", "<wml><card><table columns=1><tr><td>"},
    {"images in a cell", "<img src=a width='20%'>", "<wml><card><table columns=1><tr><td>"},
    {"nested styles", "<b><i>"},
    {"nested containers", "<center><select>"},
    {"nested links", "<a href=x>"},
    {"stray end tags", "</u></select></text></big>", "<wml><card><b><i><em><b><i><em><b><i><em>"},
    {"realigned deep stacks", "<p align=center>x<p align=right>y",
     "<wml><card><b><i><b><i><b><i><b><i><b><i><b><i><b><i><b><i><b><i><b><i>"},
    {"nameless tags", "<b><></>"},
    {"an open double quote", "x", "<wml><card><p title=\""},
    {"an open single quote", "\"", "<wml><card><p title='"},
    {"a quote opened in each tag", "<p align=\"x>text "},
    {"a quote before each tag end", "<p a=\">"},
    {"a huge value", "x", "<wml><card><img src='", "' alt='y' width=3>"},
    {"a huge value without quotes", "x", "<wml><card><a href=", ">y</a>"},
    {"a huge card title", "t", "<wml><card title='", "'>x"},
    {"many unknown attributes", "zz=1 yyy ", "<wml><card><p ", ">x"},
    {"many known attributes", "class=a id=b ", "<wml><card><p ", ">x"},
    {"attributes of nothing but '='", "= ", "<wml><card><p "},
    {"a value in pieces", "x \"y\" ", "<wml><card><a href=", ">z</a>"},
    {"charset declarations", "<meta http-equiv=content-type content='charset=us-ascii'>"},
    {"an endless name", "n", "<wml><card><"},
    {"a run of '&'", "&"},
    {"'&' before tags", "&<b>"},
    {"unknown references", "&zzzzzzz;"},
    {"references cut short", "&am "},
    {"references in a value", "&q", "<wml><card><p align='", "'>x"},
    {"endless digits", "1", "<wml><card>&#"},
    {"short numbers", "&#1;"},
    {"a run of '<'", "<"},
    {"'<' and blanks", "< "},
    {"a run of '$'", "$"},
    {"a run of '/'", "/"},
    {"a run of '/>'", "/>"},
    {"a run of '>'", ">"},
    {"a run of ESC", "\x1B"},
    {"escapes cut short", "\x1B$"},
    {"escapes by turns", "\x1B(J\x1B(B"},
    {"single shifts", "\x1B$*H\x1BN\xA4\xA2"},
    {"shifts by turns", "\x0E\x0F"},
    {"lead bytes", "\x81",
     "<wml><head><meta http-equiv='content-type' content='charset=sjis'></head><card>"},
    {"a stop at every paragraph", "<p>some text", "<wml><card>", "</card></wml>", true},
    {"a stop at every row", "<table columns=2><tr><td>a<td>b<tr><td>c</table>", "<wml><card>",
     "</card></wml>", true},
    {"values far from their tags", kPad100, "<wml><card><img src=a class='", "' alt=b width=9>"},
};

class LinearTest : public testing::TestWithParam<Family> {};

TEST_P(LinearTest, WorkGrowsWithTheLength) {
  const Family &family = GetParam();
  const std::string small = family.Text(2000);
  const std::string large = family.Text(8000);
  const Work one = Measure(small, family.stop);
  const Work four = Measure(large, family.stop);
  EXPECT_GE(one.bytes, small.size()) << "the counters move";
  // Small documents are cheap where they fit a block; a quadratic one would need 16 times.
  EXPECT_LE(four.bytes, 5 * one.bytes + 4 * 2048);
  EXPECT_LE(four.requests, 5 * one.requests + 16);
  EXPECT_LE(four.calls, 5 * one.calls);
  // Read, measured, and values read again where they lie in other blocks.
  EXPECT_LE(four.bytes, 5 * large.size() + 4 * 2048);
}

INSTANTIATE_TEST_SUITE_P(Families, LinearTest, testing::ValuesIn(kLinear));

// Tables that are not closed each look for their end through the rest of the document.
const Family kReadAhead[] = {
    {"tables closed without a name", "<table columns=1></>"},
    {"tables without columns", "<table></>"},
    {"tables closed by their card", "<card><table columns=2><tr><td>x</card>", "<wml>", "</wml>"},
    {"tables closed by a link", "<a href=x><table columns=2><td>x</a>"},
    {"tables as empty elements", "<table columns=1/>x/>"},
};

class ReadAheadTest : public testing::TestWithParam<Family> {};

TEST_P(ReadAheadTest, IsBoundedByTheHost) {
  const std::string text = GetParam().Text(400);
  const Work all = Measure(text);
  ASSERT_GT(all.bytes, 20 * text.size()) << "no longer worth a bound: update the header";
  EXPECT_LE(all.calls, 20 * text.size());
  const std::uint64_t budget = 4 * text.size();
  const Work bounded = Measure(text, false, budget);
  EXPECT_LE(bounded.bytes, budget + 2048);
  EXPECT_LE(bounded.requests, 20 * text.size());
}

INSTANTIATE_TEST_SUITE_P(Families, ReadAheadTest, testing::ValuesIn(kReadAhead));

// One more table than the store can number ends the read as an exhausted heap does.
TEST(Tables, BeyondTheirNumberEndTheRead) {
  std::string text = "<wml><card>";
  for (int i = 0; i < 65535; ++i) text += "<table columns=1></table>";
  for (const bool more : {false, true}) {
    if (more) text += "<table columns=1></table>x";
    BlockSource source(text);
    Host host;
    host.tracing = false;
    ReadDocument(source, host);
    EXPECT_EQ(host.checker.Aborted(), more);
    EXPECT_EQ(host.checker.Fault(), "");
    EXPECT_LE(source.bytes, 3 * text.size());
  }
}

}  // namespace
}  // namespace vs_wml::test
